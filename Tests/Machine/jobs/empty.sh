run list list
run list-json list --json
run doctor doctor --json
# A container of an ordinary user, to which the kernel announces nothing.
unshare -U -n /opt/ostrel/bin/ostrel doctor --json >/results/ostrel/doctor-container.out \
    2>/results/ostrel/doctor-container.err && code=0 || code=$?
echo $code >/results/ostrel/doctor-container.code

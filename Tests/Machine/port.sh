# How a job keeps step with the test: over the second serial port.
stty -F /dev/ttyS1 raw -echo
exec 3<>/dev/ttyS1

event() { echo "event $*" >&3; }

await() {
    while read -r line <&3; do
        [ "$line" = "go $1" ] && return 0
    done
    return 1
}

# run_job FILE: runs the job, sends /results to the test, and switches the machine off.
run_job() {
    mkdir -p /results
    event started
    (. "$1") >/results/job.log 2>&1
    echo $? >/results/job.status
    tar -c -C /results . | gzip -1 >/results.tgz
    event results "$(sha256sum </results.tgz | cut -d' ' -f1)"
    base64 /results.tgz >&3
    event end
    # Empties the port's buffer, which a power-off would cut.
    stty -F /dev/ttyS1 sane
    poweroff -f
}

# The same looks by root with a private reader, and by users with and without a reader at its usual place.

# looks WHO: everything that a look at the drives prints.
looks() {
    user=$1
    run "list-$1" list --json
    run "topology-$1" topology --json
    run "doctor-$1" doctor --json
    for controller in /sys/class/nvme/nvme*; do
        run "show-$1-${controller##*/}" show "$(sed 's/ *$//' "$controller/serial")" --json
    done
    user=root
}

# outside WHO WHEN: how a user is refused.
outside() {
    user=$1
    run "refused-$2" list
    run "refused-doctor-$2" doctor
    user=root
}

# watched WHO: what a watch of some polls prints. Each user keeps rows of his own.
watched() {
    user=$1
    mkdir "/tmp/watched-$1"
    echo PollInterval=1 >"/tmp/watched-$1/Ostrel.ini"
    chown -R "$1" "/tmp/watched-$1"
    run "watch-$1" watch --json --for 5 --data "/tmp/watched-$1"
    user=root
}

looks root
watched root
outside member before

pidof ostrel-reader >/results/left-behind || true

mkdir -p /run/ostrel
/opt/ostrel/libexec/ostrel/ostrel-reader --socket /run/ostrel/reader.sock &
reader=$!
until [ -S /run/ostrel/reader.sock ]; do usleep 20000; done
chown root:ostrel /run/ostrel/reader.sock
chmod 660 /run/ostrel/reader.sock
looks member
watched member
outside nobody after
run list-named list --json --reader /run/ostrel/reader.sock
grep -E '^(Uid|CapPrm|CapEff|CapBnd|NoNewPrivs|Seccomp):' "/proc/$reader/status" >/results/restrictions

# The one of before answers no more, and the next one does.
kill $reader
wait $reader || true
rm /run/ostrel/reader.sock
run list-again list --json

# A drive falls silent: without the bus it can answer nothing, until the kernel resets it after 10 s.
silent=$(cat "$(dirname "$(grep -l '^PLAIN *$' /sys/class/nvme/nvme*/serial)")/address")
printf '\002' | dd of="/sys/bus/pci/devices/$silent/config" bs=1 seek=4 count=1 conv=notrunc 2>/dev/null
run list-silent list --json
pidof ostrel-reader >/results/stuck || true
while pidof ostrel-reader; do usleep 100000; done
run list-recovered list --json

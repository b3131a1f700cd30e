#!/bin/busybox sh
# The guest's first process. Runs /job/job.sh, sends /results out over the second serial port, switches off.
# A job may call `event NAME` to tell the test where it is, and `await NAME` to wait for the test's word.
/bin/busybox --install -s /bin
export PATH=/bin HOME=/
mount -t proc proc /proc
mount -t sysfs sys /sys
mount -t devtmpfs dev /dev
stty -F /dev/ttyS1 raw -echo
exec 3<>/dev/ttyS1

event() { echo "event $*" >&3; }

await() {
    while read -r line <&3; do
        [ "$line" = "go $1" ] && return 0
    done
    return 1
}

count() { ls -d "$@" 2>/dev/null | wc -l; }

# Waits for this number of controllers, paths to namespaces, and disks. The kernel may still be finding them.
await_drives() {
    while [ "$(cat /sys/class/nvme/nvme*/state 2>/dev/null | grep -c live)" -lt "$1" ] ||
        [ "$(count /sys/class/nvme/nvme*/nvme*n*)" -lt "$2" ] || [ "$(count /dev/nvme*n*)" -lt "$3" ]; do
        usleep 20000
    done
}

mkdir -p /results
event started
(. /job/job.sh) >/results/job.log 2>&1
echo $? >/results/job.status
tar -c -C /results . | gzip -1 >/results.tgz
event results "$(sha256sum </results.tgz | cut -d' ' -f1)"
base64 /results.tgz >&3
event end
# Empties the port's buffer, which a power-off would cut.
stty -F /dev/ttyS1 sane
poweroff -f

#!/bin/busybox sh
# The guest's first process. Runs /job/job.sh.
/bin/busybox --install -s /bin
export PATH=/bin HOME=/
mount -t proc proc /proc
mount -t sysfs sys /sys
mount -t devtmpfs dev /dev
. /job/port.sh

count() { ls -d "$@" 2>/dev/null | wc -l; }

# Waits for this number of controllers, paths to namespaces, and disks. The kernel may still be finding them.
await_drives() {
    while [ "$(cat /sys/class/nvme/nvme*/state 2>/dev/null | grep -c live)" -lt "$1" ] ||
        [ "$(count /sys/class/nvme/nvme*/nvme*n*)" -lt "$2" ] || [ "$(count /dev/nvme*n*)" -lt "$3" ]; do
        usleep 20000
    done
}

run_job /job/job.sh

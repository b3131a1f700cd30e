# The beginning of other jobs: functions that collect the output of this system's own tools and of ostrel.
set -e

user=root

# run NAME ARGUMENTS: output, messages and exit code of one run of ostrel by $user.
run() {
    mkdir -p /results/ostrel
    local name=$1 code=0
    shift
    su "$user" -s /bin/sh -c '/opt/ostrel/bin/ostrel "$@"' -- ostrel "$@" \
        >"/results/ostrel/$name.out" 2>"/results/ostrel/$name.err" || code=$?
    echo $code >"/results/ostrel/$name.code"
}

attribute() { cat "$1" 2>/dev/null || true; }

# collect FOLDER: the output of the kernel, nvme-cli and smartctl for each controller.
collect() {
    local controller name to attribute namespace path disk nsid
    uname -r >/results/kernel
    for controller in /sys/class/nvme/nvme*; do
        name=${controller##*/}
        to=/results/$1/$name
        mkdir -p "$to"
        for attribute in serial model firmware_rev address state; do
            attribute "$controller/$attribute" >"$to/$attribute"
        done
        attribute "$controller/device/vendor" >"$to/vendor"
        basename "$(readlink -f "$controller/device/driver")" >"$to/driver"
        attribute "/sys/module/$(cat "$to/driver")/version" >"$to/driver_version"
        nvme id-ctrl "/dev/$name" -o json >"$to/id-ctrl.json"
        nvme id-ctrl "/dev/$name" -o binary >"$to/id-ctrl.bin"
        nvme smart-log "/dev/$name" -o json >"$to/smart-log.json"
        nvme smart-log "/dev/$name" -o binary >"$to/smart-log.bin"
        # Its exit code tells the drive's health.
        smartctl -x -j "/dev/$name" >"$to/smartctl.json" || true
        for namespace in "$controller"/nvme*n*; do
            [ -d "$namespace" ] || continue
            # The path to a namespace that can be shared is hidden; programs open the disk above it.
            path=$(basename "$namespace")
            disk=$(echo "$path" | sed 's/c[0-9]*n/n/')
            nsid=$(cat "$namespace/nsid")
            mkdir -p "$to/namespaces/$nsid"
            # That disk is named after one of its controllers. For the others, the name of their path to it is used.
            case $disk in
                "$name"n*) echo "/dev/$disk" ;;
                *) echo "/dev/$path" ;;
            esac >"$to/namespaces/$nsid/device"
            cat "/sys/class/block/$disk/size" >"$to/namespaces/$nsid/sectors"
            cat "/sys/class/block/$disk/queue/logical_block_size" >"$to/namespaces/$nsid/block_size"
            nvme id-ns "/dev/$name" -n "$nsid" -o json >"$to/namespaces/$nsid/id-ns.json"
            smartctl -i -j "/dev/$disk" >"$to/namespaces/$nsid/smartctl.json" || true
        done
    done
}

# files FILE: every file of this system, with size and time of change.
files() {
    find / -xdev ! -path '/results*' ! -path '/' -exec stat -c '%n %F %s %y' {} + >"$1"
    find /dev ! -name 'ttyS*' -exec stat -c '%n %F %s' {} + >>"$1"
}

# rows DATABASE FOLDER: what another program reads in a database.
rows() {
    local to=/results/$2 table
    mkdir -p "$to"
    for table in Plugin Adapter PD; do
        sqlite3 -json "$1" "SELECT * FROM $table ORDER BY ID" >"$to/$table.json"
    done
    sqlite3 "$1" "PRAGMA integrity_check" >"$to/integrity"
}

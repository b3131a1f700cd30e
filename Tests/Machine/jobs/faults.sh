# Runs ostrel while chosen commands to one drive fail.

# failing DEVICE WHICH ARGUMENTS: runs ostrel. The commands to the device that WHICH counts fail, in each thread:
# "3" is the third one, "1+" all from the first one on, "6+3" every third one from the sixth on.
failing() {
    local device=$1 which=$2
    shift 2
    strace -f -qq -o "/results/strace-$name" -P "$device" -e trace=ioctl -e "inject=ioctl:error=EIO:when=$which" \
        /opt/ostrel/bin/ostrel "$@"
}

# look NAME DEVICE WHICH ARGUMENTS: stores the output, the messages and the exit code of one such run.
look() {
    local name=$1 code=0
    shift
    mkdir -p /results/ostrel
    failing "$@" >"/results/ostrel/$name.out" 2>"/results/ostrel/$name.err" || code=$?
    echo $code >"/results/ostrel/$name.code"
}

# device SERIAL: the controller with that serial number.
device() { echo "/dev/$(basename "$(dirname "$(grep -l "^$1 *$" /sys/class/nvme/nvme*/serial)")")"; }

first=$(device FIRST) sick=$(device SICK)
for controller in /sys/class/nvme/nvme*; do
    to=/results/sysfs/$(tr -d ' ' <"$controller/serial")
    mkdir -p "$to"
    cp "$controller/address" "$to"
done

# Each thread asks a drive for Identify Controller, Identify Namespace and the health log, in this order.
look list-unread "$sick" 3 list --json
look show-unread "$sick" 3 show SICK
look list-dropped "$first" 1+ list --json
look show-dropped "$first" 1+ show "$(cat /results/sysfs/SICK/address)"

# The first round succeeds. Then the reader's commands fail: the health log, Identify Namespace, or once Identify
# Controller. Each thread counts its own commands, of which a round has three.
for which in 3+3 2+3 1; do
    name=watch-$which
    data=/tmp/$name
    mkdir "$data"
    echo PollInterval=2 >"$data/Ostrel.ini"
    : >"/results/$name.out"
    /opt/ostrel/bin/ostrel watch --json --data "$data" >"/results/$name.out" 2>"/results/$name.err" &
    watch=$!
    until grep -q '"present"' "/results/$name.out"; do usleep 20000; done
    reader=$(pidof ostrel-reader)
    strace -f -qq -o "/results/strace-$name" -p "$reader" -P "$sick" -e trace=ioctl \
        -e "inject=ioctl:error=EIO:when=$which" &
    until grep -q 'TracerPid:.*[1-9]' "/proc/$reader/status"; do usleep 20000; done
    event watching
    tail -f "/results/$name.out" | while read -r line; do
        case $line in *'"LAST"'*) event seen ;; esac
    done &
    await "$name"
    kill -TERM $watch
    wait $watch && code=0 || code=$?
    echo $code >"/results/$name.code"
    kill "$(pidof tail)"
    wait
done

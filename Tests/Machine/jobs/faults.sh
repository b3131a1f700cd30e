# Watches and looks while commands to a drive fail on their way to it, each time another one.

# failing DEVICE WHICH ARGUMENTS: ostrel, while those of each thread's commands to this device fail.
failing() {
    local device=$1 which=$2
    shift 2
    strace -f -qq -o "/results/strace-$name" -P "$device" -e trace=ioctl -e "inject=ioctl:error=EIO:when=$which" \
        /opt/ostrel/bin/ostrel "$@"
}

# look NAME DEVICE WHICH ARGUMENTS: one run of it, its output, messages and exit code.
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

# The first round of the worker finds everything. Then the health log, the namespace, or the whole round fails.
for which in 6+3 5+3 4; do
    name=watch-$which
    data=/tmp/$name
    mkdir "$data"
    echo PollInterval=2 >"$data/Ostrel.ini"
    : >"/results/$name.out"
    failing "$sick" "$which" watch --json --data "$data" >"/results/$name.out" 2>"/results/$name.err" &
    watch=$!
    tail -f "/results/$name.out" | while read -r line; do
        case $line in *'"LAST"'*) event seen ;; *'"present"'*) event watching ;; esac
    done &
    await "$name"
    # The program itself, and not the one that lets its commands fail.
    kill -TERM "$(pidof ostrel)"
    wait $watch && code=0 || code=$?
    echo $code >"/results/$name.code"
    kill "$(pidof tail)"
    wait
done

# Watches with long polls while drives come, go and warn. So the kernel's announcements must report them.

# moment NAME [FILE]: stores the time at which the file was last changed. The kernel makes or removes the node of a
# device and announces it at the same moment, so the default is the folder of the nodes.
moment() { stat -c %y "${2:-/dev}" >"/results/announced/$1"; }

# announced STEP [FILE]: the same when the test has seen the events of the step.
announced() {
    await "$1"
    moment "$@"
    event "$1"
}

now() {
    : >/tmp/now
    moment "$1" /tmp/now
}

# How often the worker has begun to wait again.
scans() { grep -c "before restart interval" /tmp/trace || true; }

driver=/sys/bus/pci/drivers/nvme
# place SERIAL: the address of the controller with that serial number.
place() { cat "$(dirname "$(grep -l "^$1 *$" /sys/class/nvme/nvme*/serial)")/address"; }

# warned STEP: lets the test raise a warning of the drive, and stores when the kernel announced it.
warned() {
    await "before-$1"
    uevent sh -c '[ -z "$NVME_AEN" ] || echo "$NVME_AEN" >>/tmp/warned' &
    until awk -v pid=$! '$2 == 15 && $3 == pid { found = 1 } END { exit !found }' /proc/net/netlink; do
        usleep 20000
    done
    event listening
    announced "$1" /tmp/warned
    kill $!
}

data=/tmp/watched
mkdir "$data" /results/announced
echo PollInterval=60 >"$data/Ostrel.ini"
present=$(place ONE) absent=$(place OTHER)
echo "$absent" >$driver/unbind
bare=$(place BARE)
nvme=$(basename /sys/bus/pci/devices/$bare/nvme/nvme*)
controller=$(cat /sys/class/nvme/$nvme/cntlid)
nvme detach-ns /dev/$nvme --namespace-id=1 --controllers=$controller
echo "$bare" >$driver/unbind
# The kernel asks drives for news of namespaces only. Warnings are the eight lowest bits.
kept=$(basename /sys/bus/pci/devices/$(place KEPT)/nvme/nvme*)
nvme set-feature /dev/$kept --feature-id=0x0b --value=0x1ff
: >/results/watch.out
/opt/ostrel/bin/ostrel --trace 6 --trace-file /tmp/trace watch --json --data "$data" \
    >/results/watch.out 2>/results/watch.err &
watch=$!
tail -f /results/watch.out | while read -r line; do
    case $line in *'"present"'*) event watching ;; *) event "seen $line" ;; esac
done &

for round in 1 2 3 4 5; do
    announced "plugged-$round"
    announced "unplugged-$round"
    await "before-exchanged-$round"
    echo "$present" >$driver/unbind
    moment "pulled-$round"
    echo "$absent" >$driver/bind
    gone=$present present=$absent absent=$gone
    announced "exchanged-$round"
done

await before-filled
before=$(scans)
echo "$bare" >$driver/bind
moment bare
until [ "$(scans)" -gt "$before" ]; do usleep 20000; done
nvme=$(basename /sys/bus/pci/devices/$bare/nvme/nvme*)
nvme attach-ns /dev/$nvme --namespace-id=1 --controllers=$controller
announced filled

warned warned-1

# Ten gusts of a hundred announcements in about five seconds.
now storm
first=$(cat /sys/kernel/uevent_seqnum)
for gust in 1 2 3 4 5 6 7 8 9 10; do
    left=100
    while [ $left -gt 0 ]; do
        echo add >/sys/class/nvme/$kept/uevent
        left=$((left - 1))
    done
    usleep 500000
done
echo $(($(cat /sys/kernel/uevent_seqnum) - first)) >/results/storm
now calm

warned warned-2
cp /tmp/trace /results/trace
kill -TERM $watch
wait $watch && code=0 || code=$?
echo $code >/results/watch.code

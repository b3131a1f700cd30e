# Watches with long polls while drives come and go. So the kernel's announcements must report them.

# announced STEP: stores the time at which the kernel announced the last change of the test.
announced() {
    await "$1"
    # The kernel makes or removes a device's node and announces it at the same moment.
    stat -c %y /dev >"/results/announced/$1"
    event "$1"
}

driver=/sys/bus/pci/drivers/nvme
# place SERIAL: the address of the controller with that serial number.
place() { cat "$(dirname "$(grep -l "^$1 *$" /sys/class/nvme/nvme*/serial)")/address"; }

data=/tmp/watched
mkdir "$data" /results/announced
echo PollInterval=60 >"$data/Ostrel.ini"
present=$(place ONE) absent=$(place OTHER)
echo "$absent" >$driver/unbind
: >/results/watch.out
/opt/ostrel/bin/ostrel watch --json --data "$data" >/results/watch.out 2>/results/watch.err &
watch=$!
tail -f /results/watch.out | while read -r line; do
    case $line in *'"present"'*) event watching ;; *) event "seen $line" ;; esac
done &

for round in 1 2 3 4 5; do
    announced "plugged-$round"
    announced "unplugged-$round"
    await "exchange-$round"
    echo "$present" >$driver/unbind
    echo "$absent" >$driver/bind
    gone=$present present=$absent absent=$gone
    announced "exchanged-$round"
done
kill -TERM $watch
wait $watch && code=0 || code=$?
echo $code >/results/watch.code

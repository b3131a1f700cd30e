# Watches while controllers hang. Without the bus a controller answers nothing, until the kernel resets it 10 s later.

# place SERIAL: the address of the controller with that serial number.
place() { cat "$(dirname "$(grep -l "^$1 *$" /sys/class/nvme/nvme*/serial)")/address"; }

# hang SERIAL [STEP]: takes the bus from a controller, and stores when.
hang() {
    printf '\002' | dd of="/sys/bus/pci/devices/$(place "$1")/config" bs=1 seek=4 count=1 conv=notrunc 2>/dev/null
    : >/tmp/now
    [ $# -lt 2 ] || stat -c %y /tmp/now >"/results/hung/$2"
}

uptime_now() { cut -d' ' -f1 /proc/uptime; }

# shown COUNT PATTERN: waits until the watch has printed this many such lines.
shown() { until [ "$(grep -c "$2" /results/watch.out)" -ge "$1" ]; do usleep 100000; done; }

# The same without a pause. Time passes slowly in a busy guest, so the test can act before the kernel's reset.
shown_slowly() { until [ "$(grep -c "$2" /results/watch.out)" -ge "$1" ]; do :; done; }

# recovered: waits until the kernel has released the readers that were left behind.
recovered() { while pidof ostrel-reader >/dev/null; do usleep 100000; done; }

data=/tmp/watched
mkdir "$data" /results/hung
echo PollInterval=2 >"$data/Ostrel.ini"
: >/results/watch.out
mkfifo /tmp/lines
# Each line is passed to the test at once. The first is about the state at the start.
while read -r line; do
    echo "$line" >>/results/watch.out
    case $line in *'"present"'*) event watching ;; *) event "seen $line" ;; esac
done </tmp/lines &
/opt/ostrel/bin/ostrel watch --json --data "$data" >/tmp/lines 2>/results/watch.err &
watch=$!

# Each of these programs asks the controller for the first time.
await looked
hang HANGS looked
run list list &
looks=$!
for look in "list-json list --json" "show show HANGS" "doctor doctor --json" "check check" \
    "check-json check --json" "check-hung check HANGS" "check-other check ONE"; do
    run $look &
    looks="$looks $!"
done
wait $looks

await answered
hang HANGS answered
shown 2 '"began".*"HANGS"'
shown_slowly 7 '"id":11088'

await unplugged
hang PULLED unplugged
shown 1 '"began".*"PULLED"'
shown_slowly 1 '"id":11094.*"PULLED"'

await exchanged
hang SWAPPED exchanged
shown 1 '"began".*"SWAPPED"'
shown_slowly 1 '"id":11094.*"SWAPPED"'

# This one is unplugged while the program still waits for its answer.
await vanished
hang VANISHED
sleep 3
event waiting
shown_slowly 1 '"id":11094.*"VANISHED"'

# A signal while the drive is known to be silent.
await terminated
hang HANGS terminated
shown 3 '"began".*"HANGS"'
kill -TERM $watch
before=$(uptime_now)
wait $watch && code=0 || code=$?
echo "$before $(uptime_now)" >/results/hung/terminated.times
echo $code >/results/hung/terminated.code
pidof ostrel-reader >/results/hung/left || true
recovered

# A signal while the program waits for its answer. Only a program in the foreground notices an interruption.
interrupt() {
    until [ -s /results/interrupted.out ]; do usleep 100000; done
    hang HANGS
    sleep 3
    uptime_now >/results/hung/interrupted.times
    kill -INT "$(pidof ostrel)"
}
interrupt &
/opt/ostrel/bin/ostrel watch --json --data "$data" --for 120 >/results/interrupted.out 2>/results/interrupted.err \
    && code=0 || code=$?
uptime_now >>/results/hung/interrupted.times
echo $code >/results/hung/interrupted.code
recovered

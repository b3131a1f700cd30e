# The cost of looking at this machine's drives, in instructions. Each file in /results has one number on each line.
set -e
export PATH=$PATH:/opt/ostrel/bin

drives=$(count /sys/class/nvme/nvme*)

Instructions >/results/calibration
BareMinimum "$drives" >/results/bare
mkdir /tmp/data
CycleCost /opt/ostrel/share/ostrel /tmp/data /results/cycle /results/steps

# Every command runs twice, and only the second run counts, because its files are then in memory.
measured() {
    local name=$1
    shift
    Instructions run "$@" >/dev/null
    Instructions run "$@" >>"/results/$name"
}

measured start ostrel --version
measured list ostrel list --json
number=0
while [ $number -lt "$drives" ]; do
    measured nvme nvme id-ctrl "/dev/nvme$number"
    measured nvme nvme id-ns "/dev/nvme${number}n1"
    measured nvme nvme smart-log "/dev/nvme$number"
    echo "/dev/nvme$number -a" >>/tmp/smartd.conf
    number=$((number + 1))
done
measured onecheck smartd -q onecheck -c /tmp/smartd.conf

# Starts a command that watches the drives, and waits for its first round. Sets `program` and `reader`. A sleeping
# process costs nothing, so the length of the interval does not matter.
watching() {
    local data=$1
    shift
    mkdir "$data"
    echo PollInterval=60 >"$data/Ostrel.ini"
    "$@" --data "$data" >/dev/null &
    program=$!
    until reader=$(pidof ostrel-reader); do
        sleep 1
    done
    sleep 30
}

# The instructions of the program and of its reader during this command and the seconds after it.
during() {
    local name=$1 seconds=$2 former_program former_reader
    shift 2
    former_program=$(Instructions of $program)
    former_reader=$(Instructions of "$reader")
    "$@"
    sleep "$seconds"
    echo $(($(Instructions of $program) - former_program)) >>"/results/$name-program"
    echo $(($(Instructions of "$reader") - former_reader)) >>"/results/$name-reader"
}

# Each look comes half an interval after a round.
rounds() {
    for round in 1 2 3 4 5 6; do
        during "$1" 60 true
    done
}

end_watching() {
    kill $program
    wait $program
    while pidof ostrel-reader >/dev/null; do
        sleep 1
    done
}

watching /tmp/watched ostrel watch --json
rounds watch
end_watching

# A scrape as Prometheus asks for it. All drives must be on the page, or its cost says nothing.
scrape() {
    wget -q -O /tmp/page --header "Accept: application/openmetrics-text;version=1.0.0" http://127.0.0.1:9713/metrics
    [ "$(grep -c '^ostrel_drive_up{.*} 1$' /tmp/page)" -eq "$drives" ]
}

ifconfig lo up
watching /tmp/served ostrel serve --listen 127.0.0.1:9713
rounds serve
for number in 1 2 3 4 5 6; do
    during scrape 2 scrape
done
during idle 10 true
wc -c </tmp/page >/results/page
sed -n 's/^VmHWM:[[:space:]]*\([0-9]*\) kB$/\1/p' /proc/$program/status >/results/peak-kib
end_watching

# A check by a daemon that has already started. A sleeping daemon costs nothing, so the length of its time does not
# matter.
smartd -n -i 86400 -c /tmp/smartd.conf -p /tmp/smartd.pid &
while ! [ -s /tmp/smartd.pid ]; do
    sleep 1
done
resident=$(cat /tmp/smartd.pid)
sleep 30
former=$(Instructions of "$resident")
for round in 1 2 3; do
    kill -USR1 "$resident"
    sleep 30
    now=$(Instructions of "$resident")
    echo $((now - former)) >>/results/resident
    former=$now
done
kill "$resident"
wait

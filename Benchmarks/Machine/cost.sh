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

# A round of a watch, by the program and its reader. A sleeping process costs nothing, so the length of the interval
# does not matter. Each look comes half an interval after a round.
mkdir /tmp/watched
echo PollInterval=60 >/tmp/watched/Ostrel.ini
ostrel watch --json --data /tmp/watched >/dev/null &
program=$!
until reader=$(pidof ostrel-reader); do
    sleep 1
done
sleep 30
former_program=$(Instructions of $program)
former_reader=$(Instructions of "$reader")
for round in 1 2 3 4 5 6; do
    sleep 60
    now=$(Instructions of $program)
    echo $((now - former_program)) >>/results/round-program
    former_program=$now
    now=$(Instructions of "$reader")
    echo $((now - former_reader)) >>/results/round-reader
    former_reader=$now
done
kill $program
wait $program

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

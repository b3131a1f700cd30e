# Watches while the test changes the machine from outside.
data=/tmp/watched
mkdir "$data"
echo PollInterval=2 >"$data/Ostrel.ini"
: >/results/watch.out
/opt/ostrel/bin/ostrel watch --json --data "$data" >/results/watch.out 2>/results/watch.err &
watch=$!
# Each line is passed to the test at once. The first is about the state at the start.
tail -f /results/watch.out | while read -r line; do
    case $line in *'"present"'*) event watching ;; *) event "seen $line" ;; esac
done &

for step in warned-04 warned-14 warned-05 warned-00 warned-0a warned-02 unplugged plugged set warned-15; do
    await "$step"
    [ $step != set ] || run set --data "$data" set plugin pollinterval 60 --json
    run "list-$step" list --json
    rows "$data/Ostrel.db" "$step"
    event "$step"
done

cp "$data/Ostrel.ini" /results/ini
cp "$data/AdapterNumbers.txt" /results/numbers
kill -TERM $watch
before=$(cut -d' ' -f1 /proc/uptime)
wait $watch && code=0 || code=$?
echo "$before $(cut -d' ' -f1 /proc/uptime)" >/results/ending
echo $code >/results/watch.code
rows "$data/Ostrel.db" end
kill %2

# The beginning of each job: waits until all units have started. Functions for jobs are here.
export PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root
. /job/port.sh

# kept NAME COMMAND: output, messages and exit code of a command.
kept() {
    local name=$1 code=0
    shift
    "$@" >"/results/$name.out" 2>"/results/$name.err" || code=$?
    echo $code >"/results/$name.code"
}

mkdir -p /results
kept started systemctl is-system-running --wait
cut -d' ' -f1 /proc/uptime >/results/started.uptime
run_job /job/job.sh

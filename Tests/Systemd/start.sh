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

# property UNIT NAME: one property of a unit.
property() { systemctl show --value --property="$2" "$1"; }

# states NAME UNIT...: what the service manager says of units.
states() {
    local name=$1
    shift
    systemctl show --property=Id,ActiveState,UnitFileState,NRestarts,MainPID,StatusText,Result "$@" \
        >"/results/states-$name"
}

# restricted UNIT: what the kernel says of the unit's process, and the drives that it has opened.
restricted() {
    local pid
    pid=$(property "$1" MainPID)
    grep -E '^(Uid|CapPrm|CapEff|CapBnd|NoNewPrivs|Seccomp):' "/proc/$pid/status" >"/results/restrictions-$1"
    find "/proc/$pid/fd" -lname '/dev/nvme*' >"/results/opened-$1"
}

# files NAME: every file, also those below /run with the program's name.
files() {
    find / -xdev ! -path '/results*' ! -path '/job*' ! -path '/tmp*' >"/results/files-$1"
    find /run -name '*ostrel*' >>"/results/files-$1"
}

mkdir -p /results
kept started systemctl is-system-running --wait
cut -d' ' -f1 /proc/uptime >/results/started.uptime
run_job /job/job.sh

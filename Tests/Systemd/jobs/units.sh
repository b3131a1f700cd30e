# Installs the package where root has kept data before, uses it, and removes it again.
set -e

units="ostrel-reader.socket ostrel-reader.service"

# states NAME: what the service manager says of the package's units.
states() {
    systemctl show --property=Id,ActiveState,UnitFileState,NRestarts,MainPID $units >"/results/states-$1"
}

# files NAME: every file, also those below /run with the program's name.
files() {
    find / -xdev ! -path '/results*' ! -path '/job*' ! -path '/tmp*' >"/results/files-$1"
    find /run -name '*ostrel*' >>"/results/files-$1"
}

printf 'u member -\nu stranger -\n' | systemd-sysusers -
files before

# Before the package there was a watch of root's, which had a reader of its own.
dpkg-deb -x /job/ostrel.deb /tmp/former
former=/tmp/former/usr/bin/ostrel
kept list-before $former list --json
mkdir /var/lib/ostrel
echo PollInterval=7 >/var/lib/ostrel/Ostrel.ini
kept watch-before $former watch --json --for 2
ls -ln /var/lib/ostrel >/results/data-before

kept installed dpkg -i /job/ostrel.deb
states installed
ls -l /run/ostrel >/results/run
kept stranger runuser -u stranger -- ostrel list
kept outsider runuser -u member -- ostrel list
echo 'm member ostrel' | systemd-sysusers -
kept list-member runuser -u member -- ostrel list --json
kept list-root ostrel list --json
reader=$(systemctl show --value --property=MainPID ostrel-reader.service)
grep -E '^(Uid|CapPrm|CapEff|CapBnd|NoNewPrivs|Seccomp):' "/proc/$reader/status" >/results/restrictions

kill -KILL "$reader"
kept list-again runuser -u member -- ostrel list --json
states killed

for unit in ostrel-reader.service; do
    kept "security-$unit" systemd-analyze security --offline=yes --threshold=20 --no-pager $unit
done
kept verified systemd-analyze verify --man=no $units

kept again dpkg -i /job/ostrel.deb
states again
kept list-upgraded runuser -u member -- ostrel list --json

kept removed dpkg -r ostrel
states removed
ls -ln /var/lib/ostrel >/results/data-removed
kept purged dpkg -P ostrel
files purged
journalctl --no-pager >/results/journal

# Installs the package where root has kept data before, uses it, and removes it again.
set -e

units="ostrel-reader.socket ostrel-reader.service ostrel.socket ostrel.service"

# asked PATH: the answer of the service over HTTP.
asked() {
    bash -c 'exec 4<>/dev/tcp/127.0.0.1/9713
        printf "GET %s HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n\r\n" "$1" >&4
        cat <&4' asked "$1"
}

# told KIND: waits until the service's journal has such an entry.
told() { until asked "/api/v1/journal?limit=1000" | grep -q "\"$1\""; do sleep 0.2; done; }

# restarted: waits until the service runs again after the service manager has noticed its end.
restarted() {
    until [ "$(property ostrel.service NRestarts)" -gt 0 ] && systemctl --quiet is-active ostrel.service; do
        sleep 0.2
    done
}

printf 'u member -\nu stranger -\n' | systemd-sysusers -
files before

# Before the package there was a watch of root's, which had a reader of its own.
dpkg-deb -x /job/ostrel.deb /tmp/former
former=/tmp/former/usr/bin/ostrel
kept list-before $former list --json
mkdir /var/lib/ostrel
echo PollInterval=2 >/var/lib/ostrel/Ostrel.ini
kept watch-before $former watch --json --for 2
grep . /var/lib/ostrel/Ostrel.ini /var/lib/ostrel/AdapterNumbers.txt >/results/content-before

kept installed dpkg -i /job/ostrel.deb
states installed $units
ls -l /run/ostrel /etc/ostrel >/results/places
grep -cE '^[0-9a-f]{64}$' /etc/ostrel/token >/results/token || true
id -u ostrel >/results/user
until [ -n "$(property ostrel.service StatusText)" ]; do sleep 0.2; done
kept status systemctl status --no-pager ostrel.service

# The drives for users, through the reader.
echo 'm member ostrel' | systemd-sysusers -
kept list-member runuser -u member -- ostrel list --json
kept list-root ostrel list --json
restricted ostrel-reader.service
kill -KILL "$(property ostrel-reader.service MainPID)"
kept list-again runuser -u member -- ostrel list --json
states killed $units
# More often than the service manager allows by itself. The service does not run meanwhile, because a round in which its
# readers end one after the other finds a silent drive.
systemctl stop ostrel.service
until [ "$(property ostrel-reader.service NRestarts)" -ge 8 ]; do
    reader=$(property ostrel-reader.service MainPID)
    # It may have ended already, and the service manager does not know it yet.
    [ "$reader" -eq 0 ] || kill -KILL "$reader" 2>/dev/null || true
    sleep 0.2
done
kept list-often runuser -u member -- ostrel list --json
states often $units
systemctl start ostrel.service

# The service sees what comes and goes, and goes on after a crash.
restricted ostrel.service
event pull
told drive-removed
event plug
told drive-added
kept drives asked /api/v1/drives
kept list-stranger runuser -u stranger -- ostrel list --json
kept show-stranger runuser -u stranger -- ostrel show WARNED
kept journal-stranger runuser -u stranger -- ostrel journal --json
kept watch-stranger runuser -u stranger -- ostrel watch --for 1
kept set-stranger runuser -u stranger -- ostrel set plugin pollinterval 2
kept set-member runuser -u member -- ostrel set plugin pollinterval 2
kill -KILL "$(property ostrel.service MainPID)"
restarted
kept journal-crashed asked "/api/v1/journal?limit=1000"
kept reloaded systemctl reload ostrel.service
states reloaded $units

# The service manager takes a service that gives no sign of life for dead.
mkdir -p /run/systemd/system/ostrel.service.d
printf '[Service]\nWatchdogSec=20\n' >/run/systemd/system/ostrel.service.d/watchdog.conf
systemctl daemon-reload
systemctl restart ostrel.service
begun=$(property ostrel.service WatchdogTimestampMonotonic)
until [ "$(property ostrel.service WatchdogTimestampMonotonic)" -gt "$begun" ]; do sleep 0.2; done
kill -STOP "$(property ostrel.service MainPID)"
restarted
journalctl --no-pager --unit=ostrel.service --grep=Watchdog >/results/watchdog
rm -r /run/systemd/system/ostrel.service.d
systemctl daemon-reload

for unit in ostrel-reader.service ostrel.service; do
    kept "security-$unit" systemd-analyze security --offline=yes --threshold=20 --no-pager $unit
done
kept verified systemd-analyze verify --man=no $units

kept again dpkg -i /job/ostrel.deb
states again $units
kept list-upgraded runuser -u member -- ostrel list --json
kept journal-upgraded asked "/api/v1/journal?limit=1000"

cut -d' ' -f1 /proc/uptime >/results/stop.times
kept stopped systemctl stop ostrel.socket ostrel.service
cut -d' ' -f1 /proc/uptime >>/results/stop.times
states stopped $units
kept journal-stopped ostrel journal --json
kept stranger runuser -u stranger -- ostrel list
find /var/lib/ostrel ! -user ostrel >/results/owned-by-others
grep . /var/lib/ostrel/Ostrel.ini /var/lib/ostrel/AdapterNumbers.txt >/results/content-after

kept removed dpkg -r ostrel
states removed $units
ls /var/lib/ostrel /etc/ostrel >/results/kept-data
kept purged dpkg -P ostrel
files purged
journalctl --no-pager >/results/journal

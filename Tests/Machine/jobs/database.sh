database=/tmp/kept/data/Ostrel.db

# rows FOLDER: what another program reads in the database.
rows() {
    local to=/results/$1 table
    mkdir -p "$to"
    for table in Plugin Adapter PD; do
        sqlite3 -json "$database" "SELECT * FROM $table ORDER BY ID" >"$to/$table.json"
    done
    sqlite3 "$database" "PRAGMA integrity_check" >"$to/integrity"
    sqlite3 "$database" "SELECT SerialNumber FROM Adapter WHERE SerialNumber = 'x'');DROP TABLE PD;--'
        UNION ALL SELECT SerialNumber FROM PD WHERE DriveKey = 'x'');DROP TABLE PD;--'" >"$to/hostile"
}

for controller in /sys/class/nvme/nvme*; do
    for attribute in address serial model firmware_rev; do
        attribute "$controller/$attribute" >"/tmp/$attribute"
    done
    address=$(cat /tmp/address)
    mkdir -p "/results/sysfs/$address"
    cp /tmp/serial /tmp/model /tmp/firmware_rev "/results/sysfs/$address"
done

run first --data /tmp/kept/data list
rows first
run second --data /tmp/kept/data list
rows second

# A drive that is away for a while.
away=$(cat /sys/class/nvme/nvme0/address)
echo "$away" >/results/away
echo "$away" >/sys/bus/pci/drivers/nvme/unbind
run third --data /tmp/kept/data list
rows third
echo "$away" >/sys/bus/pci/drivers/nvme/bind
await_drives "$(count /results/sysfs/*)" 0 "$(count /results/sysfs/*)"
run fourth --data /tmp/kept/data list
rows fourth
run doctor --data /tmp/kept/data doctor

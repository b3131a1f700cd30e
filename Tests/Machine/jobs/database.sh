database=/tmp/kept/data/Ostrel.db

# keep FOLDER: the database's rows, and those that a hostile serial number finds.
keep() {
    rows "$database" "$1"
    sqlite3 "$database" "SELECT SerialNumber FROM Adapter WHERE SerialNumber = 'x'');DROP TABLE PD;--'
        UNION ALL SELECT SerialNumber FROM PD WHERE DriveKey = 'x'');DROP TABLE PD;--'" >"/results/$1/hostile"
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
keep first
run second --data /tmp/kept/data list
keep second

# A drive that is away for a while.
away=$(cat /sys/class/nvme/nvme0/address)
echo "$away" >/results/away
echo "$away" >/sys/bus/pci/drivers/nvme/unbind
run third --data /tmp/kept/data list
keep third
echo "$away" >/sys/bus/pci/drivers/nvme/bind
await_drives "$(count /results/sysfs/*)" 0 "$(count /results/sysfs/*)"
run fourth --data /tmp/kept/data list
keep fourth
run doctor --data /tmp/kept/data doctor

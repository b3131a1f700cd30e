# Use of the drives, so that their counters differ from one to the next.
number=0
for disk in /dev/nvme*n1; do
    number=$((number + 1))
    dd if="$disk" of=/dev/null bs=64k count=$((number * 40)) iflag=direct 2>/dev/null
    dd if=/dev/zero of="$disk" bs=64k count=$((number * 56)) oflag=direct 2>/dev/null
done

files /results/files-before
event ready
await inventory
run list list --json
run topology topology --json
run text list
run doctor doctor --json
for controller in /sys/class/nvme/nvme*; do
    run "show-${controller##*/}" show "$(sed 's/ *$//' "$controller/serial")" --json
done
event taken
await comparison
files /results/files-after
collect first

event compared
await warnings
run list-warned list --json
run topology-warned topology --json
collect warned

user=nobody
run nobody-list list
run nobody-doctor doctor
user=root

controllers=$(count /sys/class/nvme/nvme*)
paths=$(count /sys/class/nvme/nvme*/nvme*n*)
disks=$(count /dev/nvme*n*)
event unpluggable
await replugged
await_drives "$controllers" "$paths" "$disks"
run list-replugged list --json

for controller in /sys/class/nvme/nvme*; do
    cat "$controller/address"
done >/results/addresses
while read -r address; do
    echo "$address" >/sys/bus/pci/drivers/nvme/unbind
done </results/addresses
run list-driverless list
run doctor-driverless doctor --json

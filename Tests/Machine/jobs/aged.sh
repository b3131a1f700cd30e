# This machine's clock jumps over idle time, so that its drives grow hours old in a moment.
sleep 7300
run list list --json
run topology topology --json
collect first

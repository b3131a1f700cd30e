run list list
run list-json list --json
run doctor doctor --json

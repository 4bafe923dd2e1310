#!/usr/bin/env bash
# The service panel's CPU while it polls the simulated instrument, against a bare Qt dialog with a 200 ms
# timer, both running side by side for the same time. The panel passes when it uses no more than 1.5 times
# the bare dialog's CPU.
#
#   bench/service/poll_cpu.sh [build-folder] [seconds]      (defaults: build/release, 60)
set -euo pipefail

build=${1:-build/release}
seconds=${2:-60}
probe="$build/bench/service/service_poll_probe"
if [[ ! -x $probe ]]; then
    echo "no $probe: configure with -DVSS_BENCH=ON (the release preset) and build service_poll_probe" >&2
    exit 2
fi

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
QT_QPA_PLATFORM=offscreen "$probe" panel "$seconds" >"$out/panel" &
panel_pid=$!
QT_QPA_PLATFORM=offscreen "$probe" bare "$seconds" >"$out/bare" &
bare_pid=$!
wait "$panel_pid" "$bare_pid"

cat "$out/panel" "$out/bare"
panel_cpu=$(sed -n 's/.*cpu_seconds=\([0-9.]*\).*/\1/p' "$out/panel")
bare_cpu=$(sed -n 's/.*cpu_seconds=\([0-9.]*\).*/\1/p' "$out/bare")
awk -v p="$panel_cpu" -v b="$bare_cpu" 'BEGIN {
    floor = 0.001  # a bare dialog can use less CPU than the clock resolves
    ratio = p / (b > floor ? b : floor)
    printf "panel / bare = %.2f (limit 1.50)\n", ratio
    exit ratio <= 1.5 ? 0 : 1
}'

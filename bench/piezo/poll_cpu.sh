#!/usr/bin/env bash
# The piezo adjust window's CPU while it polls the simulated instrument, against a bare Qt dialog with a 200 ms
# timer, both running side by side for the same time. The window passes when it uses no more than 1.5 times
# the bare dialog's CPU.
#
#   bench/piezo/poll_cpu.sh [build-folder] [seconds]      (defaults: build/release, 60)
set -euo pipefail

build=${1:-build/release}
seconds=${2:-60}
probe="$build/bench/piezo/piezo_poll_probe"
if [[ ! -x $probe ]]; then
    echo "no $probe: configure with -DVSS_BENCH=ON (the release preset) and build piezo_poll_probe" >&2
    exit 2
fi

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
QT_QPA_PLATFORM=offscreen "$probe" adjust "$seconds" >"$out/adjust" &
adjust_pid=$!
QT_QPA_PLATFORM=offscreen "$probe" bare "$seconds" >"$out/bare" &
bare_pid=$!
wait "$adjust_pid" "$bare_pid"

cat "$out/adjust" "$out/bare"
adjust_cpu=$(sed -n 's/.*cpu_seconds=\([0-9.]*\).*/\1/p' "$out/adjust")
bare_cpu=$(sed -n 's/.*cpu_seconds=\([0-9.]*\).*/\1/p' "$out/bare")
awk -v p="$adjust_cpu" -v b="$bare_cpu" 'BEGIN {
    floor = 0.001  # a bare dialog can use less CPU than the clock resolves
    ratio = p / (b > floor ? b : floor)
    printf "adjust / bare = %.2f (limit 1.50)\n", ratio
    exit ratio <= 1.5 ? 0 : 1
}'

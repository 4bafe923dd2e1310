#!/usr/bin/env bash
# A polling window's CPU on the simulated instrument, against a bare Qt dialog with a 200 ms timer, both running
# side by side for the same time. The window passes when it uses no more than 1.5 times the bare dialog's CPU.
#
#   bench/poll_cpu.sh operation|piezo|service [build-folder] [seconds]      (defaults: build/release, 60)
#   operation: the operation panel; piezo: the piezo adjust window; service: the service panel
set -euo pipefail

area=${1:-}
build=${2:-build/release}
seconds=${3:-60}
case "$area" in
    operation | piezo | service) ;;
    *)
        sed -n '4,6p' "$0"
        exit 2
        ;;
esac
probe="$build/bench/$area/${area}_poll_probe"
if [[ ! -x $probe ]]; then
    echo "no $probe: configure with -DVSS_BENCH=ON (the release preset) and build ${area}_poll_probe" >&2
    exit 2
fi

out=$(mktemp -d)
trap 'rm -rf "$out"' EXIT
QT_QPA_PLATFORM=offscreen "$probe" window "$seconds" >"$out/window" &
window_pid=$!
QT_QPA_PLATFORM=offscreen "$probe" bare "$seconds" >"$out/bare" &
bare_pid=$!
wait "$window_pid" "$bare_pid"

cat "$out/window" "$out/bare"
window_cpu=$(sed -n 's/.*cpu_seconds=\([0-9.]*\).*/\1/p' "$out/window")
bare_cpu=$(sed -n 's/.*cpu_seconds=\([0-9.]*\).*/\1/p' "$out/bare")
awk -v w="$window_cpu" -v b="$bare_cpu" -v area="$area" 'BEGIN {
    floor = 0.001  # a bare dialog can use less CPU than the clock resolves
    ratio = w / (b > floor ? b : floor)
    printf "%s / bare = %.2f (limit 1.50)\n", area, ratio
    exit ratio <= 1.5 ? 0 : 1
}'

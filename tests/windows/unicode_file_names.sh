#!/usr/bin/env bash
# unicode_file_names.sh WINE_RUN PREFIX VSSTOOL_CONFIG_EXE WORK_DIR
# Backs up a simulated instrument into a file whose name no single-byte code page holds, restores it from
# there, and checks that every file appeared on the host under its exact name.
set -euo pipefail
wine_run=$1 prefix=$2 tool=$3 work=$4
rm -rf "$work"
mkdir -p "$work"
name="Prüfstand α-β Ωmega"
windows() { echo "Z:${1//\//\\}"; } # a host path as the same file seen from Windows

run() { "$wine_run" --prefix "$prefix" "$tool" "$@"; }

run --sim-state "$(windows "$work/$name.state")" --trace "$(windows "$work/$name.trace")" --simulate \
    save all backup "$(windows "$work/$name.csv")"
run --sim-state "$(windows "$work/$name.state")" --simulate --yes restore "$(windows "$work/$name.csv")" \
    diff "$(windows "$work/$name.csv")"

for suffix in csv state trace; do
    [ -s "$work/$name.$suffix" ] || { echo "missing: $work/$name.$suffix"; ls -l "$work"; exit 1; }
done
grep -q '%SpinstandType' "$work/$name.csv" || { echo "the backup holds no spinstand section"; exit 1; }
grep -q 'CoDriver.Create' "$work/$name.trace" || { echo "the trace holds no creation"; exit 1; }
echo "ok: $(ls "$work" | tr '\n' ' ')"

#!/usr/bin/env bash
# vsstool_starts.sh WINE_RUN PREFIX VSSTOOL_EXE WORK_DIR
# Starts vsstool.exe itself under Wine: its own main, the Qt DLLs and plugins deployed beside it, the platform
# plugin found in platforms\. It renders every window to PNG files and writes the trace of that session.
set -euo pipefail
wine_run=$1 prefix=$2 tool=$3 work=$4
rm -rf "$work"
mkdir -p "$work"
windows() { echo "Z:${1//\//\\}"; } # a host path as the same file seen from Windows

QT_QPA_PLATFORM=offscreen "$wine_run" --prefix "$prefix" "$tool" --trace "$(windows "$work/screenshots.trace")" \
    --screenshots "$(windows "$work")"

for window in frmTop frmOpen-level2 frmIni frmIniSetting; do
    [ -s "$work/$window.png" ] || { echo "missing: $work/$window.png"; ls -l "$work"; exit 1; }
done
grep -q 'IDriver.Open("QTB::R2208C")' "$work/screenshots.trace" || { echo "the trace holds no session"; exit 1; }
echo "ok: $(find "$work" -name '*.png' | wc -l) windows rendered"

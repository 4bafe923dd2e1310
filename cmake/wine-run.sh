#!/usr/bin/env bash
# Runs one Windows program under Wine for CTest, headless:
#   wine-run.sh [--prefix DIR] PROGRAM [ARGS...]
#   wine-run.sh [--prefix DIR] --stop        stop the prefix's wineserver
# The first call creates the prefix and starts one persistent wineserver; every Wine process is started with its
# standard streams away from the caller's pipes (Wine's helper processes would otherwise keep CTest waiting) and
# the program's own output is captured in files and printed when it ends.
set -uo pipefail

prefix="${WINEPREFIX:-$HOME/.cache/vss-wine}"
if [ "${1:-}" = "--prefix" ]; then
    prefix="$(realpath -m "$2")"
    shift 2
fi
[ $# -ge 1 ] || { echo "usage: $0 [--prefix DIR] PROGRAM [ARGS...] | --stop" >&2; exit 2; }

wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine="$(command -v wine64 || command -v wine)"
export WINEPREFIX="$prefix" WINEARCH=win64 WINEDEBUG="${WINEDEBUG:--all,err+module}"
export WINEDLLOVERRIDES="mscoree,mshtml="

if [ "$1" = "--stop" ]; then
    [ -d "$prefix" ] && wineserver -k >/dev/null 2>&1
    exit 0
fi

mkdir -p "$(dirname "$prefix")"
(
    flock 9
    if [ ! -f "$prefix/system.reg" ]; then
        "$wine" wineboot --init </dev/null >/dev/null 2>&1 9>&-
    fi
    if ! wineserver -p 9>&- </dev/null >/dev/null 2>&1; then :; fi
    "$wine" cmd /c exit </dev/null >/dev/null 2>&1 9>&-
) 9>"$prefix.lock"

out="$(mktemp)"
err="$(mktemp)"
trap 'rm -f "$out" "$err"' EXIT
"$wine" "$@" </dev/null >"$out" 2>"$err"
rc=$?
# Wine writes CR LF; CTest and gtest discovery read plain lines.
tr -d '\r' <"$out"
tr -d '\r' <"$err" | grep -v -e nodrv_CreateWindow -e 'fixme:' >&2
exit $rc

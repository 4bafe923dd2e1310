#!/usr/bin/env bash
# wine-screenshot.sh VSSTOOL_EXE OUT.png [WIDTHxHEIGHT [CROP]]
# The picture of vsstool.exe in docs/windows.md: the program on a virtual X display (Xvfb), in a Wine desktop of
# the given size (default 420x260) with Qt's Windows platform plugin and style, on the built-in simulator, in a
# Wine prefix of its own beside the program; the display is captured with xwd after a few seconds and cut to
# CROP (WIDTHxHEIGHT+LEFT+TOP) when given. Not part of the tests; needs the packages xvfb, x11-apps and netpbm.
# The picture in docs/windows.md, the top window with its frame (the simulator's panel lies beside it):
#   tests/windows/wine-screenshot.sh build/mingw/bin/VssTool.exe docs/screenshots/vsstool-wine.png \
#       420x260 334x174+35+16
set -euo pipefail
tool="$(realpath "$1")" out=$2 size=${3:-420x260} crop=${4:-}
wine=/usr/lib/wine/wine64
[ -x "$wine" ] || wine="$(command -v wine64 || command -v wine)"
WINEPREFIX="$(dirname "$tool")/../wineprefix-screenshot"
export WINEPREFIX WINEARCH=win64 WINEDEBUG=-all
export WINEDLLOVERRIDES="mscoree,mshtml="
display=:$((90 + RANDOM % 100))

Xvfb "$display" -screen 0 "${size}x24" -nolisten tcp >/dev/null 2>&1 &
xvfb=$!
trap 'WINEPREFIX="$WINEPREFIX" wineserver -k >/dev/null 2>&1 || true; kill "$xvfb" 2>/dev/null || true' EXIT
export DISPLAY=$display
[ -f "$WINEPREFIX/system.reg" ] || "$wine" wineboot --init </dev/null >/dev/null 2>&1
# Qt's platform plugin for Windows (not offscreen), in a Wine desktop window that fills the display.
QT_QPA_PLATFORM=windows "$wine" explorer "/desktop=vss,$size" "$tool" --simulate </dev/null >/dev/null 2>&1 &
sleep "${VSS_SCREENSHOT_WAIT:-8}"
cut() {
    if [ -z "$crop" ]; then
        cat
        return
    fi
    IFS='x+' read -r width height left top <<<"$crop"
    pnmcut -left "$left" -top "$top" -width "$width" -height "$height"
}
xwd -root -silent -display "$display" | xwdtopnm 2>/dev/null | cut | pnmtopng >"$out"
echo "wrote $out"

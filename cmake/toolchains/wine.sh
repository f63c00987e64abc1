#!/usr/bin/env bash
# Runs a Windows program with Wine: wine.sh PROGRAM [ARGUMENT...]. wine.sh --start starts Wine's services, and --stop ends
# them.
#
# Runs without a display, without Wine's own messages, and in a prefix in the build folder, which the first run creates. A
# program that has no run-time libraries of the compiler next to it uses the installed ones.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

export WINEPREFIX=${WINEPREFIX:-$here/build/wine} WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Disables .NET and the browser, which would prompt for a download, and the sound device.
export WINEDLLOVERRIDES="mscoree,mshtml,winealsa.drv,winepulse.drv=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
# Arguments and file names are in UTF-8.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

if [ "${1:-}" = --stop ]; then
    "$(command -v wineserver || echo /usr/lib/wine/wineserver)" -k || true
    exit 0
fi

# Debian installs it in a folder that is not in PATH.
wine=("$(command -v wine64 || echo /usr/lib/wine/wine64)")
# Wine maps a page at a fixed address, where one start in some thousands finds the heap of its loader, which Linux puts at a
# random address: the start then fails with exit code 1. A container may not allow this.
if setarch -R true 2>/dev/null; then
    wine=(setarch -R "${wine[@]}")
fi
mkdir -p "$(dirname "$WINEPREFIX")"

# Wine's services keep running while a program runs, which makes the next one start ten times faster. This one waits for a
# line.
if [ "${1:-}" = --start ]; then
    "${wine[@]}" wineboot -i
    rm -f "$WINEPREFIX/nothing"
    mkfifo "$WINEPREFIX/nothing"
    "${wine[@]}" cmd <>"$WINEPREFIX/nothing" >/dev/null 2>&1 &
    exit 0
fi

if ! [ -e "$(dirname "$1")/libstdc++-6.dll" ]; then
    compiler=x86_64-w64-mingw32-g++-posix
    folders=()
    for library in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
        folders+=("$(dirname "$(readlink -f "$($compiler -print-file-name=$library)")")")
    done
    WINEPATH=$(printf 'Z:%s;' "${folders[@]}")${WINEPATH:-}
    export WINEPATH
fi

exec "${wine[@]}" "$@"

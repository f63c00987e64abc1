#!/usr/bin/env bash
# Runs a program for Windows with Wine: wine.sh PROGRAM [ARGUMENT...]. wine.sh --start prepares that, and --stop ends
# what still runs.
#
# Without a screen, without messages of Wine's own, and in a prefix of the build's, which the first run makes. A
# program without run-time libraries of the compiler beside it finds those of the machine.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

export WINEPREFIX=${WINEPREFIX:-$here/build/wine} WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Neither .NET nor a browser: each would ask for a download. No sound device, as on a machine that has none.
export WINEDLLOVERRIDES="mscoree,mshtml,winealsa.drv,winepulse.drv=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
# Arguments and file names are in UTF-8.
export LC_ALL=C.UTF-8
unset DISPLAY WAYLAND_DISPLAY

if [ "${1:-}" = --stop ]; then
    "$(command -v wineserver || echo /usr/lib/wine/wineserver)" -k || true
    exit 0
fi

# Debian puts it where no PATH leads.
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
mkdir -p "$(dirname "$WINEPREFIX")"

# While a program runs, Wine's services stay, and the next one starts ten times faster. This one waits for a line.
if [ "${1:-}" = --start ]; then
    "$wine" wineboot -i
    rm -f "$WINEPREFIX/nothing"
    mkfifo "$WINEPREFIX/nothing"
    "$wine" cmd <>"$WINEPREFIX/nothing" >/dev/null 2>&1 &
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

exec "$wine" "$@"

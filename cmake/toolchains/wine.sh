#!/usr/bin/env bash
# Runs a program for Windows with Wine: wine.sh PROGRAM [ARGUMENT...]; wine.sh --stop ends what still runs.
#
# Without a screen, without messages of Wine's own, and in a prefix of the build's, which the first run makes. The
# programs find the run-time libraries of the compiler that made them.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)

export WINEPREFIX=${WINEPREFIX:-$here/build/wine} WINEARCH=win64 WINEDEBUG=${WINEDEBUG:--all}
# Neither .NET nor a browser: each would ask for a download.
export WINEDLLOVERRIDES="mscoree,mshtml=${WINEDLLOVERRIDES:+;$WINEDLLOVERRIDES}"
unset DISPLAY WAYLAND_DISPLAY

if [ "${1:-}" = --stop ]; then
    "$(command -v wineserver || echo /usr/lib/wine/wineserver)" -k || true
    exit 0
fi

compiler=x86_64-w64-mingw32-g++-posix
folders=()
for library in libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll; do
    folders+=("$(dirname "$(readlink -f "$($compiler -print-file-name=$library)")")")
done
WINEPATH=$(printf 'Z:%s;' "${folders[@]}")${WINEPATH:-}
export WINEPATH

mkdir -p "$(dirname "$WINEPREFIX")"
# Debian puts it where no PATH leads.
wine=$(command -v wine64 || echo /usr/lib/wine/wine64)
exec "$wine" "$@"

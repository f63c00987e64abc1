#!/usr/bin/env bash
# Builds libsoxr for Windows x64 from Debian's source package: windows_soxr.sh PREFIX. Fails where the source cannot be
# fetched. Does nothing where PREFIX has the library already.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
. "$here/private_apt.sh"
prefix=$(mkdir -p "$1" && cd "$1" && pwd)
[ ! -e "$prefix/licences/libsoxr.txt" ] || exit 0

rm -rf "$prefix/work"
begin_apt "$prefix/work"
# The machine's own sources of packages, as sources of source packages, which they are not as a rule. Those of others
# than Debian may have none, which is no failure.
for list in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
    [ ! -f "$list" ] ||
        sed -E 's/^Types:.*/Types: deb-src/; s/^deb( |\t)/deb-src\1/' "$list" >"$apt_folder/sources/${list##*/}"
done
cd "$apt_folder"
private_apt update || true
private_apt source --download-only --only-source libsoxr
archive=$(ls libsoxr_*.orig.tar.[gx]z)
cmake -E tar xf "$archive"
mv soxr-*/ source

cmake -S source -B build -G Ninja "-DCMAKE_TOOLCHAIN_FILE=$here/../toolchains/windows-x64.cmake" --no-warn-unused-cli -Wno-dev \
    -DCMAKE_POLICY_VERSION_MINIMUM=3.5 -DCMAKE_BUILD_TYPE=Release "-DCMAKE_INSTALL_PREFIX=$prefix" -DBUILD_SHARED_LIBS=ON \
    -DBUILD_TESTS=OFF -DBUILD_EXAMPLES=OFF -DWITH_OPENMP=OFF -DWITH_LSR_BINDINGS=OFF
cmake --build build
cmake --install build --strip
{
    echo "libsoxr.dll was built from Debian's $archive, unchanged."
    echo
    cat source/LICENCE source/COPYING.LGPL
} >libsoxr.txt
# Last, so that what is there is whole.
mkdir -p "$prefix/licences"
mv libsoxr.txt "$prefix/licences/"
rm -rf "$apt_folder"

#!/usr/bin/env bash
# Fetches OpenAL Soft 1.24 as Debian 13 has it, with the C library that it needs, for a machine whose own is older, and
# installs neither: newer_openal.sh FOLDER. FOLDER/run PROGRAM [ARGUMENT...] then runs a program with both. Fails where they
# cannot be fetched. Does nothing where they have been.
set -euo pipefail
. "$(dirname "${BASH_SOURCE[0]}")/private_apt.sh"
folder=$(mkdir -p "$1" && cd "$1" && pwd)
[ ! -e "$folder/run" ] || exit 0

rm -rf "$folder/work"
begin_apt "$folder/work"
mirror=$(apt-get indextargets --format '$(REPO_URI)' 'Created-By: Packages' 'Origin: Debian' 'Label: Debian' | head -n 1)
[ -n "$mirror" ] || { echo "newer_openal.sh: this machine has no package lists of Debian's" >&2; exit 1; }
keys=/usr/share/keyrings/debian-archive-keyring.gpg
echo "deb [arch=$(dpkg --print-architecture) signed-by=$keys] $mirror trixie main" >"$apt_folder/sources/trixie.list"
cd "$apt_folder"
private_apt update
private_apt download libopenal1 libc6 libgcc-s1 libstdc++6
for package in *.deb; do
    dpkg-deb -x "$package" "$folder/root"
done

loader=$(ls "$folder"/root/usr/lib/*/ld-linux-*.so.*)
own=${loader%/*}
cat >run <<END
#!/bin/sh
# With the data for HRTF that are built in, and not those of the machine's own OpenAL.
XDG_DATA_DIRS="$folder/root/usr/share" exec "$loader" --library-path "$own:/usr/lib/${own##*/}:/lib/${own##*/}" "\$@"
END
chmod +x run
mv run "$folder/"
rm -rf "$apt_folder"

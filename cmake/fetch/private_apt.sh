# For scripts that fetch Debian packages which they neither install nor want in the machine's package lists: apt with
# lists and archives in a folder of its own. It checks what it fetches against Debian's signed lists, as apt does.

# begin_apt FOLDER: then the folder's sources/ takes lists of sources, as /etc/apt/sources.list.d does.
begin_apt() {
    apt_folder=$(mkdir -p "$1" && cd "$1" && pwd)
    mkdir -p "$apt_folder/sources" "$apt_folder/lists/partial" "$apt_folder/cache/archives/partial"
}

private_apt() {
    timeout 180 apt-get -q -o "Dir::Etc::SourceParts=$apt_folder/sources" -o Dir::Etc::SourceList=/dev/null \
        -o "Dir::State::Lists=$apt_folder/lists" -o "Dir::Cache=$apt_folder/cache" -o APT::Sandbox::User= \
        -o Acquire::Languages=none -o Acquire::Retries=3 -o Acquire::http::Timeout=30 "$@"
}

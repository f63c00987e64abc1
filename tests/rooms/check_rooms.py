"""Fails on an include that violates the table in rooms.txt, and on a public header that includes a hidden one.

Usage: check_rooms.py ROOT. Prints one line for each violation as FILE:LINE: TEXT.
"""
import os
import re
import sys
from pathlib import Path

TABLE = "tests/rooms/rooms.txt"
PUBLIC_LIST = "cmake/PublicHeaders.cmake"
SOURCES = {".h", ".cpp", ".inl"}
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]')


def read_table(root):
    """The rooms with what each may include, as the table has it."""
    rooms = {}
    for line in (root / TABLE).read_text().splitlines():
        words = line.split("#")[0].split()
        if words:
            rooms.setdefault(words[0], set()).update(words[1:])
    return rooms


def read_public_headers(root):
    return set(re.findall(r"^\s+(\S+\.(?:h|inl))\)?$", (root / PUBLIC_LIST).read_text(), re.MULTILINE))


def room_of(path, rooms):
    """The longest folder of the table that the path lies in, or None."""
    folder = os.path.dirname(path)
    while folder and folder not in rooms:
        folder = os.path.dirname(folder)
    return folder or None


def is_standard(header):
    return "/" not in header and not header.endswith(".h")


def may_include(room, kind, header, rooms, public_headers):
    allowed = rooms[room] | rooms["everyone"]
    if "*" in allowed:
        return True
    if kind == "<":
        return is_standard(header) or any(("<" + header + ">").startswith(entry) for entry in allowed)
    if "public" in allowed and header in public_headers:
        return True
    return header in allowed or room_of(header, rooms) in allowed | {room}


def includes_of(path):
    for number, line in enumerate(path.read_text().splitlines(), 1):
        match = INCLUDE.match(line)
        if match:
            yield number, match.group(1), match.group(2)


def source_files(root):
    for folder, folders, files in os.walk(root):
        # Build and hidden folders belong to no room.
        folders[:] = sorted(name for name in folders if name != "build" and not name.startswith("."))
        for name in sorted(files):
            if Path(name).suffix in SOURCES:
                yield (Path(folder) / name).relative_to(root).as_posix()


def check(root):
    """Returns the violations as texts."""
    rooms = read_table(root)
    public_headers = read_public_headers(root)
    violations = [f"{PUBLIC_LIST}: there is no {header}"
                  for header in sorted(public_headers) if not (root / header).is_file()]
    for path in source_files(root):
        room = room_of(path, rooms)
        if room is None:
            violations.append(f"{path}: lies in no room of {TABLE}")
            continue
        for number, kind, header in includes_of(root / path):
            if not may_include(room, kind, header, rooms, public_headers):
                violations.append(f"{path}:{number}: {room} may not include {header}")
            elif path in public_headers and kind == '"' and header not in public_headers:
                violations.append(f"{path}:{number}: a public header includes {header}, which is not public")
    return violations


def main():
    violations = check(Path(sys.argv[1]))
    for violation in violations:
        print(violation)
    return 1 if violations else 0


if __name__ == "__main__":
    sys.exit(main())

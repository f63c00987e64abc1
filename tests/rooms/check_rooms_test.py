"""The room checker on a small tree with one fault of each kind: it has to find these and no other."""
import tempfile
import unittest
from pathlib import Path

import check_rooms

TABLE = """
everyone   lib/Export.h
lib
lib/low    <unistd.h>
lib/high   lib/low lib/side/Door.h   # one header of a room
lib/side
tools      public
device     <AL/
"""

PUBLIC = "set(HEADERS\n    lib/Export.h\n    lib/high/Front.h)\n"

GOOD = {
    "lib/Export.h": "",
    "lib/low/Low.h": '#include "lib/Export.h"\n#include <vector>\n#include <unistd.h>\n',
    "lib/low/deep/Deeper.cpp": '#include "lib/low/Low.h"\n',
    "lib/side/Door.h": "",
    "lib/side/Inner.h": '#include "lib/side/Door.h"\n',
    "lib/high/Front.h": '#include "lib/Export.h"\n',
    "lib/high/Front.cpp": '#include "lib/high/Front.h"\n#include "lib/low/Low.h"\n#include "lib/side/Door.h"\n',
    "tools/Tool.cpp": '#include "lib/high/Front.h"\n',
    "device/Device.cpp": "#include <AL/al.h>\n",
    "build/Generated.cpp": '#include "lib/side/Inner.h"\n',
}

BAD = [
    ("a room above", "lib/low/Up.cpp", '#include "lib/high/Front.h"\n'),
    ("a hidden header of a room that has one door", "lib/high/Peek.cpp", '#include "lib/side/Inner.h"\n'),
    ("a system header outside its room", "lib/side/System.cpp", "#include <unistd.h>\n"),
    ("a device header in the library", "lib/low/Play.cpp", "\n#  include <AL/al.h>\n"),
    ("a hidden header in a tool", "tools/Other.cpp", '#include "lib/low/Low.h"\n'),
    ("a public header that needs a hidden one", "lib/high/Front.h", '#include "lib/low/Low.h"\n'),
    ("a path without its folder", "lib/low/Bare.cpp", '#include "Low.h"\n'),
    ("a file in no room", "other/File.cpp", ""),
]


class RoomChecker(unittest.TestCase):
    def check(self, files):
        with tempfile.TemporaryDirectory() as folder:
            root = Path(folder)
            for name, text in {check_rooms.TABLE: TABLE, check_rooms.PUBLIC_LIST: PUBLIC, **files}.items():
                path = root / name
                path.parent.mkdir(parents=True, exist_ok=True)
                path.write_text(text)
            return check_rooms.check(root)

    def test_finds_nothing_in_a_good_tree(self):
        self.assertEqual(self.check(GOOD), [])

    def test_finds_each_fault_once(self):
        for what, path, text in BAD:
            with self.subTest(what):
                violations = self.check({**GOOD, path: text})
                self.assertEqual(len(violations), 1, violations)
                self.assertTrue(violations[0].startswith(path + ":"), violations)

    def test_misses_a_public_header_that_is_gone(self):
        files = {name: text for name, text in GOOD.items() if name != "lib/high/Front.h"}
        self.assertTrue(any("there is no lib/high/Front.h" in text for text in self.check(files)))


if __name__ == "__main__":
    unittest.main()

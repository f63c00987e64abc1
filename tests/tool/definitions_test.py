"""Runs the built tool on sound definitions: what `check` says and returns, and what `info` shows.

Usage: definitions_test.py TOOL
"""
import subprocess
import sys
import tempfile
import textwrap
import unittest
import wave
from pathlib import Path

TOOL = ""


class DefinitionsTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        with wave.open(str(self.folder / "a.wav"), "wb") as file:
            file.setparams((1, 2, 22050, 0, "NONE", ""))
            file.writeframes(bytes(2000))

    def write(self, name, block):
        """A definition whose first keyword stands in line 3."""
        self.write_text(name, "*SOUND_DEFINITION\n{\n" + textwrap.dedent(block).strip("\n") + "\n}\n")

    def write_text(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)

    def run_tool(self, *arguments):
        return subprocess.run([TOOL, *arguments], cwd=self.folder, stdin=subprocess.DEVNULL, capture_output=True,
                              text=True, check=False)

    def check(self, *arguments):
        done = self.run_tool("check", *arguments)
        return done.returncode, done.stdout.splitlines(), done.stderr

    def test_a_good_definition_is_good(self):
        self.write("a.sound", """
            *FILE a.wav
            *GAIN 0.8
            *FX_ECHO { *FEEDBACK 30 }
            """)
        self.write("line.sound.txt", """
            *FILE a.wav
            *POLYLINE
            {
                *NUM_ADD_SOUNDS 2
                *POINT 0 0 0
                *POINT 9 0 0
            }
            """)
        self.assertEqual(self.check("--strict", "a.sound", "line.sound.txt"),
                         (0, ["a.sound: good", "line.sound.txt: good"], ""))

    def test_each_finding_has_its_line_and_its_weight(self):
        # The first keyword of each stands in line 4, behind the name of the file.
        rows = [
            ("*VOLUME 1", 4, "error", "*VOLUME is unknown"),
            ("*gain 1", 4, "error", "in capitals"),
            ("*SET_FREQUENCY true", 4, "error", "spelt *SET_FRQUENCY"),
            ("*GAIN 0.5 0.6", 4, "error", "more than it takes"),
            ("*GAIN loud", 4, "error", "needs a number, and 'loud' is none; the reading stops here"),
            ("*GAIN", 4, "error", "nothing stands there"),
            ("*DELAY -1", 4, "error", "*DELAY -1 is below 0; the reading stops here"),
            ("*DELAY -1\n*LOOPING true", 5, "error", "*LOOPING is lost"),
            ("*FREQUENCY 99", 4, "error", "*FREQUENCY 99 is outside 100 to 100000 and is ignored"),
            ("*GAIN 1.5", 4, "error", "*GAIN 1.5 is outside 0 to 1 and is ignored"),
            ("*CONE_GAIN 2\n*INNER_CONE_ANGLE 90", 4, "warning", "*CONE_GAIN 2 is outside 0 to 1"),
            ("*FX_PARAMEQ {\n*GAIN 20\n}", 5, "warning", "*GAIN 20 is outside -15 to 15"),
            ("*FX_PARAMEQ {\n*RATEHZ 20\n}", 5, "error", "*RATEHZ is unknown here"),
            ("*FREQUENCY 9000\n*FX_GARGLE", 5, "error", "cannot change its rate"),
            ("*GAIN 0.5\n*GAIN 0.6", 5, "warning", "what line 4 says does not count"),
            ("*FX_GARGLE\n*FX_GARGLE { *RATEHZ 5 }", 5, "warning", "what line 4 says does not count"),
            ("*MIN_DISTANCE 9\n*MAX_DISTANCE 5", 5, "warning", "does not fall off"),
            ("*MIN_DISTANCE 0\n*MAX_DISTANCE 0", 5, "warning", "never heard"),
            ("*INNER_CONE_ANGLE 90", 4, "warning", "no cone is in use"),
            ("*CONE_GAIN 0.5\n*INNER_CONE_ANGLE 90\n*OUTER_CONE_ANGLE 60", 6, "warning", "below the inner one"),
            ("*POLYLINE", 4, "error", "*POLYLINE has no block"),
            ("*POLYLINE { *POINT 1 2 3 }", 4, "error", "needs two points"),
            ("*POLYLINE { *NUM_ADD_SOUNDS -2 }", 4, "error", "*NUM_ADD_SOUNDS -2 is below 0"),
            ("*LINE\n*POSITION 1 2 3", 9, "warning", "*POSITION is ignored"),
            ("*LINE\n*LOOPING false", 9, "warning", "always loops"),
            ("*LINE\n*FX_ECHO", 9, "warning", "*FX_ECHO is not heard"),
            ("*POLYLINE {\n*NUM_ADD_SOUNDS 9\n*ANGLE 90\n*POINT 1 2 3\n*POINT 2 3 4\n}", 5, "warning",
             "room for 3 additional sounds, not 9"),
            ("*FILE missing.wav", 4, "error", "the sound file 'missing.wav' is not there"),
            ("*FILE bad.wav", 4, "error", "neither a PCM"),
            ("*FILE ../a.wav", 4, "error", "lies outside the folder"),
        ]
        (self.folder / "bad.wav").write_text("no sound")
        line = "*POLYLINE {\n*POINT 1 2 3\n*POINT 2 3 4\n*ANGLE 20\n}"
        for text, number, weight, said in rows:
            with self.subTest(text):
                self.write("x.sound", "*FILE a.wav\n" + text.replace("*LINE", line))
                exit_code, lines, errors = self.check("x.sound")
                place = f"x.sound:{number}: {weight}: "
                self.assertTrue(any(found.startswith(place) and said in found for found in lines), lines)
                has_error = any(": error: " in found for found in lines)
                self.assertEqual((exit_code, errors), (1 if has_error else 0, ""))
                self.assertEqual(self.check("--strict", "x.sound")[0], 1)

    def test_a_definition_that_does_not_load_is_an_error(self):
        for text, said in [
            ("", "the definition is empty"),
            ("*FILE a.wav", "there is no *SOUND_DEFINITION with a block"),
            ("*SOUND_DEFINITION { *GAIN 1 }", "no sound file is named by *FILE"),
            ("*SOUND_DEFINITION { *GAIN x\n*FILE a.wav }", "*FILE is lost"),
        ]:
            with self.subTest(text):
                self.write_text("x.sound", text)
                exit_code, lines, _ = self.check("x.sound")
                self.assertEqual(exit_code, 1)
                self.assertIn(said, "\n".join(lines))
                done = self.run_tool("info", "x.sound")
                self.assertEqual((done.returncode, done.stdout), (1, ""))
                self.assertIn("does not load", done.stderr)

    def test_all_files_are_looked_at_whatever_becomes_of_each(self):
        self.write("good.sound", "*FILE a.wav")
        self.write_text("plain.txt", "*SOUND_DEFINITION { *FILE a.wav }")
        exit_code, lines, errors = self.check("missing.sound", "plain.txt", "good.sound")
        self.assertEqual((exit_code, lines), (1, ["good.sound: good"]))
        self.assertIn("cannot reach 'missing.sound'", errors)
        self.assertIn("'plain.txt' is no sound definition", errors)

    def test_names_of_sound_files_refer_to_the_root(self):
        self.write("sounds/deep.sound", "*FILE a.wav")
        self.assertEqual(self.check("sounds/deep.sound")[0], 1)
        self.assertEqual(self.check("--root", ".", "sounds/deep.sound"), (0, ["sounds/deep.sound: good"], ""))
        self.write("out.sound", "*FILE a.wav")
        exit_code, _, errors = self.check("--root", "sounds", "out.sound")
        self.assertEqual(exit_code, 1)
        self.assertIn("'out.sound' does not lie below 'sounds'", errors)

    def test_info_shows_the_settings_as_they_were_loaded(self):
        self.write("a.sound", """
            *FILE a.wav
            *GAIN 0.25
            *DELAY 40
            *FREQUENCY 9000
            *CUTOUT false
            *POLYLINE
            {
                *POINT 1 2 3
                *POINT 4 5 6
            }
            *FX_GARGLE { *RATEHZ 7 }
            *LOOPING x
            *MIN_DISTANCE 3
            """)
        done = self.run_tool("info", "a.sound", "a.wav")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        shown = {" ".join(line.split()) for line in done.stdout.splitlines()}
        self.assertLessEqual({
            "a.sound", "sound file a.wav", "looping no", "gain 0.25", "delay 40 ms", "distances 10 to 500",
            "rate that of the file", "line 2 points, 0 additional sounds, angle 45", "1 2 3", "4 5 6",
            "*FX_GARGLE *RATEHZ 7 *WAVEFORM 0", "a.wav", "type PCM wave"}, shown)


if __name__ == "__main__":
    TOOL = sys.argv.pop(1)
    unittest.main()

"""Runs the built tool on small files and looks at what a user gets: exit code, output, and the files it writes.

Usage: tool_test.py TOOL. With HARMONET_NO_RENDERING set what needs the OpenAL driver is left out.
"""
import array
import math
import os
import pty
import signal
import subprocess
import sys
import tempfile
import unittest
import wave
from pathlib import Path

TOOL = ""
RATE_HZ = 22050

needs_rendering = unittest.skipIf("HARMONET_NO_RENDERING" in os.environ, "no OpenAL driver was built")


def sine(hertz, seconds, amplitude):
    return array.array("h", (round(amplitude * 32767 * math.sin(2 * math.pi * hertz * i / RATE_HZ))
                             for i in range(round(seconds * RATE_HZ))))


def rms(samples):
    return math.sqrt(sum(x * x for x in samples) / len(samples)) / 32767


class ToolTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        # A user's own settings of OpenAL must not show in what is rendered.
        self.environment = {**os.environ, "HOME": folder.name, "XDG_CONFIG_HOME": folder.name}

    def write_wave(self, name, pcm, channels=1, width=2):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        with wave.open(str(path), "wb") as file:
            file.setparams((channels, width, RATE_HZ, 0, "NONE", ""))
            file.writeframes(pcm)
        return name

    def read_wave(self, name):
        """The samples of each channel of a 16-bit file."""
        with wave.open(str(self.folder / name)) as file:
            self.assertEqual(file.getsampwidth(), 2)
            samples = array.array("h", file.readframes(file.getnframes()))
            return [samples[channel::file.getnchannels()] for channel in range(file.getnchannels())]

    def run_tool(self, *arguments):
        return subprocess.run([TOOL, *map(str, arguments)], cwd=self.folder, env=self.environment,
                              stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)

    def succeed(self, *arguments):
        done = self.run_tool(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def test_a_failure_is_one_sentence_and_an_exit_code(self):
        tone = self.write_wave("tone.wav", sine(440, 0.1, 0.5))
        (self.folder / "text.wav").write_text("This is no sound.")
        (self.folder / "empty.wav").write_bytes(b"")
        for arguments, said in [
            (["info", "missing.wav"], "there is no file 'missing.wav'"),
            (["play", "missing.wav"], "there is no file 'missing.wav'"),
            (["decode", "missing.wav", "out.wav"], "there is no file 'missing.wav'"),
            (["info", "text.wav"], "'text.wav' is neither"),
            (["play", tone, "text.wav"], "'text.wav' is neither"),
            (["decode", "text.wav", "out.wav"], "'text.wav' is neither"),
            (["info", "empty.wav"], "'empty.wav' is empty"),
            (["info", "."], "is not a file"),
            (["play", tone, "--driver", "NoSuchDriver"], "no sound driver works"),
            (["play", tone, "--render", "nowhere/out.wav"], "cannot write 'nowhere/out.wav'"),
            (["decode", tone, "nowhere/out.wav"], "cannot write 'nowhere/out.wav'"),
            (["decode", tone, tone], "the same file"),
            (["play", tone, "--loop", "--render", "out.wav"], "needs --seconds"),
            (["play", tone, "--driver", "HarmonetNull", "--option", "nonsense"], "'nonsense' is no option"),
        ]:
            with self.subTest(arguments):
                done = self.run_tool(*arguments)
                self.assertEqual(done.returncode, 1)
                self.assertIn(said, done.stderr)
                self.assertEqual(done.stderr.count("\n"), 1, done.stderr)
                self.assertFalse((self.folder / "out.wav").exists())

    def test_wrong_arguments_are_refused(self):
        tone = self.write_wave("tone.wav", sine(440, 0.1, 0.5))
        for arguments in [[], ["sing"], ["play"], ["play", tone, "--at", "1,2"], ["play", tone, "--gain", "2"],
                          ["play", tone, "--seconds", "x"], ["decode", tone]]:
            with self.subTest(arguments):
                done = self.run_tool(*arguments)
                self.assertNotEqual(done.returncode, 0)
                self.assertNotEqual(done.stderr, "")

    def test_info_goes_on_behind_a_bad_file(self):
        tone = self.write_wave("tone.wav", sine(440, 0.5, 0.5))
        done = self.run_tool("info", "missing.wav", tone)
        self.assertEqual(done.returncode, 1)
        for words in ["PCM wave", f"{RATE_HZ} Hz", "500 ms", f"{RATE_HZ // 2} sample frames"]:
            self.assertIn(words, done.stdout)

    def test_decoding_a_wave_gives_its_own_bytes(self):
        data = bytes(range(256)) * 12
        for channels, width in [(1, 1), (2, 1), (1, 2), (2, 2), (2, 3), (2, 4)]:
            with self.subTest(channels=channels, width=width):
                name = self.write_wave("in.wav", data, channels, width)
                self.succeed("decode", name, "out.wav")
                with wave.open(str(self.folder / "out.wav")) as out:
                    self.assertEqual((out.getnchannels(), out.getsampwidth(), out.getframerate()),
                                     (channels, width, RATE_HZ))
                    self.assertEqual(out.readframes(out.getnframes()), data)

    @needs_rendering
    def test_a_rendered_sound_has_its_length_and_level(self):
        tone = self.write_wave("tone.wav", sine(441, 1.0, 0.5))
        self.succeed("play", tone, "--gain", "0.5", "--render", "out.wav")
        for samples in self.read_wave("out.wav"):
            # Up to a game frame may follow the end.
            self.assertAlmostEqual(len(samples) / RATE_HZ, 1.0, delta=0.1)
            self.assertAlmostEqual(rms(samples[:RATE_HZ]), 0.25 / math.sqrt(2), delta=0.002)

    @needs_rendering
    def test_a_place_has_a_side_and_a_distance(self):
        tone = self.write_wave("tone.wav", sine(441, 1.0, 0.5))
        for place, silent in [("2,0,0", 0), ("-2,0,0", 1)]:
            with self.subTest(place):
                self.succeed("play", tone, "--at", place, "--render", "out.wav")
                channels = self.read_wave("out.wav")
                self.assertLess(rms(channels[silent]), 0.002)
                # Full up to a distance of 1, half at 2.
                self.assertAlmostEqual(rms(channels[1 - silent][:RATE_HZ]), 0.25 / math.sqrt(2), delta=0.005)

    @needs_rendering
    def test_a_loop_lasts_as_long_as_it_is_told_to(self):
        tone = self.write_wave("tone.wav", sine(441, 0.1, 0.5))
        self.succeed("play", tone, "--loop", "--seconds", "0.73", "--render", "out.wav")
        left = self.read_wave("out.wav")[0]
        self.assertEqual(len(left), int(0.73 * RATE_HZ))
        self.assertAlmostEqual(rms(left), 0.5 / math.sqrt(2), delta=0.005)

    def test_files_of_several_folders_play_on_fewer_channels(self):
        names = [self.write_wave(f"{folder}/tone.wav", sine(440, 2.0, 0.5)) for folder in ("a", "b", "c")]
        said = self.succeed("play", *names, "--channels", "1", "--driver", "HarmonetNull")
        for name in names:
            self.assertIn(f"started {name}\n", said)
        # One is heard to its end; the others run on unheard until hardly anything is left.
        self.assertEqual(said.count("ended"), 1, said)
        self.assertEqual(said.count("cut off"), 2, said)

    def test_an_interrupt_ends_it_in_good_order(self):
        tone = self.write_wave("tone.wav", sine(440, 0.5, 0.5))
        with subprocess.Popen([TOOL, "play", tone, "--loop", "--driver", "HarmonetNull"], cwd=self.folder,
                              env=self.environment, stdout=subprocess.PIPE, text=True) as tool:
            self.assertEqual(tool.stdout.readline(), f"started {tone}\n")
            tool.send_signal(signal.SIGINT)
            self.assertEqual(tool.stdout.read(), f"cut off {tone}\n")
        self.assertEqual(tool.returncode, 0)

    def test_progress_is_shown_on_a_terminal_alone(self):
        tone = self.write_wave("tone.wav", sine(440, 1.0, 0.5))
        arguments = ["play", tone, "--driver", "HarmonetNull"]
        self.assertNotIn("\r", self.succeed(*arguments))

        ours, terminal = pty.openpty()
        subprocess.run([TOOL, *arguments], cwd=self.folder, env=self.environment, stdout=terminal, check=True)
        # A read gives what has arrived so far, so a mark of our own says where the tool's output ends.
        os.write(terminal, b"<end>")
        shown = b""
        while not shown.endswith(b"<end>"):
            shown += os.read(ours, 4096)
        os.close(terminal)
        os.close(ours)
        self.assertIn(b"\r\033[K0:00.5, 1 playing", shown)

    def test_the_version_is_told(self):
        self.assertRegex(self.succeed("--version"), r"^harmonet \d+\.\d+\.\d+\n$")


if __name__ == "__main__":
    TOOL = os.path.abspath(sys.argv.pop(1))
    unittest.main()

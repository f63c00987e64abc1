"""Runs the built tool on small files and looks at what a user gets: exit code, output, and the files it writes;
for sound definitions what `check` says and returns, and what `info` shows.

Usage: tool_test.py TOOL. With HARMONET_NO_RENDERING set what needs the OpenAL driver is left out; HARMONET_EMULATOR
names the command that runs a tool built for another machine, and HARMONET_BROWSER a Chromium to see pages with.
"""
import array
import json
import math
import os
import pty
import re
import resource
import shlex
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import textwrap
import unittest
import wave
from pathlib import Path

TOOL = []
RATE_HZ = 22050
STREAMS = Path(__file__).resolve().parent.parent / "files/mpeg/streams"

ON_WINDOWS = any(argument.endswith(".exe") for argument in sys.argv)
LINE_END = b"\r\n" if ON_WINDOWS else b"\n"
needs_rendering = unittest.skipIf("HARMONET_NO_RENDERING" in os.environ, "no OpenAL driver was built")


def sine(hertz, seconds, amplitude):
    return array.array("h", (round(amplitude * 32767 * math.sin(2 * math.pi * hertz * i / RATE_HZ))
                             for i in range(round(seconds * RATE_HZ))))


def rms(samples):
    return math.sqrt(sum(x * x for x in samples) / len(samples)) / 32767


class ToolCase(unittest.TestCase):
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

    def run_tool(self, *arguments, stdout=subprocess.PIPE, **settings):
        return subprocess.run([*TOOL, *map(str, arguments)], cwd=self.folder, env=self.environment,
                              stdin=subprocess.DEVNULL, stdout=stdout, stderr=subprocess.PIPE, encoding="utf-8",
                              check=False, timeout=120, **settings)

    def succeed(self, *arguments):
        done = self.run_tool(*arguments)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout

    def refuse(self, code, said, *arguments, **settings):
        done = self.run_tool(*arguments, **settings)
        self.assertEqual(done.returncode, code, done.stderr)
        self.assertIn(said, done.stderr)
        return done.stderr


class SoundsTest(ToolCase):
    def setUp(self):
        super().setUp()
        self.write_wave("tone.wav", sine(440, 0.1, 0.5))

    def test_verbose_shows_the_reasons_of_the_library(self):
        play = ["play", "tone.wav", "--driver", "NoSuchDriver,HarmonetNull", "--option", "MaxSounds=-3"]
        self.assertEqual(self.run_tool(*play).stderr, "")
        done = self.run_tool(*play, "--verbose")
        self.assertEqual(done.returncode, 0)
        for reason in ("warning: sound driver 'NoSuchDriver", "warning: option MaxSounds=-3: the minimum is 0",
                       "note: sound driver 'HarmonetNull"):
            self.assertIn("library " + reason, done.stderr)

    def test_a_failure_is_one_sentence_and_an_exit_code(self):
        (self.folder / "text.wav").write_text("This is no sound.")
        (self.folder / "empty.wav").write_bytes(b"")
        for code, arguments, said in [
            (3, ["info", "missing.wav"], "there is no file 'missing.wav'"),
            (3, ["play", "missing.wav"], "there is no file 'missing.wav'"),
            (3, ["decode", "missing.wav", "out.wav"], "there is no file 'missing.wav'"),
            (4, ["info", "text.wav"], "'text.wav' is neither"),
            (4, ["play", "tone.wav", "text.wav"], "'text.wav' is neither"),
            (4, ["decode", "text.wav", "out.wav"], "'text.wav' is neither"),
            (3, ["info", "empty.wav"], "'empty.wav' is empty"),
            (3, ["info", "."], "is not a file"),
            (7, ["play", "tone.wav", "--driver", "NoSuchDriver"], "no working sound driver"),
            (5, ["play", "tone.wav", "--render", "nowhere/out.wav"], "cannot write to 'nowhere/out.wav'"),
            (5, ["decode", "tone.wav", "nowhere/out.wav"], "cannot write to 'nowhere/out.wav'"),
            (2, ["decode", "tone.wav", "tone.wav"], "the same file"),
            (2, ["play", "tone.wav", "--loop", "--render", "out.wav"], "needs --seconds"),
            (2, ["play", "tone.wav", "--driver", "HarmonetNull", "--option", "nonsense"], "'nonsense' is not an option"),
            *([] if ON_WINDOWS else [(5, ["decode", "tone.wav", "/dev/full"], "No space left")]),
        ]:
            with self.subTest(arguments):
                self.assertEqual(self.refuse(code, said, *arguments).count("\n"), 1)
                self.assertFalse((self.folder / "out.wav").exists())

    def test_wrong_arguments_are_refused(self):
        null = ["play", "tone.wav", "--driver", "HarmonetNull"]
        for arguments, said in [([], "expected a command"), (["sing"], "'sing' is not a command"), (["play"], "FILE"),
                                ([*null, "--at", "1,2"], "--at"), ([*null, "--at", "1,nan,2"], "got 'nan'"),
                                ([*null, "--gain", "2"], "--gain"), ([*null, "--gain", "nan"], "got 'nan'"),
                                ([*null, "--seconds", "x"], "got 'x'"), (["decode", "tone.wav"], "OUT.wav"),
                                ([*null, "--channels", "509"], "--channels"), (["paly", "tone.wav"], "did you mean 'play'?"),
                                ([*null, "--top"], "--top"),
                                ([*null, "--piority", "3"], "did you mean '--priority'?")]:
            with self.subTest(arguments):
                self.refuse(2, said, *arguments)

    def test_the_help_lists_the_exit_codes(self):
        for code in range(8):
            self.assertRegex(self.succeed("--help"), rf"(?m)^  {code}  [`\w]")

    def test_streams_take_the_place_of_files(self):
        tone = (self.folder / "tone.wav").read_bytes()
        definition = b"*SOUND_DEFINITION { *FILE tone.wav }"
        for arguments, given, expected in [(["decode", "-", "-"], tone, tone),
                                           (["check", "-"], definition, b"-: good" + LINE_END)]:
            with self.subTest(arguments):
                done = subprocess.run([*TOOL, *arguments], cwd=self.folder, input=given, capture_output=True,
                                      check=False)
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, expected, b""))
        read, write = os.pipe()
        os.close(read)
        done = self.run_tool("decode", "tone.wav", "-", stdout=write)
        os.close(write)
        self.assertEqual(done.returncode, 6, done.stderr)

    def test_json_is_a_line_for_each_file(self):
        (self.folder / "a.sound").write_text("*SOUND_DEFINITION { *FILE tone.wav\n*GAIN 0.8\n*FX_ECHO\n*LOUD 1 }")
        done = self.run_tool("info", "--json", "missing.wav", "tone.wav", "a.sound")
        self.assertEqual(done.returncode, 3)
        missing, tone, definition = map(json.loads, done.stdout.splitlines())
        self.assertEqual((missing["file"], missing["exitCode"]), ("missing.wav", 3))
        self.assertIn("no file", missing["error"])
        self.assertEqual((tone["rateHz"], tone["channels"], tone["sampleFrames"]), (RATE_HZ, 1, RATE_HZ // 10))
        self.assertEqual((definition["soundFile"], definition["gain"]), ("tone.wav", 0.8))
        self.assertIn("*LEFTDELAY", definition["effects"]["*FX_ECHO"])
        checked = json.loads(self.run_tool("check", "--json", "a.sound").stdout)
        self.assertEqual((checked["errors"], checked["findings"][0]["line"]), (1, 4))

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

    def test_a_truncated_file_is_decoded_with_a_warning(self):
        wrapped = (STREAMS / "wrapped-44100.wav").read_bytes()
        plain = (self.folder / self.write_wave("in.wav", bytes(4000))).read_bytes()
        mpeg = (STREAMS / "mono-48000.mp3").read_bytes()
        adpcm = (STREAMS.parents[1] / "adpcm/sox-stereo.wav").read_bytes()
        piped = plain[:40] + b"\xff\xff\xff\xff" + plain[44:]
        for name, whole in [("wave", plain), ("MPEG", mpeg), ("MPEG in a wave", wrapped), ("ADPCM", adpcm)]:
            with self.subTest(name):
                (self.folder / "in").write_bytes(whole)
                self.succeed("decode", "in", "out.wav")
                (self.folder / "in").write_bytes(whole[:len(whole) - 100])
                done = self.run_tool("decode", "in", "out.wav")
                self.assertEqual(done.returncode, 0)
                self.assertRegex(done.stderr, r"^harmonet: warning: 'in' is cut off: it holds \d+ of \d+ [^\n]*\n$")
        (self.folder / "in").write_bytes(piped)
        self.succeed("decode", "in", "out.wav")

    def test_a_stream_that_changes_its_format_is_not_decoded(self):
        mono, joint, slow = ((STREAMS / f"{name}.mp3").read_bytes()
                             for name in ("mono-48000", "joint-44100", "mono-16000"))
        for name, stream, is_whole in [("mono", mono, True), ("mono twice", mono + mono, True),
                                       ("mono to stereo", mono + joint, False),
                                       ("stereo to mono", joint + mono, False),
                                       ("another rate", mono + slow, False)]:
            with self.subTest(name):
                (self.folder / "in.mp3").write_bytes(stream)
                done = self.run_tool("decode", "in.mp3", "out.wav")
                self.assertEqual(done.returncode, 0 if is_whole else 4)
                self.assertEqual("changes within the sound" in done.stderr, not is_whole, done.stderr)
                self.assertEqual((self.folder / "out.wav").exists(), is_whole)
                (self.folder / "out.wav").unlink(missing_ok=True)

    def test_decode_takes_engine_options(self):
        name = "departure-32000-short"
        (self.folder / "in.mp3").write_bytes((STREAMS / f"{name}.mp3").read_bytes())
        standard = array.array("h", (STREAMS / f"{name}.ref").read_bytes())
        for options, is_standard in [([], False), (["--option", "MpegStandard=1"], True),
                                     (["--option", "MpegStandard=2"], False)]:
            with self.subTest(options):
                self.succeed("decode", *options, "in.mp3", "out.wav")
                with wave.open(str(self.folder / "out.wav")) as out:
                    samples = array.array("h", out.readframes(out.getnframes()))[::11]
                largest = max(abs(a - b) for a, b in zip(samples, standard, strict=True))
                self.assertEqual(largest <= 1, is_standard, largest)
        self.refuse(2, "'MpegStandard' is not an option of the form Key=Value", "decode", "in.mp3", "out.wav", "--option",
                    "MpegStandard")

    def test_no_sound_is_rendered_into_itself(self):
        other = self.write_wave("other.wav", sine(440, 0.1, 0.5))
        tone = self.folder / "tone.wav"
        before = tone.read_bytes()
        os.link(tone, self.folder / "link.wav")
        for output in [["--render", "tone.wav"], ["--render", "link.wav"], ["--render", " tone.wav"],
                       ["--option", "OpenALRender=tone.wav"],
                       ["--render", "out.wav", "--option", "OpenALRender = ./tone.wav"]]:
            with self.subTest(output):
                self.refuse(2, "the same file", "play", other, "tone.wav", *output)
                self.assertEqual(tone.read_bytes(), before)
                self.assertFalse((self.folder / "out.wav").exists())

    @needs_rendering
    def test_a_rendered_file_that_is_cut_off_is_an_error(self):
        tone = self.write_wave("tone.wav", sine(441, 1.0, 0.5))

        # As on a full disk: a write beyond the limit fails.
        def limit_files():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (20000, 20000))

        self.refuse(5, "the rendered file is cut off", "play", tone, "--render", "out.wav", preexec_fn=limit_files)
        self.assertGreater(len(self.read_wave("out.wav")[0]), 0)

    def test_an_answer_that_cannot_be_written_is_an_error(self):
        with open("/dev/full", "w", encoding="utf-8") as full:
            self.refuse(5, "cannot write to standard output", "info", "tone.wav", stdout=full)

    @needs_rendering
    def test_a_loop_lasts_the_given_time(self):
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

    def test_names_and_output_are_utf8(self):
        tone = self.write_wave("\u0394\u03ad\u03bb\u03c4\u03b1/t\u00f3n \U0001d11e.wav", sine(440, 0.1, 0.5))
        copied, trace = tone.replace(".wav", " \u4e8c.wav"), tone.replace(".wav", ".json")
        self.assertIn(f"started {tone}\n", self.succeed("play", tone, "--driver", "HarmonetNull", "--trace", trace))
        self.succeed("decode", tone, copied)
        self.assertEqual(self.read_wave(copied), self.read_wave(tone))
        self.assertTrue(json.loads((self.folder / trace).read_text(encoding="utf-8")))
        self.assertIn(f"'{tone}x'", self.run_tool("info", f"{tone}x").stderr)

    def test_an_interrupt_stops_the_sounds_and_exits_normally(self):
        tone = self.write_wave("tone.wav", sine(440, 0.5, 0.5))
        with subprocess.Popen([*TOOL, "play", tone, "--loop", "--driver", "HarmonetNull"], cwd=self.folder,
                              env=self.environment, stdout=subprocess.PIPE, text=True) as tool:
            self.assertEqual(tool.stdout.readline(), f"started {tone}\n")
            tool.send_signal(signal.SIGINT)
            self.assertEqual(tool.stdout.read(), f"cut off {tone}\n")
        self.assertEqual(tool.returncode, 0)

    @unittest.skipIf(ON_WINDOWS, "Wine draws a console in its own way")
    def test_progress_is_shown_on_a_terminal_alone(self):
        tone = self.write_wave("tone.wav", sine(440, 1.0, 0.5))
        arguments = ["play", tone, "--driver", "HarmonetNull"]
        self.assertNotIn("\r", self.succeed(*arguments))

        ours, terminal = pty.openpty()
        subprocess.run([*TOOL, *arguments], cwd=self.folder, env=self.environment, stdout=terminal, check=True)
        # A read returns what has arrived so far, so a mark is written after the tool's output.
        os.write(terminal, b"<end>")
        shown = b""
        while not shown.endswith(b"<end>"):
            shown += os.read(ours, 4096)
        os.close(terminal)
        os.close(ours)
        self.assertIn(b"\r\033[K0:00.5, 1 playing", shown)


# Half a second of a constant, coded by FFmpeg.
FLAC = bytes.fromhex(
    "664c6143800000220900090000000b00000d056220f000002b116f5abffa98536e809ba50fba1eeb9f10fff8460800d9010009d672"
    "fff8460801de010009ba0afff8460802d70100090e82fff8460803d001000962fafff87608040710e101000918f1")


def extensible(channels, bits, pcm, mask):
    """A wave file whose format chunk has the long form, which the library does not read."""
    frame = channels * bits // 8
    subtype = bytes.fromhex("0100000000001000800000aa00389b71")
    head = struct.pack("<HHIIHHHHI", 0xFFFE, channels, RATE_HZ, RATE_HZ * frame, frame, bits, 22, bits, mask) + subtype
    chunks = b"WAVEfmt " + struct.pack("<I", len(head)) + head + b"data" + struct.pack("<I", len(pcm)) + pcm
    return b"RIFF" + struct.pack("<I", len(chunks)) + chunks


@unittest.skipIf("HARMONET_NO_CONVERTER" in os.environ, "no converter was built")
class ConvertTest(ToolCase):
    def write_24_bits(self, name, samples, channels=1, mask=4):
        pcm = b"".join((sample << 8).to_bytes(3, "little", signed=True) for sample in samples)
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_bytes(extensible(channels, 24, pcm, mask))

    def test_what_does_not_play_is_explained_and_mended(self):
        tone = sine(440, 0.2, 0.5)
        stream = (STREAMS / "mono-48000.mp3").read_bytes()
        self.write_24_bits("deep.wav", tone)
        (self.folder / "sound.flac").write_bytes(FLAC)
        (self.folder / "tagged.mp3").write_bytes(
            b"ID3\x03\0\0\0\0\0\x14" + b"TIT2\0\0\0\x0a\0\0\0A title..".ljust(20, b"\0") + stream
            + b"TAG".ljust(128, b"\0"))
        for name, said, mended in [("deep.wav", "24 bit PCM", "deep-converted.wav"), ("sound.flac", "FLAC", "sound.wav"),
                                   ("tagged.mp3", "a tag or other bytes", "tagged-converted.mp3")]:
            with self.subTest(name):
                self.assertIn(f"`harmonet convert '{name}' '{mended}'`", self.refuse(4, said, "info", name))
                self.succeed("convert", name, mended)
                self.succeed("info", mended)
        self.assertEqual(self.read_wave("deep-converted.wav")[0], tone)
        self.assertEqual((self.folder / "tagged-converted.mp3").read_bytes(), stream)

    def test_a_sound_is_resampled_mixed_and_brought_to_a_loudness(self):
        # Six channels with a tone in the centre, which goes to both sides.
        tone = sine(997, 1.0, 0.05)
        silence = array.array("h", bytes(2 * len(tone)))
        frames = [sample for frame in zip(silence, silence, tone, silence, silence, silence) for sample in frame]
        self.write_24_bits("six.wav", frames, 6, 0x3F)
        self.succeed("convert", "six.wav", "out.wav", "--channels", "1", "--rate", "32000", "--loudness", "-23")
        with wave.open(str(self.folder / "out.wav")) as out:
            self.assertEqual((out.getnchannels(), out.getframerate(), out.getnframes()), (1, 32000, 32000))
        # A sine of 997 Hz in one channel is as many LUFS as its root mean square in decibels.
        self.assertAlmostEqual(20 * math.log10(rms(self.read_wave("out.wav")[0])), -23, delta=0.2)
        # As stereo the sides are equal, and peaks stay below full scale.
        self.assertIn("to keep its peaks below full scale",
                      self.run_tool("convert", "six.wav", "out.wav", "--channels", "2", "--loudness", "0").stderr)
        left, right = self.read_wave("out.wav")
        self.assertEqual(left, right)
        self.assertAlmostEqual(20 * math.log10(max(left) / 32768), -1, delta=0.1)

    def test_a_folder_is_converted_where_it_has_changed(self):
        self.write_24_bits("in/one.wav", sine(440, 0.1, 0.5))
        self.write_24_bits("in/quiet/two.wav", sine(440, 0.2, 0.5))
        self.write_24_bits("in/.hidden/three.wav", sine(440, 0.2, 0.5))
        (self.folder / "in/readme.txt").write_text("This is no sound.")
        for options, expected in [([], (2, 0)), ([], (0, 2)), (["--all"], (2, 0)), (["--format", "adpcm"], (2, 0))]:
            said = self.succeed("convert", "in", "out", *options)
            self.assertIn("%d converted, %d unchanged, 1 skipped" % expected, said)
        self.assertIn("Microsoft ADPCM wave", self.succeed("info", "out/quiet/two.wav"))
        self.write_24_bits("in/one.wav", sine(440, 0.3, 0.5))
        lines = self.succeed("convert", "--json", "in", "out", "--format", "adpcm").splitlines()
        self.assertEqual([(Path(line["output"]).name, line["action"]) for line in map(json.loads, lines)],
                         [("one.wav", "converted"), ("two.wav", "unchanged")])

    def test_the_preview_shows_length_level_spectrum_and_remarks(self):
        self.write_wave("tone.wav", sine(1000, 1.0, 0.5))
        (self.folder / "a&b").mkdir()
        for name, block in [("a", "*FILE tone.wav\n*GAIN 0.5"), ("b", "*FILE lost.wav\n*LOUD 1"), ("c", "</script>")]:
            (self.folder / f"a&b/{name}.sound").write_text(f"*SOUND_DEFINITION {{ {block} }}")
        self.assertIn("3 definitions, 2 with findings", self.succeed("preview", "a&b", "out.html", "--root", "."))
        page = (self.folder / "out.html").read_text()
        self.assertIn("<h1>Sounds of a&amp;b</h1>", page)
        good, lost, broken = json.loads(re.search(r'id="records">(.*?)</script>', page, re.DOTALL).group(1))
        self.assertEqual([record["name"] for record in (good, lost, broken)], ["a.sound", "b.sound", "c.sound"])
        self.assertAlmostEqual(good["seconds"], 1, delta=0.001)
        # Half of the amplitude, a quarter of full scale in all.
        self.assertAlmostEqual(good["peakDecibels"], -12.04, delta=0.1)
        self.assertAlmostEqual(good["lufs"], -15.05, delta=0.2)
        # Each column has its maximum of -6 dB at 1000 Hz, where the rows go from 40 Hz to half the rate.
        row = 64 * math.log(1000 / 40) / math.log(RATE_HZ / 2 / 40)
        for column in good["columns"][1:-1]:
            levels = [int(letter, 36) for letter in column]
            self.assertAlmostEqual(max(levels), 35 * (1 - 6 / 90), delta=1.5)
            self.assertAlmostEqual(levels.index(max(levels)), row, delta=2)
        self.assertGreater(len(lost["findings"]), 1)
        self.assertIn("lost.wav", lost["error"])
        self.assertIn("does not load", broken["error"])

    def test_a_failed_conversion_leaves_the_file_that_was_there(self):
        self.write_24_bits("deep.wav", sine(440, 0.2, 0.5))
        (self.folder / "text.wav").write_text("This is no sound.")
        (self.folder / "cut.wav").write_bytes((self.folder / "deep.wav").read_bytes()[:-900])
        # The decoder loses its way where this one is cut.
        (self.folder / "cut.flac").write_bytes(FLAC[:70])
        (self.folder / "head.flac").write_bytes(FLAC[:44])
        for code, arguments, said in [
            (3, ["missing.flac", "out.wav"], "there is no file 'missing.flac'"),
            (4, ["text.wav", "out.wav"], "is not a sound file of a known type"),
            (2, ["deep.wav", "deep.wav"], "is both input and output"),
            (2, ["deep.wav", "out.mp3", "--rate", "8000"], "encoding to MPEG is not supported"),
            (2, ["deep.wav", "in/../deep.wav", "out/"], "would both become"),
            (5, ["deep.wav", "/dev/full"], "cannot write to"),
            (0, ["cut.wav", "cut out.wav"], "warning: 'cut.wav' is cut off"),
            (0, ["cut.flac", "cut out.wav"], "warning: 'cut.flac' is cut off or damaged after 4608 sample frames"),
            (4, ["head.flac", "out.wav"], "none of its sound can be decoded"),
        ]:
            with self.subTest(arguments):
                (self.folder / "out.wav").write_text("before")
                self.refuse(code, said, "convert", *arguments)
                self.assertEqual((self.folder / "out.wav").read_text(), "before")
                self.assertEqual(list(self.folder.glob("*.part")), [])


class DocumentsTest(ToolCase):
    def test_the_manual_and_the_completions_know_what_the_help_knows(self):
        texts = {what: self.succeed("generate", what) for what in ("man", "bash", "zsh")}
        commands = re.findall(r"(?m)^  (\w+)  ", self.succeed("--help").split("Subcommands:")[1].split("Exit codes")[0])
        self.assertIn("convert", commands)
        for command in commands:
            for option in re.findall(r"(?m)^  (?:-h,)?(--\w+)", self.succeed(command, "--help")):
                self.assertIn(option.replace("-", "\\-"), texts["man"])
                self.assertRegex(texts["bash"], rf"{command}:-\*\).*'.*{option}\b")
                self.assertIn(f"'{option}[", texts["zsh"])

    @unittest.skipUnless(shutil.which("bash"), "there is no bash")
    def test_bash_completes_commands_options_and_values(self):
        script = self.succeed("generate", "bash")
        for words, expected in [(["pl"], ["play"]), (["play", "--ro"], ["--root", "--room"]),
                                (["play", "--room", "bath"], ["bathroom"]), (["generate", "z"], ["zsh"]),
                                (["play", "tone"], [])]:
            with self.subTest(words):
                typed = " ".join(["harmonet", *words])
                done = subprocess.run(
                    ["bash", "-c", f"{script}\nCOMP_WORDS=({typed}) COMP_CWORD={len(words)}\n"
                     "_harmonet; printf '%s\\n' \"${COMPREPLY[@]}\""], capture_output=True, text=True, check=True)
                self.assertEqual(done.stdout.split(), expected, done.stderr)


class TraceTest(ToolCase):
    def play(self, *options):
        self.write_wave("a.wav", sine(440, 1.5, 0.5))
        self.write_wave("b.wav", sine(440, 1.5, 0.5))
        self.succeed("play", "--driver", "HarmonetNull", "--channels", 1, "--at", "3,0,-2", *options, "a.wav",
                     "b.wav")

    def test_each_sound_of_a_trace_has_its_states_and_ends(self):
        self.play("--trace", "out.json")
        stacks, states, times = {}, set(), {}
        for event in json.loads((self.folder / "out.json").read_text()):
            track = event["pid"], event["tid"]
            self.assertGreaterEqual(event["ts"], times.get(track, 0), "events of a track are in the order of time")
            times[track] = event["ts"]
            stack = stacks.setdefault((event.get("cat"), event.get("id")), [])
            if event["ph"] == "b":
                stack.append(event["name"])
                states.add(event["name"])
            elif event["ph"] == "e":
                self.assertEqual(stack.pop(), event["name"])
            elif event["ph"] == "X":
                self.assertGreater(event["dur"], 0)
        self.assertEqual([stack for stack in stacks.values() if stack], [])
        self.assertIn("heard: it has a channel", states)
        self.assertTrue([state for state in states if state.startswith("virtual: ")], states)

    def test_a_timeline_is_one_page_with_all_sounds(self):
        self.play("--timeline", "out.html")
        page = (self.folder / "out.html").read_text()
        self.assertNotRegex(page, r"(src|href)=|https?:|@import")
        data = json.loads(re.search(r'id="data">(.*?)</script>', page, re.DOTALL)[1])
        self.assertEqual(len(data["sounds"]), 2)
        for sound in data["sounds"]:
            self.assertEqual(sound["places"][1:], [3, -2])
            self.assertEqual(sound["states"][::2], sorted(sound["states"][::2]))
        # The one without a channel ends when less than half a second is left.
        self.assertEqual(sorted(sound["outcome"] for sound in data["sounds"]),
                         ["cut off: it had no channel, and too little was left to continue as a virtual sound", "ended"])
        heard = [data["states"][state]["look"] for sound in data["sounds"] for state in sound["states"][1::2]]
        self.assertLessEqual({"heard", "virtual"}, set(heard))

    @unittest.skipUnless("HARMONET_BROWSER" in os.environ, "HARMONET_BROWSER does not name a Chromium")
    def test_a_timeline_runs_in_a_browser(self):
        self.play("--timeline", "out.html")
        page = (self.folder / "out.html").as_uri() + "#search=a.w&select=0&time=1"
        done = subprocess.run([os.environ["HARMONET_BROWSER"], "--headless", "--no-sandbox", "--disable-gpu",
                               f"--user-data-dir={self.folder}/browser", "--dump-dom", page],
                              capture_output=True, text=True, timeout=120, check=True)
        self.assertIn(">1 of 2 sounds<", done.stdout)
        self.assertIn('aria-live="polite">a.wav (positional', done.stdout)


@unittest.skipIf("HARMONET_NO_SCREEN" in os.environ, "no screen was built")
class TopTest(ToolCase):
    def setUp(self):
        super().setUp()
        for name in ("one.wav", "two.wav"):
            self.write_wave(name, sine(440, 1.0, 0.5))

    def start(self, terminal, *options, **environment):
        environment.setdefault("TERM", "xterm")
        play = ["play", "one.wav", "two.wav", "--driver", "HarmonetNull", "--channels", 1, "--loop", "--seconds", 300]
        return subprocess.Popen([*TOOL, *map(str, play), "--top", *options], cwd=self.folder, stdin=terminal,
                                stdout=terminal, stderr=subprocess.PIPE, env={**self.environment, **environment})

    def press(self, keys, expected):
        """Presses the keys, and has the screen drawn anew until it shows these rows of state and name."""
        os.write(self.ours, keys)
        shown = b""
        while expected not in [re.findall(rb"(heard|virtual)\b.*?(\w+)\.wav", screen.partition(b"Why")[2], re.DOTALL)
                               for screen in shown.split(b"\x1b[H\x1b[2J")[1:]]:
            os.write(self.ours, b"\f")
            shown += os.read(self.ours, 65536)

    def test_a_live_table_is_sorted_and_filtered_by_keys(self):
        self.ours, terminal = pty.openpty()
        with self.start(terminal) as tool:
            os.close(terminal)
            first, second = (b"heard", b"one"), (b"virtual", b"two")
            self.press(b"", [first, second])
            self.press(b"n", [first, second])
            self.press(b"n", [second, first])
            self.press(b"v", [second])
            self.press(b"*/oNe\n", [first])
            os.write(self.ours, b"q")
            # What has happened is printed on the screen of before.
            rest = b""
            while b"cut off two.wav" not in rest:
                rest += os.read(self.ours, 65536)
            self.assertEqual((tool.wait(), tool.stderr.read()), (0, b""))
        os.close(self.ours)

    def test_a_terminal_of_no_known_kind_is_refused(self):
        ours, terminal = pty.openpty()
        # ncurses does not free what it has allocated when it refuses a terminal.
        leaks = ":".join([os.environ.get("ASAN_OPTIONS", ""), "detect_leaks=0"])
        with self.start(terminal, TERM="nonsense", ASAN_OPTIONS=leaks) as tool:
            self.assertIn(b"TERM is 'nonsense'", tool.stderr.read())
            self.assertEqual(tool.wait(), 2)
        os.close(terminal)
        os.close(ours)


class DefinitionsTest(ToolCase):
    def setUp(self):
        super().setUp()
        self.write_wave("a.wav", bytes(2000))

    def write(self, name, block):
        """A definition whose first keyword is in line 3."""
        self.write_text(name, "*SOUND_DEFINITION\n{\n" + textwrap.dedent(block).strip("\n") + "\n}\n")

    def write_text(self, name, text):
        path = self.folder / name
        path.parent.mkdir(exist_ok=True)
        path.write_text(text)

    def check(self, *arguments):
        done = self.run_tool("check", *arguments)
        return done.returncode, done.stdout.splitlines(), done.stderr

    def test_a_good_definition_is_good(self):
        self.write("a.sound", "*FILE a.wav\n*GAIN 0.8\n*FREQUENCY 0\n*FX_ECHO { *FEEDBACK 30 }")
        self.write("line.sound.txt", "*FILE a.wav\n*POLYLINE {\n*NUM_ADD_SOUNDS 2\n*POINT 0 0 0\n*POINT 9 0 0\n}")
        self.assertEqual(self.check("--strict", "a.sound", "line.sound.txt"),
                         (0, ["a.sound: good", "line.sound.txt: good"], ""))

    def test_each_finding_has_its_line_and_its_weight(self):
        # The first keyword of each is in line 4, after the name of the file.
        rows = [
            ("*VOLUME 1", 4, "error", "*VOLUME is unknown"),
            ("*gain 1", 4, "error", "in capitals"),
            ("*SET_FREQUENCY true", 4, "error", "spelt *SET_FRQUENCY"),
            ("*GAIN 0.5 0.6", 4, "error", "extra values are ignored"),
            ("*GAIN loud", 4, "error", "expected a number, got 'loud'; reading stops here"),
            ("*DELAY -1", 4, "error", "*DELAY -1 is below 0; reading stops here"),
            ("*DELAY -1\n*LOOPING true", 5, "error", "*LOOPING is lost"),
            ("*FREQUENCY 99", 4, "error", "*FREQUENCY 99 is outside 100 to 100000 and is ignored"),
            ("*LOW_PASS 2", 4, "error", "*LOW_PASS 2 is outside 0 to 1 and is ignored: the sound is not filtered"),
            ("*CONE_GAIN 2\n*INNER_CONE_ANGLE 90", 4, "warning", "*CONE_GAIN 2 is outside 0 to 1"),
            ("*FX_PARAMEQ {\n*GAIN 20\n}", 5, "warning", "*GAIN 20 is outside -15 to 15"),
            ("*FX_PARAMEQ {\n*RATEHZ 20\n}", 5, "error", "*RATEHZ is unknown here"),
            ("*FREQUENCY 9000\n*FX_GARGLE", 5, "error", "cannot change its rate"),
            ("*GAIN 0.5\n*GAIN 0.6", 5, "warning", "the one in line 4 has no effect"),
            ("*FX_GARGLE\n*FX_GARGLE { *RATEHZ 5 }", 5, "warning", "the one in line 4 has no effect"),
            ("*MIN_DISTANCE 9\n*MAX_DISTANCE 5", 5, "warning", "does not fall off"),
            ("*MIN_DISTANCE 0\n*MAX_DISTANCE 0", 5, "warning", "never heard"),
            ("*INNER_CONE_ANGLE 90", 4, "warning", "no cone is in use"),
            ("*CONE_GAIN 0.5\n*INNER_CONE_ANGLE 90\n*OUTER_CONE_ANGLE 60", 6, "warning", "below the inner one"),
            ("*POLYLINE", 4, "error", "*POLYLINE has no block"),
            ("*POLYLINE { *POINT 1 2 3 }", 4, "error", "needs two points"),
            ("*LINE\n*POSITION 1 2 3", 9, "warning", "*POSITION is ignored"),
            ("*LINE\n*LOOPING false", 9, "warning", "always loops"),
            ("*LINE\n*FX_ECHO", 9, "warning", "*FX_ECHO is not heard"),
            ("*POLYLINE {\n*NUM_ADD_SOUNDS 9\n*ANGLE 90\n*POINT 1 2 3\n*POINT 2 3 4\n}", 5, "warning",
             "room for 3 additional sounds, not 9"),
            ("*VARIANT a.wav\n*VARIANT missing.wav", 5, "error", "the sound file 'missing.wav' does not exist"),
            ("*VARIANT_ORDER sequence", 4, "warning", "*VARIANT_ORDER has no effect without *VARIANT"),
            ("*STEALING none", 4, "warning", "*STEALING has no effect without *MAX_INSTANCES"),
            ("*GAIN 0.5\n*GAIN_RANGE 0 7", 5, "warning", "the range exceeds gain 1"),
            ("*FREQUENCY_RANGE 1 20", 4, "error", "20 is outside 0.1 to 10 and is ignored: there is no variation"),
            ("*MAX_INSTANCES -1", 4, "error", "and is ignored: there is no limit"),
            ("*FILE missing.wav", 4, "error", "the sound file 'missing.wav' does not exist"),
            ("*FILE bad.wav", 4, "error", "neither a PCM"),
            ("*FILE ../a.wav", 4, "error", "is outside the asset folder"),
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
            ("*SOUND_DEFINITION { *GAIN 1 }", "*FILE does not name a sound file"),
            ("*SOUND_DEFINITION { *GAIN x\n*FILE a.wav }", "*FILE is lost"),
        ]:
            with self.subTest(text):
                self.write_text("x.sound", text)
                exit_code, lines, _ = self.check("x.sound")
                self.assertEqual(exit_code, 1)
                self.assertIn(said, "\n".join(lines))
                self.refuse(4, "does not load", "info", "x.sound")

    def test_all_files_are_checked_after_a_failure(self):
        self.write("good.sound", "*FILE a.wav")
        self.write_text("plain.txt", "*SOUND_DEFINITION { *FILE a.wav }")
        exit_code, lines, errors = self.check("missing.sound", "plain.txt", "good.sound")
        self.assertEqual((exit_code, lines), (3, ["good.sound: good"]))
        self.assertIn("cannot access 'missing.sound'", errors)
        self.assertIn("'plain.txt' is not a sound definition", errors)

    def test_names_of_sound_files_refer_to_the_root(self):
        self.write("sounds/deep.sound", "*FILE a.wav")
        self.assertEqual(self.check("sounds/deep.sound")[0], 1)
        self.assertEqual(self.check("--root", ".", "sounds/deep.sound"), (0, ["sounds/deep.sound: good"], ""))
        self.write("out.sound", "*FILE a.wav")
        self.refuse(2, "'out.sound' is not below 'sounds'", "check", "--root", "sounds", "out.sound")
        # A link leads out too, which the tests of the engine cannot make everywhere.
        os.symlink(self.folder, self.folder / "sounds/out")
        self.write("sounds/link.sound", "*FILE out/a.wav")
        self.refuse(4, "is outside its root", "play", "sounds/link.sound", "--root", "sounds", "--driver", "HarmonetNull",
                    "--verbose")

    def test_a_definition_plays_as_a_file_does(self):
        (self.folder / "sounds").mkdir()
        self.write_wave("tone.wav", sine(441, 0.5, 0.5))
        self.write("sounds/tone.sound", "*FILE tone.wav\n*GAIN 0.5")
        for name in ("tone.wav", "only.wav"):
            shutil.copy(self.folder / "tone.wav", self.folder / "sounds" / name)
        null = ["--driver", "HarmonetNull"]
        for arguments in [["sounds/tone.sound", "--root", "."], ["tone.sound", "--root", "sounds"],
                          ["only.wav", "--root", "sounds"], ["tone.wav", "sounds/tone.sound", "--root", "."]]:
            with self.subTest(arguments):
                said = self.succeed("play", *arguments, *null)
                for name in arguments[:-2]:
                    self.assertIn(f"started {name}\n", said)
        self.write("bad.sound", "*FILE missing.wav")
        self.write("loop.sound", "*FILE a.wav\n*LOOPING true")
        for code, arguments, said in [(4, ["bad.sound", *null], "'bad.sound' cannot be played"),
                                      (2, ["loop.sound", "--render", "out.wav"], "needs --seconds"),
                                      (2, ["loop.sound", "--room", "kitchen", *null], "kitchen")]:
            with self.subTest(arguments):
                self.assertEqual(self.refuse(code, said, "play", *arguments).count("\n"), 1)

    @needs_rendering
    def test_gain_room_and_walk_are_heard(self):
        self.write_wave("tone.wav", sine(441, 1.0, 0.5))
        self.write("tone.sound", "*FILE tone.wav\n*GAIN 0.5")
        for arguments in ["tone.sound"], ["tone.wav", "--gain", "0.5"]:
            self.succeed("play", *arguments, "--render", "out.wav")
            for samples in self.read_wave("out.wav"):
                # Up to a game frame may follow the end.
                self.assertAlmostEqual(len(samples) / RATE_HZ, 1.0, delta=0.1)
                self.assertAlmostEqual(rms(samples[:RATE_HZ]), 0.25 / math.sqrt(2), delta=0.002)
        # Full up to a distance of 1, half at 2.
        self.succeed("play", "tone.wav", "--at", "-2,0,0", "--render", "out.wav")
        left, right = self.read_wave("out.wav")
        self.assertAlmostEqual(rms(left[:RATE_HZ]), 0.25 / math.sqrt(2), delta=0.005)
        self.assertLess(rms(right), 0.002)
        # The room is heard when the sound has ended.
        self.succeed("play", "tone.wav", "--at", "0,0,-1", "--room", "cave", "--render", "out.wav")
        self.assertGreater(rms(self.read_wave("out.wav")[0][int(1.5 * RATE_HZ):2 * RATE_HZ]), 0.001)
        self.succeed("play", "tone.wav", "--walk", "--render", "out.wav")
        left, right = self.read_wave("out.wav")
        self.assertAlmostEqual(len(left) / RATE_HZ, 10, delta=0.1)
        begin, middle, end = (slice(int(at * RATE_HZ), int((at + 0.5) * RATE_HZ)) for at in (0.5, 4.75, 9))
        # It comes from the right, is loudest in the middle and leaves to the left.
        self.assertGreater(rms(right[begin]), 4 * rms(left[begin]))
        self.assertGreater(rms(left[end]), 4 * rms(right[end]))
        self.assertGreater(rms(left[middle]), 3 * rms(left[end]))

    def test_a_definition_is_played_again_when_it_is_saved(self):
        self.write("a.sound", "*FILE a.wav")
        with subprocess.Popen([*TOOL, "play", "a.sound", "--watch", "--driver", "HarmonetNull"], cwd=self.folder,
                              env=self.environment, stdout=subprocess.PIPE, text=True) as tool:
            lines = [tool.stdout.readline() for _ in range(3)]
            self.assertEqual(lines, ["a.sound: good\n", "started a.sound\n", "ended a.sound\n"])
            self.write("b.sound", "*FILE a.wav\n*LOUD 1")
            os.replace(self.folder / "b.sound", self.folder / "a.sound")
            lines = [tool.stdout.readline() for _ in range(3)]
            self.assertIn("a.sound:4: error: *LOUD is unknown", lines[0])
            self.assertEqual(lines[1:], ["a.sound: 1 error, 0 warnings\n", "started a.sound\n"])
            tool.send_signal(signal.SIGINT)
            tool.stdout.read()
        self.assertEqual(tool.returncode, 0)

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
            *VARIANT b.wav
            *VARIANT c.wav
            *GAIN_RANGE -3 1.5
            *MAX_INSTANCES 2
            *FX_GARGLE { *RATEHZ 7 }
            *LOOPING x
            *MIN_DISTANCE 3
            """)
        done = self.run_tool("info", "a.sound", "a.wav")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        line = json.loads(self.succeed("info", "--json", "a.sound"))["line"]
        self.assertEqual((line["points"], line["additionalSounds"]), ([[1, 2, 3], [4, 5, 6]], 0))
        shown = {" ".join(line.split()) for line in done.stdout.splitlines()}
        self.assertLessEqual({
            "a.sound", "sound file a.wav", "looping no", "gain 0.25", "delay 40 ms", "distances 10 to 500",
            "rate same as the file", "line 2 points, 0 additional sounds, angle 45", "1 2 3", "4 5 6",
            "variants b.wav, c.wav, at random", "gain range -3 to 1.5 dB", "instances at most 2, stealing oldest",
            "*FX_GARGLE *RATEHZ 7 *WAVEFORM 0", "a.wav", "type PCM wave", f"rate {RATE_HZ} Hz"}, shown)


if __name__ == "__main__":
    TOOL = [*shlex.split(os.environ.get("HARMONET_EMULATOR", "")), os.path.abspath(sys.argv.pop(1))]
    unittest.main()

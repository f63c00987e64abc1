#!/usr/bin/env python3
"""Plays each kind of sound out of zip archives: zip_test.py ZIP_SOUNDS SOURCE_FOLDER.

What is stored is read in place and what is compressed is inflated while it is read, so both must sound the same.
"""
import pathlib
import subprocess
import sys
import tempfile
import unittest
import zipfile

PROGRAM, SOURCES = sys.argv[1], pathlib.Path(sys.argv[2])
DEFINITION = '*SOUND_DEFINITION\n{\n    *FILE "mpeg.mp3"\n    *GAIN 0.5\n}\n'


class ZipExample(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(self.enterContext(tempfile.TemporaryDirectory()))

    def pack(self, compression):
        path = self.folder / f"sounds-{compression}.zip"
        with zipfile.ZipFile(path, "w", compression) as archive:
            archive.write(SOURCES / "examples/river/sounds/water.wav", "sub/pcm.wav")
            archive.write(SOURCES / "tests/files/adpcm/sox-stereo.wav", "adpcm.wav")
            archive.write(SOURCES / "tests/files/mpeg/streams/joint-22050.mp3", "mpeg.mp3")
            archive.writestr("quiet.sound", DEFINITION)
            archive.writestr("broken.wav", "RIFF, and no more than that")
        return path

    def play(self, archive, name):
        out = self.folder / "out.wav"
        out.unlink(missing_ok=True)
        ended = subprocess.run([PROGRAM, archive, name, out], capture_output=True, text=True, timeout=60)
        return ended, out.read_bytes()[44:] if ended.returncode == 0 else b""

    def test_every_kind_of_sound_plays_the_same_stored_and_compressed(self):
        stored, deflated = self.pack(zipfile.ZIP_STORED), self.pack(zipfile.ZIP_DEFLATED)
        sounds = {}
        for name in ("sub/pcm.wav", "adpcm.wav", "mpeg.mp3", "quiet.sound"):
            with self.subTest(name):
                ended, sounds[name] = self.play(stored, name)
                self.assertEqual((ended.returncode, ended.stderr), (0, ""))
                self.assertTrue(any(sounds[name]), "silence")
                self.assertEqual(self.play(deflated, name)[1], sounds[name])
        self.assertNotEqual(sounds["quiet.sound"], sounds["mpeg.mp3"])

    def test_the_sounds_of_an_archive_are_listed(self):
        listed = subprocess.run([PROGRAM, self.pack(zipfile.ZIP_STORED)], capture_output=True, text=True, timeout=60)
        self.assertEqual(listed.stdout.split(), ["adpcm.wav", "broken.wav", "mpeg.mp3", "quiet.sound", "sub/pcm.wav"])

    def test_what_does_not_play_is_named_with_its_reason(self):
        archive = self.pack(zipfile.ZIP_DEFLATED)
        for name, reason in (("broken.wav", "is neither a RIFF/WAVE file nor MPEG"), ("lost.wav", "does not exist")):
            with self.subTest(name):
                ended, _ = self.play(archive, name)
                self.assertNotEqual(ended.returncode, 0)
                self.assertIn(f"'{name}' {reason}", ended.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])

"""Decodes streams with two builds of the tool and fails if a sample differs by more than one step of 16 bits.

A stream that the tool refuses has to be refused by both, for the same reason.
Usage: same_pcm.py [--render] COMMAND COMMAND STREAM...; a COMMAND is a tool, or an emulator and a tool in one argument.
With --render it is what is heard of the streams, at half their level, that is compared. What follows their end and what
becomes of another rate than 22050 Hz is OpenAL's, and differs between its versions.
"""
import array
import shlex
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

LARGEST_STEP = 1


def decode(command, stream, folder):
    """Format and samples, or what the tool said on its error output and no samples."""
    return run_tool(command, ["decode", stream], folder)


def render(command, stream, folder):
    """The same of what is heard, which is stereo, for as long as the stream lasts."""
    (channels, *_), decoded = decode(command, stream, folder)
    form, heard = run_tool(command, ["play", stream, "--gain", "0.5", "--option", "OpenALResampling=0", "--render"], folder)
    return form, heard[:2 * len(decoded) // channels]


def run_tool(command, arguments, folder):
    wav = Path(folder) / "result.wav"
    done = subprocess.run([*shlex.split(command), *arguments, str(wav)], capture_output=True, text=True, check=False,
                          timeout=120)
    if done.returncode != 0:
        return done.stderr.strip(), array.array("h")
    with wave.open(str(wav)) as file:
        return file.getparams()[:3], array.array("h", file.readframes(file.getnframes()))


def compare(make, commands, stream, folder):
    """Whether the samples are alike, and a line that says so."""
    (form, samples), (other_form, other_samples) = (make(command, stream, folder) for command in commands)
    if form != other_form or len(samples) != len(other_samples):
        return False, f"{form}, {len(samples)} samples, but {other_form}, {len(other_samples)} samples"
    if not samples:
        return form != "" and isinstance(form, str), f"both refuse it: {form}"
    steps = [abs(a - b) for a, b in zip(samples, other_samples)]
    return max(steps) <= LARGEST_STEP, f"{sum(map(bool, steps))} of {len(steps)} differ, by {max(steps)} at most"


def main(make, commands, streams):
    results = []
    with tempfile.TemporaryDirectory() as folder:
        for stream in streams:
            alike, line = compare(make, commands, stream, folder)
            print(f"{stream}: {line}")
            results.append(alike)
    return 0 if results and all(results) else 1


if __name__ == "__main__":
    rendering = sys.argv[1:2] == ["--render"]
    given = sys.argv[2 if rendering else 1:]
    sys.exit(main(render if rendering else decode, given[:2], given[2:]))

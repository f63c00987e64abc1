"""Decodes streams with two builds of the tool and fails if a sample differs by more than one step of 16 bits.

A stream that the tool refuses has to be refused by both, for the same reason.
Usage: same_pcm.py [--render | --scenes] COMMAND COMMAND FILE...; a COMMAND is a tool, or an emulator and a tool in one
argument.
With --render it is what is heard of the streams, at half their level, that is compared. What follows their end is
OpenAL's, and differs between its versions.
With --scenes each file is played in all the ways in which a place, a room or an effect takes part, to the end. That is
alike only where both tools use the same generation of OpenAL Soft.
"""
import array
import shlex
import shutil
import subprocess
import sys
import tempfile
import wave
from pathlib import Path

LARGEST_STEP = 1

SCENES = {
    "as it is": [],
    "at a place": ["--at=-3,2,4"],
    # At a rate to which OpenAL need not convert its data.
    "binaural": ["--at=3,0,-1", "--option", "OpenALHRTF=1", "--option", "SoundFrequency=48000"],
    "in a cave": ["--at=0,0,-1", "--room", "cave"],
    "passed by in a hangar": ["--walk", "--room", "hangar"],
}
# All effects in one list.
EFFECTS = ["CHORUS", "FLANGER", "ECHO", "DISTORTION", "COMPRESSOR", "GARGLE", "PARAMEQ", "WAVESREVERB", "ENVREVERB"]


def decode(command, stream, folder):
    """Format and samples, or what the tool said on its error output and no samples."""
    return run_tool(command, ["decode", stream], folder)


def render(command, stream, folder):
    """The same of what is heard, which is stereo, for as long as the stream lasts."""
    form, decoded = decode(command, stream, folder)
    if not decoded:
        return form, decoded
    channels, _, rate = form
    form, heard = run_tool(command, ["play", stream, "--gain", "0.5", "--render"], folder)
    frames = len(decoded) // channels * form[2] // rate
    return form, heard[:2 * frames]


def play(command, scene, folder):
    return run_tool(command, ["play", *scene, "--render"], folder)


def run_tool(command, arguments, folder):
    wav = Path(folder) / "result.wav"
    done = subprocess.run([*shlex.split(command), *arguments, str(wav)], capture_output=True, text=True, check=False,
                          timeout=120)
    if done.returncode != 0:
        # The tool says why it refuses a file. Without that, it or the emulator has crashed.
        return done.stderr.strip() or f"no message of {command}, exit code {done.returncode}", array.array("h")
    with wave.open(str(wav)) as file:
        return file.getparams()[:3], array.array("h", file.readframes(file.getnframes()))


def compare(make, commands, stream, folder):
    """Whether the samples are alike, and a line for the report."""
    (form, samples), (other_form, other_samples) = (make(command, stream, folder) for command in commands)
    if form != other_form or len(samples) != len(other_samples):
        return False, f"{form}, {len(samples)} samples, but {other_form}, {len(other_samples)} samples"
    if not samples:
        return isinstance(form, str), f"both refuse it: {form}"
    steps = [abs(a - b) for a, b in zip(samples, other_samples)]
    return max(steps) <= LARGEST_STEP, f"{sum(map(bool, steps))} of {len(steps)} differ, by {max(steps)} at most"


def scenes_of(file, folder):
    """The name of each scene and the arguments of the tool."""
    file = Path(file)
    definition = Path(folder) / "effects.sound.txt"
    shutil.copy(file, folder)
    definition.write_text("".join(["*SOUND_DEFINITION {\n", f'*FILE "{file.name}"\n', *(f"*FX_{effect} {{}}\n" for effect in EFFECTS),
                                   "}\n"]), encoding="utf-8")
    for name, options in SCENES.items():
        yield f"{file}, {name}", [str(file), *options]
    yield f"{file}, with all effects", [str(definition), "--root", folder, "--at=1,0,-1"]


def cases(mode, files, folder):
    """The name of each comparison, the function that makes its sound, and the argument of that."""
    for file in files:
        if mode == "--scenes":
            yield from ((name, play, scene) for name, scene in scenes_of(file, folder))
        else:
            yield file, render if mode == "--render" else decode, file


def main(mode, commands, files):
    results = []
    with tempfile.TemporaryDirectory() as folder:
        for name, make, what in cases(mode, files, folder):
            alike, line = compare(make, commands, what, folder)
            print(f"{name}: {line}", flush=True)
            results.append(alike)
    return 0 if results and all(results) else 1


if __name__ == "__main__":
    chosen = sys.argv[1] if sys.argv[1:2] in (["--render"], ["--scenes"]) else None
    given = sys.argv[2 if chosen else 1:]
    sys.exit(main(chosen, given[:2], given[2:]))

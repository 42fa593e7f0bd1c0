"""Sound files in and out, mono at the model's rate."""

import subprocess
import tempfile
import wave
from pathlib import Path

import numpy as np

RATE = 16000
AT_ONCE = 40


class AudioError(Exception):
    """A file that holds no sound that can be read."""


def read_audio(path):
    """Any file that ffmpeg reads, as float samples between -1 and 1."""
    try:
        with wave.open(str(path)) as file:
            if (file.getnchannels(), file.getsampwidth(), file.getframerate()) == (1, 2, RATE):
                return np.frombuffer(file.readframes(file.getnframes()), "<i2").astype(np.float32) / 32768
    except (wave.Error, EOFError):
        pass  # not a plain one: ffmpeg may know it
    command = ["ffmpeg", "-v", "error", "-nostdin", "-i", str(path), "-ac", "1", "-ar", str(RATE), "-f", "s16le", "-"]
    done = subprocess.run(command, capture_output=True, check=False)
    if done.returncode != 0:
        raise AudioError(f"{path}: {done.stderr.decode(errors='replace').strip()}")
    return np.frombuffer(done.stdout, "<i2").astype(np.float32) / 32768


def _read_together(paths):
    with tempfile.TemporaryDirectory() as folder:
        command, outputs = ["ffmpeg", "-v", "error", "-nostdin"], [Path(folder) / str(i) for i in range(len(paths))]
        for path in paths:
            command += ["-i", str(path)]
        for i, output in enumerate(outputs):
            command += ["-map", f"{i}:a:0", "-ac", "1", "-ar", str(RATE), "-f", "s16le", str(output)]
        done = subprocess.run(command, capture_output=True, check=False)
        return [np.fromfile(o, "<i2").astype(np.float32) / 32768 for o in outputs] if done.returncode == 0 else None


def read_all(paths):
    """(path, its samples or an AudioError) of many files; starting ffmpeg takes longer than reading a short one."""
    for i in range(0, len(paths), AT_ONCE):
        batch = paths[i : i + AT_ONCE]
        for path, samples in zip(batch, _read_together(batch) or [None] * len(batch)):
            try:
                yield path, read_audio(path) if samples is None else samples
            except AudioError as error:
                yield path, error


def write_audio(path, samples):
    with wave.open(str(path), "wb") as file:
        file.setnchannels(1)
        file.setsampwidth(2)
        file.setframerate(RATE)
        file.writeframes(np.clip(np.rint(samples * 32768), -32768, 32767).astype("<i2").tobytes())

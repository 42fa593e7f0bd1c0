"""Whole files, read and written through ffmpeg."""

from __future__ import annotations

import json
import os
import subprocess
import tempfile
import uuid
from collections.abc import Callable, Iterator
from contextlib import contextmanager
from pathlib import Path
from typing import IO, Any

import numpy

from .errors import TalvoAudioError
from .library import RATES
from .sessions import Cleaner

_BLOCK_SECONDS = 1

# Containers that hold their sound themselves: a playlist would have ffmpeg open what it names.
_CONTAINERS = (
    "mov,matroska,avi,mpegts,mpeg,flv,asf,ogg,nut,mxf,wav,w64,caf,aiff,au,mp3,aac,loas,ac3,eac3,flac,amr,amrnb,amrwb,"
    "ape,dts,tta,wv,mpc,mpc8,tak,voc,dsf"
)


def _program(name: str) -> str:
    return os.environ.get(f"CORVANTA_{name.upper()}") or name


def _opening(path: Path) -> list[str]:
    """The protocol's name keeps a path that begins with a dash or has a colon from being read as something else."""
    return ["-protocol_whitelist", "file", "-format_whitelist", _CONTAINERS, "-i", f"file:{path}"]


def _sound_of(path: Path) -> tuple[int, int, float]:
    """Rate and channels of the first sound, and the file's seconds, 0 where nothing tells."""
    entries = ["-of", "json", "-select_streams", "a:0", "-show_entries", "stream=sample_rate,channels:format=duration"]
    try:
        asked = subprocess.run(
            [_program("ffprobe"), "-v", "error", *entries, *_opening(path)],
            stdin=subprocess.DEVNULL, capture_output=True, check=False)
    except OSError as error:
        raise TalvoAudioError(f"ffprobe can't be run: {error}") from error
    if asked.returncode != 0:
        raise TalvoAudioError(f"{path} can't be read: {asked.stderr.decode(errors='replace').strip()}")
    told: dict[str, Any] = json.loads(asked.stdout)
    streams = told.get("streams") or []
    if not streams or not int(streams[0].get("channels", 0)):
        raise TalvoAudioError(f"{path} has no sound")
    seconds = float(told.get("format", {}).get("duration") or 0.0)
    return int(streams[0]["sample_rate"]), int(streams[0]["channels"]), seconds


@contextmanager
def _ffmpeg(arguments: list[str], **pipe: int) -> Iterator[subprocess.Popen[bytes]]:
    """A run that is waited for and must succeed; ended early if what it is used for fails."""
    with tempfile.TemporaryFile() as said:
        pipes: dict[str, Any] = {"stdin": subprocess.DEVNULL, "stdout": subprocess.DEVNULL, **pipe}
        command = [_program("ffmpeg"), "-v", "error", "-y", *arguments]
        try:
            process = subprocess.Popen(command, stderr=said, **pipes)
        except OSError as error:
            raise TalvoAudioError(f"ffmpeg can't be run: {error}") from error
        try:
            yield process
        except BrokenPipeError:
            pass  # it has ended, and tells below why
        except BaseException:
            process.kill()
            process.communicate()
            raise
        try:
            process.communicate()
        except BrokenPipeError:
            process.wait()
        if process.returncode != 0:
            said.seek(0)
            raise TalvoAudioError(f"ffmpeg failed: {said.read().decode(errors='replace').strip()}")


def _blocks(stream: IO[bytes], samples: int, channels: int) -> Iterator[Any]:
    size = 4 * channels
    while data := stream.read(samples * size):
        yield numpy.frombuffer(data[: len(data) - len(data) % size], numpy.float32).reshape(-1, channels)


def _cleaned(cleaner: Cleaner, blocks: Iterator[Any], channels: int, heard: Callable[[int], None]) -> Iterator[Any]:
    """The same sound, in step with what came in."""
    skipped = cleaner.delay
    count = 0
    for block in blocks:
        samples = block[:, 0] if channels == 1 else block
        cleaned = cleaner.process(samples)
        yield cleaned[skipped:]
        skipped -= min(skipped, len(cleaned))
        count += len(block)
        heard(count)
    yield cleaner.flush()[skipped:]


def clean(
    source: str | os.PathLike[str],
    output: str | os.PathLike[str],
    *,
    strength: float = 1.0,
    model: str | os.PathLike[str] | None = None,
    codec: str | None = None,
    overwrite: bool = False,
    progress: Callable[[float], None] | None = None,
) -> Path:
    """Writes the first sound of a file, cleaned, to another one, whose extension says what it becomes.

    >>> import tempfile
    >>> with tempfile.TemporaryDirectory() as folder:
    ...     noisy, quiet = f"{folder}/noisy.wav", f"{folder}/quiet.flac"
    ...     noise = ["ffmpeg", "-v", "error", "-f", "lavfi", "-i", "anoisesrc=d=1:a=0.1", noisy]
    ...     _ = subprocess.run(noise, check=True)
    ...     clean(noisy, quiet, strength=0.9).name
    'quiet.flac'

    Its rate, channels, length and tags are kept; sound above 8 kHz is not. A rate that the library lacks becomes the
    next higher one. Pictures are left out: `corvanta_host clean` keeps them. `codec` is an encoder of ffmpeg; `progress` is
    called with 0 to 1 where the length is known. A file in the output's place is kept unless `overwrite` is set, and
    also if the run fails. Raises TalvoAudioError, FileExistsError, and what `progress` raises.
    """
    path, place = Path(os.path.abspath(source)), Path(os.path.abspath(output))
    if not path.is_file():
        raise FileNotFoundError(f"no such file: {path}")
    if place.exists() and not overwrite:
        raise FileExistsError(f"{place} is there already")
    own_rate, channels, seconds = _sound_of(path)
    rate = min((known for known in RATES if known >= own_rate), default=RATES[-1])
    raw = ["-f", "f32le", "-ar", str(rate), "-ac", str(channels)]
    encoder = [] if codec is None else ["-c:a", codec]
    unfinished = place.with_name(f".{uuid.uuid4().hex}{place.suffix}")

    def heard(count: int) -> None:
        if progress is not None and seconds > 0.0:
            progress(min(1.0, count / rate / seconds))

    reads = [*_opening(path), "-map", "0:a:0", *raw, "-"]
    writes = [*raw, "-i", "-", *_opening(path), "-map", "0:a", "-map_metadata", "1", "-map_chapters", "-1", *encoder]
    try:
        with (
            Cleaner(rate, strength=strength, channels=channels, model=model) as cleaner,
            _ffmpeg([*writes, f"file:{unfinished}"], stdin=subprocess.PIPE) as writer,
            _ffmpeg(reads, stdout=subprocess.PIPE) as reader,
        ):
            assert reader.stdout is not None and writer.stdin is not None
            blocks = _blocks(reader.stdout, _BLOCK_SECONDS * rate, channels)
            for cleaned in _cleaned(cleaner, blocks, channels, heard):
                writer.stdin.write(cleaned.tobytes())
        os.replace(unfinished, place)
    finally:
        unfinished.unlink(missing_ok=True)
    if progress is not None:
        progress(1.0)
    return place

"""The recorded part of the work folder: one's own recordings, and those of Debian's packages.

Speech is taken without its own noise, and some of it through codecs; of noise, loops are prolonged
and single sounds set apart. `recorded_` comes before the names of these files.
"""

import re
import subprocess
import tempfile
import zlib
from collections import defaultdict
from concurrent.futures import ProcessPoolExecutor
from pathlib import Path

import numpy as np

import corpus
import noises
import recordings
import voices
from audio_files import RATE, AudioError, read_all, read_audio, write_audio
from soundfont import SoundFont
from speech_floor import clean_speech

MOST_FILES, MOST_SECONDS = 250, 40  # of a group, and of a file
CODED_SHARE = 0.3  # of speech that goes through a codec
CODECS = (("m4a", "-c:a", "aac", "-b:a", "32k"), ("m4a", "-c:a", "aac", "-b:a", "48k"), ("ogg", "-c:a", "libopus", "-b:a", "16k"),
          ("ogg", "-c:a", "libopus", "-b:a", "24k"), ("mp3", "-c:a", "libmp3lame", "-b:a", "32k"))
BABBLE_SECONDS = {"train": 900, "development": 120, "test": 120}
MUSIC_SECONDS = {"train": 1200, "development": 120, "test": 120}


def _sixteen_bit(samples):
    return np.rint(samples * (0.5 * 32767 / np.abs(samples).max())).astype(np.int16)


def _split_of(name):
    """One in ten is for the development set, one in ten for the test set."""
    return {0: "development", 1: "test"}.get(zlib.crc32(name.encode()) % 10, "train")


def _recording_of(path):
    """Takes of one recording, told apart by a letter or a number at the end, stay in one split."""
    return re.sub(r"[-_ ]?([A-Z]|\d{1,2})$", "", path.stem)


def _read(paths, failed):
    """The sounds of files; what can't be read is told in `failed`."""
    for _, samples in read_all(paths):
        if isinstance(samples, AudioError):
            failed.append(str(samples))
            continue
        if samples.size and np.abs(samples).max() > 1e-3:
            yield samples[: MOST_SECONDS * RATE]


def _seconds(clips):
    return f"{sum(c.size for c in clips) / RATE:.0f} s"


def _coded(clips, random):
    """Some of the clips as they come out of a codec at a low rate."""
    chosen = np.flatnonzero(random.random(len(clips)) < CODED_SHARE)
    if chosen.size == 0:
        return
    suffix, *options = CODECS[random.integers(len(CODECS))]
    with tempfile.TemporaryDirectory() as name:
        plain, coded = Path(name) / "plain.wav", Path(name) / f"coded.{suffix}"
        write_audio(plain, np.concatenate([clips[i] for i in chosen]) / 32768)
        subprocess.run(["ffmpeg", "-v", "error", "-nostdin", "-i", str(plain), *options, str(coded)], check=True)
        out, at = read_audio(coded), 0
        for i in chosen:
            part = out[at : at + clips[i].size]
            at += clips[i].size
            if np.abs(part).max(initial=0) > 1e-3:
                clips[i] = _sixteen_bit(part)


def _save_speech(folder, group, split, paths):
    clips, failed, dropped = [], [], 0
    for samples in _read(paths, failed):
        clean = clean_speech(samples)
        speech = voices.trim(clean) if clean is not None else samples[:0]
        if speech.size >= RATE // 2:
            clips.append(_sixteen_bit(speech))
        else:
            dropped += 1
    if not clips:
        return "\n".join([*failed, f"{group}: nothing clean enough in {dropped} files"])
    _coded(clips, np.random.default_rng(zlib.crc32(group.encode())))
    corpus.save(folder / "speech" / split / f"recorded_{group}.npz", clips)
    return "\n".join([*failed, f"{group}: {_seconds(clips)} of speech for {split}, {dropped} files too noisy or short"])


def _noise_clip(kind, samples, random):
    if samples.size < 3 * RATE and kind == "engines":
        samples = np.tile(samples, -(-4 * RATE // samples.size))
    elif samples.size < 2 * RATE:
        samples = np.pad(samples, (0, int(random.uniform(0.1, 1.5) * RATE)))
    return _sixteen_bit(samples)


def _save_noise(folder, kind, split, paths):
    random = np.random.default_rng(zlib.crc32(kind.encode()))
    failed = []
    clips = [_noise_clip(kind, samples, random) for samples in _read(paths, failed)]
    if not clips:
        return "\n".join([*failed, f"{kind}: no sound"])
    corpus.save(folder / "noise" / split / f"recorded_{kind}.npz", clips)
    return "\n".join([*failed, f"{kind}: {_seconds(clips)} of noise for {split}"])


def _made_of_recordings(folder, split, font):
    """Babble and crowds of recorded voices, and music of recorded instruments."""
    random = np.random.default_rng(zlib.crc32(split.encode()))
    people = [c for c in corpus.load(folder, "speech", split) if c.recorded]
    size = corpus.CLIP_SECONDS * RATE

    def voice(generator, count):
        return people[generator.integers(len(people))].draw(generator, count)

    def save(name, seconds, make):
        path = folder / "noise" / split / f"recorded_{name}.npz"
        if not path.exists():
            corpus.save(path, [make() for _ in range(seconds // corpus.CLIP_SECONDS)])
            print(f"{name} for {split}: {seconds} s", flush=True)

    if people:
        for kind in (noises.babble, noises.crowd):
            save(kind.__name__, BABBLE_SECONDS[split], lambda kind=kind: noises.make(kind, random, size, voice))
    if font:
        save("font", MUSIC_SECONDS[split], lambda: _sixteen_bit(font.piece(random, size)))


def _take_in(folder, found, jobs):
    """`found` holds (what, group, split or None, paths); a noise's files are split by their names."""
    sorted_out = defaultdict(list)
    for what, group, split, paths in found:
        for path in paths:
            chosen = split or _split_of(group if what == "speech" else _recording_of(path))
            sorted_out[what, group, chosen].append(path)
    with ProcessPoolExecutor(jobs) as pool:
        work = []
        for (what, group, split), paths in sorted_out.items():
            if not (folder / what / split / f"recorded_{group}.npz").exists():
                paths = paths[:: -(-len(paths) // MOST_FILES)]
                work.append((_save_speech if what == "speech" else _save_noise, folder, group, split, paths))
        corpus.run(pool, work)


def add_recordings(folder, what, source, split=None, jobs=1):
    """Takes recordings in. Each folder directly in `source` is one speaker or kind of noise, and so
    is each file there. A speaker belongs to one split, as does a noise's file."""
    source = Path(source)
    if not source.is_dir():
        raise corpus.CorpusError(f"{source} is no folder")
    found = ((what, group.stem, split, sorted(p for p in group.rglob("*") if p.is_file()) if group.is_dir() else [group])
             for group in sorted(source.iterdir()))
    _take_in(Path(folder), found, jobs)


def add_packages(folder, packages, jobs=1):
    """Takes in what recordings.py names, after fetching it into the folder `packages`."""
    folder, packages = Path(folder), Path(packages)
    packages.mkdir(parents=True, exist_ok=True)
    recordings.fetch(packages)
    _take_in(folder, recordings.groups(packages), jobs)
    path = packages.joinpath(*recordings.INSTRUMENTS)
    font = SoundFont(path) if path.exists() else None
    for split in corpus.SPLITS:
        _made_of_recordings(folder, split, font)

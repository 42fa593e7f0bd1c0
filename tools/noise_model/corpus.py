"""The work folder's speech and noise: making them, and drawing from them.

    FOLDER/speech/{train,development,test}/VOICE.npz    FOLDER/noise/{train,development,test}/KIND.npz

Each file holds `samples`, 16-bit clips one after the other, and `ends`, where each clip ends.
Files that are there already aren't made again, so an interrupted run goes on where it stopped.
"""

import zlib
from concurrent.futures import ProcessPoolExecutor
from pathlib import Path

import numpy as np

import noises
import voices
from audio_files import RATE

SPLITS = voices.SPLITS
NOISE_SECONDS = {"train": 4 * 3600, "development": 600, "test": 1500}
CLIP_SECONDS = 10


class CorpusError(Exception):
    """The work folder lacks what is needed."""


def _generator(*names):
    return np.random.default_rng(zlib.crc32("/".join(map(str, names)).encode()))


def save(path, clips):
    path.parent.mkdir(parents=True, exist_ok=True)
    unfinished = path.with_suffix(".part")
    with unfinished.open("wb") as file:
        np.savez(file, samples=np.concatenate(clips), ends=np.cumsum([c.size for c in clips]))
    unfinished.rename(path)


class Clips:
    """What one file holds. The samples stay on disk until they are asked for."""

    def __init__(self, path):
        self.name = path.stem
        self.recorded = self.name.startswith("recorded_")
        with np.load(path) as file:
            self.samples, self.ends = file["samples"], file["ends"]

    def __len__(self):
        return self.ends.size

    def clip(self, i):
        return self.samples[self.ends[i - 1] if i else 0 : self.ends[i]]

    def draw(self, random, count):
        """`count` samples from anywhere, from several clips if need be, as floats."""
        start = random.integers(self.samples.size)
        at = start + np.arange(count)
        return self.samples[at % self.samples.size].astype(np.float64)


def load(folder, what, split, recorded=None):
    """All files of "speech" or "noise" of a split, in the order of their names; `recorded` takes only
    recordings, or only what was generated."""
    paths = sorted((Path(folder) / what / split).glob("*.npz"))
    clips = [c for c in map(Clips, paths) if recorded in (None, c.recorded)]
    if not clips:
        kind = {None: "", True: "recorded ", False: "generated "}[recorded]
        raise CorpusError(f"{folder} has no {kind}{what} for {split}: run the data step first")
    return clips


def _make_voice(voice, path, share):
    clips = voices.speak(voice, voice.seconds * share, _generator("voice", voice.label))
    if not clips:
        return f"{voice.label}: no speech; is its package installed?"
    save(path, clips)
    return f"{voice.label}: {sum(c.size for c in clips) / RATE:.0f} s"


def _make_noise(folder, split, kind, seconds, path):
    random = _generator("noise", kind.__name__)
    people = load(folder, "speech", split, recorded=False) if kind in noises.WITH_VOICES else []

    def voice(generator, count):
        return people[generator.integers(len(people))].draw(generator, count)

    count = max(1, round(seconds / CLIP_SECONDS))
    save(path, [noises.make(kind, random, CLIP_SECONDS * RATE, voice) for _ in range(count)])
    return f"{kind.__name__}: {count * CLIP_SECONDS} s"


def run(pool, jobs):
    running = [pool.submit(*job) for job in jobs]
    for done, future in enumerate(running, 1):
        print(f"[{done}/{len(running)}] {future.result()}", flush=True)


def make(folder, share=1.0, jobs=2):
    """The whole corpus, or a share of its length for a trial."""
    missing = voices.missing_programs()
    if missing:
        raise CorpusError("not installed: " + ", ".join(missing))
    folder = Path(folder)
    with ProcessPoolExecutor(jobs) as pool:
        work = []
        for split in SPLITS:
            for voice in voices.voices(split):
                path = folder / "speech" / split / (voice.label + ".npz")
                if not path.exists():
                    work.append((_make_voice, voice, path, share))
        run(pool, work)
        work = []
        for split in SPLITS:
            whole = sum(noises.SHARES.get(k, 1) for k in noises.KINDS[split])
            for kind in noises.KINDS[split]:
                path = folder / "noise" / split / (kind.__name__ + ".npz")
                seconds = share * NOISE_SECONDS[split] * noises.SHARES.get(kind, 1) / whole
                if not path.exists():
                    work.append((_make_noise, folder, split, kind, seconds, path))
        run(pool, work)

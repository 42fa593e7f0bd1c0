"""Measures the packed model through the audio library, beside what Debian's packages offer."""

import time
from pathlib import Path
from typing import NamedTuple

import numpy as np

import corpus
import metrics
import mixing
from audio_files import RATE
from cleaners import OurModel, Unprocessed, peers
from talvo_audio import Library

DISTANCES = (-5, 0, 5, 10, 15)
LEVELS = (-50, -40, -30, -20, -10, 0)
SECONDS = 6.0
BESIDE = ("speexdsp", "webrtc-audio-processing")  # whose figures stand beside ours for each kind of noise


class Clip(NamedTuple):
    clean: np.ndarray  # floats on the 16-bit scale
    mix: np.ndarray  # 16-bit


def sixteen_bit(samples):
    return np.clip(np.rint(samples), -32768, 32767).astype(np.int16)


class TestClips:
    """Voices, sentences and noises that neither training nor the choice of a model has seen."""

    def __init__(self, folder, count, recorded, noise=None):
        """`noise` is one kind's number, for clips with that alone."""
        mixer = mixing.Mixer(folder, "test", 11, SECONDS, recorded=recorded)
        self.voices, self.noises = ([clips.name for clips in c] for c in (mixer.voices, mixer.noises))
        if noise is not None:
            mixer.noise_weights = np.eye(len(self.noises))[noise]
        self.tracks = [(mixer.speech_track(), mixer.noise_track()) for _ in range(count)]

    def at(self, distance, level=None):
        """Every track with noise this many dB below the speech; the speech at a level in dBFS, or at various ones."""
        random = np.random.default_rng(12)
        for speech, noise in self.tracks:
            loudness = 32768 * mixing.gain(random.uniform(-40, -16) if level is None else level)
            clean = speech * loudness
            yield Clip(clean, sixteen_bit(clean + noise * (loudness * mixing.gain(-distance))))


class Measured(NamedTuple):
    si_sdr_before: float
    si_sdr: float
    stoi_before: float
    stoi: float
    pauses: float

    @property
    def si_sdr_gain(self):
        return self.si_sdr - self.si_sdr_before

    @property
    def stoi_gain(self):
        return self.stoi - self.stoi_before


def measure(cleaner, clips):
    rows, pauses = [], []
    for clip in clips:
        out = cleaner.clean(clip.mix)
        rows.append((metrics.si_sdr(clip.mix, clip.clean), metrics.si_sdr(out, clip.clean),
                     metrics.stoi(clip.mix, clip.clean), metrics.stoi(out, clip.clean)))
        pauses.append(metrics.between_words(out, clip.mix, clip.clean))
    return Measured(*np.mean(rows, axis=0), np.mean([p for p in pauses if p is not None] or [np.nan]))


def kept(cleaner, clips):
    """SI-SDR of the output beside a clean input, clip by clip."""
    return np.array([metrics.si_sdr(cleaner.clean(clip.mix), clip.mix) for clip in clips.at(120)])


def _table(title, columns, rows):
    print(f"\n{title}\n")
    width = max(len(r[0]) for r in rows)
    widths = [max(len(c), *(len(r[i + 1]) for r in rows)) for i, c in enumerate(columns)]
    print("| " + "".ljust(width) + " | " + " | ".join(c.rjust(w) for c, w in zip(columns, widths)) + " |")
    print("|" + "-" * (width + 2) + "|" + "|".join("-" * (w + 1) + ":" for w in widths) + "|")
    for name, *cells in rows:
        print("| " + name.ljust(width) + " | " + " | ".join(c.rjust(w) for c, w in zip(cells, widths)) + " |", flush=True)


def _whole(cleaners, clips):
    by_distance, whole = [], []
    for cleaner in cleaners:
        measured = [measure(cleaner, clips.at(d, level=-26)) for d in DISTANCES]
        middle = Measured(*np.mean([m for m, d in zip(measured, DISTANCES) if d >= 0], axis=0))
        clean = np.minimum(kept(cleaner, clips), 99)
        before = cleaner.name == "unprocessed"
        by_distance.append((cleaner.name, *(f"{m.si_sdr if before else m.si_sdr_gain:{'.1f' if before else '+.1f'}} / {m.stoi:.3f}"
                                            for m in measured)))
        if before:
            continue
        whole.append((cleaner.name, f"{middle.si_sdr_gain:+.1f}", f"{middle.stoi_gain:+.3f}", f"{-middle.pauses:.0f}",
                      f"{clean.mean():.0f} / {clean.min():.0f}", f"{np.mean(clean < 30):.0%}"))
    _table("0 to 15 dB between speech and noise, and clean speech",
           ["SI-SDR gain", "STOI gain", "pauses, dB", "clean kept, mean / worst", "under 30 dB"], whole)
    _table("SI-SDR improvement in dB (unprocessed: SI-SDR) / STOI, by the distance between speech and noise",
           [f"{d:+d} dB" for d in DISTANCES], by_distance)


def _by_noise(cleaners, folder, kinds, count, recorded):
    rows = []
    for number, kind in enumerate(kinds):
        clips = TestClips(folder, count, recorded, number)
        measured = [measure(cleaner, clips.at(5, -26)) for cleaner in cleaners]
        rows.append((kind.removeprefix("recorded_"), f"{measured[0].stoi_before:.3f}",
                     *(f"{m.stoi_gain:+.3f} / {m.si_sdr_gain:+.1f}" for m in measured)))
    _table("STOI gain / SI-SDR gain by the kind of noise, +5 dB", ["STOI before", *(c.name for c in cleaners)], rows)


def _by_level(cleaner, clips):
    rows = []
    for level in LEVELS:
        m = measure(cleaner, clips.at(5, level))
        rows.append((f"{level} dBFS", f"{m.si_sdr_before:.1f}", f"{m.si_sdr_gain:+.1f}", f"{m.stoi_before:.3f}", f"{m.stoi_gain:+.3f}"))
    _table("By the level of the speech (root mean square while active; what exceeds full scale is clipped), +5 dB",
           ["SI-SDR before", "improvement", "STOI before", "difference"], rows)


def _speed(cleaner):
    clip = np.zeros(60 * RATE, np.int16)
    clip[:] = np.random.default_rng(1).normal(0, 1000, clip.size)
    begin = time.process_time()
    cleaner.clean(clip)
    return (time.process_time() - begin) / 60


def evaluate(folder, library, models, clip_count=60, alone=False):
    """The first of `models` is the one that everything is told of."""
    library = Library(Path(library).resolve())
    ours = [OurModel(library, path, "this model" if i == 0 else path.stem) for i, path in enumerate(models)]
    others, absent = ([Unprocessed()], []) if alone else peers()
    for line in absent:
        print(f"not measured: {line}")
    for name, recorded in (("generated", False), ("recorded", True)):
        try:
            clips = TestClips(folder, clip_count, recorded)
        except corpus.CorpusError as error:
            print(f"not measured: {error}")
            continue
        print(f"\n== {name} speech and noise: {clip_count} clips of {SECONDS:g} s; voices: {', '.join(clips.voices)}; "
              f"noise: {', '.join(clips.noises)}")
        _whole([*others, *ours], clips)
        _by_noise([*ours, *(o for o in others if o.name in BESIDE)], folder, clips.noises, max(4, clip_count // 4), recorded)
        if not recorded:
            _by_level(ours[0], clips)
    print(f"\nProcessor time per second of sound, this tool's calls included: {_speed(ours[0]):.4f} s")

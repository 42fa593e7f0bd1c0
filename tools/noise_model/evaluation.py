"""Measures the packed model through the audio library, beside what Debian's packages offer."""

import time
from typing import NamedTuple

import numpy as np

import metrics
import mixing
from audio_files import RATE
from cleaners import OurModel, peers

DISTANCES = (-5, 0, 5, 10, 20)
LEVELS = (-50, -40, -30, -20, -10, 0)
SECONDS = 6.0
QUIET_DB = -45  # a frame of the clean speech this far below its active level holds no word


class Clip(NamedTuple):
    clean: np.ndarray  # floats on the 16-bit scale
    mix: np.ndarray  # 16-bit


def sixteen_bit(samples):
    return np.clip(np.rint(samples), -32768, 32767).astype(np.int16)


class TestClips:
    """Voices, sentences and kinds of noise that neither training nor the choice of a model has seen."""

    def __init__(self, folder, count, noise=None):
        """`noise` is one kind's number, for clips with that alone."""
        mixer = mixing.Mixer(folder, "test", 11, SECONDS)
        self.voices, self.noises = ([clips.name for clips in c] for c in (mixer.voices, mixer.noises))
        if noise is not None:
            mixer.noise_weights = np.eye(len(self.noises))[noise]
        self.tracks = [(mixer.speech_track(), mixer.noise_track()) for _ in range(count)]
        self.random = np.random.default_rng(12)

    def at(self, distance, level=None):
        """Every track with noise this many dB below the speech; the speech at a level in dBFS, or at various ones."""
        for speech, noise in self.tracks:
            loudness = 32768 * mixing.gain(self.random.uniform(-40, -16) if level is None else level)
            clean = speech * loudness
            yield Clip(clean, sixteen_bit(clean + noise * (loudness * mixing.gain(-distance))))


class Measured(NamedTuple):
    si_sdr_before: float
    si_sdr: float
    stoi_before: float
    stoi: float


def measure(cleaner, clips):
    rows = []
    for clip in clips:
        out = cleaner.clean(clip.mix)
        rows.append((metrics.si_sdr(clip.mix, clip.clean), metrics.si_sdr(out, clip.clean),
                     metrics.stoi(clip.mix, clip.clean), metrics.stoi(out, clip.clean)))
    return Measured(*np.mean(rows, axis=0))


def _frames(samples, size=RATE // 100):
    return samples[: samples.size // size * size].astype(np.float64).reshape(-1, size)


def between_words(cleaner, clips):
    """How much weaker the sound is where nobody speaks, in dB, over the pauses of all clips.

    The first second doesn't count, since a session has to hear the noise first, nor do 100 ms after a word.
    """
    gains = []
    for clip in clips:
        level = np.mean(_frames(clip.clean) ** 2, axis=1)
        quiet = level < (mixing.active_level(clip.clean) * mixing.gain(QUIET_DB)) ** 2
        loud_before = np.convolve(~quiet, np.ones(11), "full")[: quiet.size] > 0
        pause = quiet & ~loud_before
        pause[:100] = False
        if pause.sum() >= 10:
            before, after = (np.sum(_frames(x)[pause] ** 2) for x in (clip.mix, cleaner.clean(clip.mix)))
            gains.append(10 * np.log10((before + 1e-9) / (after + 1e-9)))
    return np.mean(gains)


def _table(title, columns, rows):
    print(f"\n{title}\n")
    width = max(len(r[0]) for r in rows)
    print("| " + "".ljust(width) + " | " + " | ".join(columns) + " |")
    print("|" + "-" * (width + 2) + "|" + "|".join("-" * (len(c) + 1) + ":" for c in columns) + "|")
    for name, *cells in rows:
        print("| " + name.ljust(width) + " | " + " | ".join(c.rjust(len(h)) for c, h in zip(cells, columns)) + " |")


def _by_distance(cleaners, clips):
    columns = [f"{d:+d} dB" for d in DISTANCES] + ["0 to 10 dB"]
    columns = [c.rjust(13) for c in columns]
    rows = []
    for cleaner in cleaners:
        measured = [measure(cleaner, clips.at(d, level=-26)) for d in DISTANCES]
        middle = [m for m, d in zip(measured, DISTANCES) if 0 <= d <= 10]
        cells = []
        for m in (*measured, Measured(*np.mean(middle, axis=0))):
            gain = f"{m.si_sdr - m.si_sdr_before:+.1f}" if cleaner.name != "unprocessed" else f"{m.si_sdr:.1f}"
            cells.append(f"{gain} / {m.stoi:.3f}")
        rows.append((cleaner.name, *cells))
        print(f"  measured {cleaner.name}", flush=True)
    _table("SI-SDR improvement in dB (unprocessed: SI-SDR) / STOI, by the distance between speech and noise", columns, rows)


def _by_level(cleaner, clips):
    rows = []
    for level in LEVELS:
        m = measure(cleaner, clips.at(5, level))
        rows.append((f"{level} dBFS", f"{m.si_sdr_before:.1f}", f"{m.si_sdr - m.si_sdr_before:+.1f}",
                     f"{m.stoi_before:.3f}", f"{m.stoi - m.stoi_before:+.3f}"))
    _table("By the level of the speech (root mean square while active; what exceeds full scale is clipped), +5 dB",
           ["SI-SDR before", "improvement", "STOI before", "difference"], rows)


def _by_noise(cleaner, folder, kinds, count):
    rows = []
    for number, kind in enumerate(kinds):
        m = measure(cleaner, TestClips(folder, count, number).at(5, -26))
        rows.append((kind, f"{m.si_sdr_before:.1f}", f"{m.si_sdr - m.si_sdr_before:+.1f}",
                     f"{m.stoi_before:.3f}", f"{m.stoi - m.stoi_before:+.3f}"))
    _table("By the kind of noise, +5 dB", ["SI-SDR before", "improvement", "STOI before", "difference"], rows)


def _kept(cleaner, clips):
    kept = []
    for clip in clips.at(120):
        kept.append(metrics.si_sdr(cleaner.clean(clip.mix), clip.mix))
    return np.array(kept)


def _speed(cleaner):
    clip = np.zeros(60 * RATE, np.int16)
    clip[:] = np.random.default_rng(1).normal(0, 1000, clip.size)
    begin = time.process_time()
    cleaner.clean(clip)
    return (time.process_time() - begin) / 60


def evaluate(folder, library, model, clip_count=60):
    ours = OurModel(library, model)
    others, absent = peers()
    for line in absent:
        print(f"not measured: {line}")
    clips = TestClips(folder, clip_count)
    print(f"{clip_count} clips of {SECONDS:g} s; voices: {', '.join(clips.voices)}; noise: {', '.join(clips.noises)}")
    _by_distance([*others, ours], clips)
    _by_noise(ours, folder, clips.noises, max(4, clip_count // 4))
    _by_level(ours, clips)
    kept = _kept(ours, clips)
    print(f"\nClean speech kept (SI-SDR of the output beside the input): mean {kept.mean():.1f} dB, worst {kept.min():.1f} dB, "
          f"{np.sum(kept < 40)} of {kept.size} under 40 dB")
    for distance in (5, 10, 15):
        print(f"Between words at {distance} dB: noise down by {between_words(ours, clips.at(distance, -26)):.1f} dB")
    print(f"Processor time per second of sound, this tool's calls included: {_speed(ours):.4f} s")

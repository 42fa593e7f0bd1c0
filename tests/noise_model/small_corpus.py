"""A work folder small enough for tests: two speakers and two kinds of noise in each split."""

import numpy as np

import corpus
import noises
from audio_files import RATE


def speech_like(random, seconds):
    t = np.arange(int(seconds * RATE)) / RATE
    return np.sin(2 * np.pi * 150 * t) * (np.sin(2 * np.pi * 1.5 * t) > 0) + 0.001 * random.standard_normal(t.size)


def small_corpus(folder):
    random = np.random.default_rng(4)
    for split in corpus.SPLITS:
        for name in ("flite_a", "espeak-ng_b"):
            clips = [(12000 * speech_like(random, s)).astype(np.int16) for s in (1.5, 2.5)]
            corpus.save(folder / "speech" / split / f"{name}.npz", clips)
        for kind in (noises.coloured, noises.clicks):
            corpus.save(folder / "noise" / split / f"{kind.__name__}.npz", [noises.make(kind, random, 10 * RATE, None)])

"""Scenes as training wants them: features, and what the loss needs to know of every band.

All bins of a band share one gain, so sums over its bins are enough to give the loss of any gain, and
the network can be trained without a spectrum in sight.
"""

import queue as queues
from multiprocessing import get_context, parent_process
from typing import NamedTuple

import numpy as np

import chain
from mixing import Mixer


class Scene(NamedTuple):
    """Arrays of [frame, band]. Spectra are scaled so that the loud frames around have about the size 1."""

    features: np.ndarray
    mix: np.ndarray  # sum of |X|
    target: np.ndarray  # sum of |T|
    product: np.ndarray  # sum of sqrt(|X| |T|)
    aligned: np.ndarray  # the same times the cosine of the angle between X and T
    mix_energy: np.ndarray  # sum of |X|^2
    target_energy: np.ndarray  # sum of |T|^2
    common: np.ndarray  # sum of the real part of X T*


def _loudness(samples, shape):
    """What to divide the spectra by: the loudest frame within 0.75 s."""
    level = np.sqrt(np.mean(chain.frames(samples, shape) ** 2, axis=1))
    reach = int(0.75 * chain.RATE / shape.step)
    padded = np.pad(level, reach, mode="edge")
    around = np.lib.stride_tricks.sliding_window_view(padded, 2 * reach + 1).max(axis=1)
    return np.maximum(around, 1.0) * np.sqrt(shape.step)


def describe(mix, target, shape):
    x = chain.spectra(mix, shape)
    bands = chain.features(x, chain.rescaling(mix, shape), shape)
    scale = (1 / _loudness(mix, shape)).astype(np.float32)[:, None]
    x = x[:, : shape.bins] * scale
    t = chain.spectra(target, shape)[:, : shape.bins] * scale
    ax, at, common = np.abs(x), np.abs(t), x.real * t.real + x.imag * t.imag
    root = np.sqrt(ax * at)
    parts = (ax, at, root, common / (root + 1e-9), ax * ax, at * at, common)
    return Scene(bands, *(np.add.reduceat(p, shape.band_starts, axis=1) for p in parts))


def batch(mixer, shape, size):
    scenes = [describe(*mixer.scene(), shape) for _ in range(size)]
    return Scene(*(np.stack(part) for part in zip(*scenes)))


def _produce(queue, folder, seed, shape, size):
    mixer = Mixer(folder, "train", seed)
    while True:
        made = batch(mixer, shape, size)
        while True:
            try:
                queue.put(made, timeout=5)
                break
            except queues.Full:
                # Training that was killed leaves nobody to take anything, nor what still waits to be sent.
                if not parent_process().is_alive():
                    queue.cancel_join_thread()
                    return


class Source:
    """Batches from processes of their own, never the same twice."""

    def __init__(self, folder, seed, shape, size, workers):
        context = get_context("spawn")
        self.queue = context.Queue(3 * workers)
        self.workers = [
            context.Process(target=_produce, args=(self.queue, folder, [seed, i], shape, size), daemon=True)
            for i in range(workers)
        ]
        for worker in self.workers:
            worker.start()

    def next(self):
        while True:
            try:
                return self.queue.get(timeout=60)
            except queues.Empty as error:
                if not all(w.is_alive() for w in self.workers):
                    raise RuntimeError("a mixing process has died") from error

    def close(self):
        for worker in self.workers:
            worker.terminate()

"""From a spectrum to the network's input, and bands back to bins."""

import numpy as np

from .kernels import f32, f64, floats


def power(bins, scale):
    level = np.hypot(bins.real, bins.imag) * f32(scale)
    return level * level


def log_level(bins, scale=1.0):
    return np.log(np.hypot(bins.real, bins.imag) * f32(scale) + f32(1))


def normalise(history, mean, deviation):
    assert mean.size == deviation.size and history.size % mean.size == 0
    repeats = history.size // mean.size
    return (history - np.tile(mean, repeats)) / np.tile(deviation, repeats)


def normalise_with_noise(history, noise, mean, deviation):
    assert history.size + noise.size == mean.size
    return (np.concatenate([history, noise]) - mean) / deviation


def _groups(size, k):
    """(first bin, width) of every band: the lowest 2 / 2^k stay, then each octave has twice the width."""
    boundary, width, start = 2 * size >> k, 1, 0
    while start < size:
        yield start, width
        start += width
        if start >= (2 * boundary if width > 1 else boundary):
            boundary = boundary * 2 if width > 1 else boundary
            width *= 2


def band_count(size, rate):
    return (rate + 2) * size >> (rate + 1)


def compress(data, k):
    assert data.size % 2**k == 0
    return floats([np.add.accumulate(data[s : s + w], dtype=f32)[-1] for s, w in _groups(data.size, k)])


def compress_mean(data, k):
    """Means in place of sums; one bin more than a multiple of 2^k stays in front."""
    extra = data.size % 2**k
    assert extra in (0, 1)
    rest = data[extra:]
    means = [np.add.accumulate(rest[s : s + w], dtype=f32)[-1] / f32(w) for s, w in _groups(rest.size, k)]
    return np.concatenate([data[:extra], floats(means)])


def expand(bands, rate):
    assert bands.size % (2 + rate) == 0
    size = (bands.size << (rate + 1)) // (rate + 2)
    return np.repeat(bands, [w for _, w in _groups(size, rate + 1)])


def square_root_normalise(x, mean, variance, floor):
    assert mean.size == x.size == variance.size
    return floats((x - mean) / np.sqrt((variance + f32(floor)).astype(f64)))

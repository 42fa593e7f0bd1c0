"""Curves and limits on a mask, and on the cleaned samples."""

import numpy as np

from .kernels import f32, f64, floats


def soft_curve(mask):
    x = mask.astype(f64)
    with np.errstate(over="ignore"):
        low = x / (np.exp((x - 0.05) / 0.05) + 1)
        high = x * x / (np.exp((x - 0.05) * -3 / 0.05) + 1)
    return floats(low + high)


def square_upper_half(mask):
    half = mask.size // 2
    return np.concatenate([mask[:half], mask[half:] * mask[half:]])


def smooth(mask, saved, coefficient):
    assert saved.size == mask.size
    if coefficient == 1:
        return mask
    return f32(coefficient) * mask + (f32(1) - f32(coefficient)) * saved


def expand_below(mask, threshold):
    t = f32(threshold)
    return np.where(mask < t, f32(1) / t * mask * mask, mask)


def limit_peak(samples, point):
    peak = samples.max()
    return samples * (f32(point) / peak) if peak > f32(point) else samples

"""Windows and the real transform."""

import numpy as np

from .kernels import f64, floats


def hamming(n):
    return floats(0.54 - 0.46 * np.cos(2 * np.pi * np.arange(n) / (n - 1)))


def vorbis(n):
    return floats(np.sin(np.pi / 2 * np.sin(np.pi * np.arange(n) / n) ** 2))


def triangular(n):
    half = np.arange(n // 2)
    out = np.zeros(n)
    out[: n // 2] = 2 * half / n
    out[n // 2 : n // 2 * 2] = 1 - 2 * half / n
    return floats(out)


def forward(samples):
    return np.fft.rfft(samples.astype(f64)).astype(np.complex64)


def backward(spectrum):
    """The inverse with its 1/N, so that forward and backward give the input again."""
    return floats(np.fft.irfft(spectrum.astype(np.complex128)))

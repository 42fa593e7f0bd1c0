"""What noise a recording of speech holds itself. It would be taught to be speech, so it is taken out,
and what can't be made clean enough isn't used."""

import numpy as np

from audio_files import RATE
from metrics import active_level

FRAME, STEP = 512, 128
WORST, CLEAN = 22.0, 45.0  # dB between speech and floor: before, and after
OVER, DEEPEST = 3.0, 0.02  # how much more than the floor is taken, and the lowest gain
FLOOR_SHARE = 0.05  # of a recording, at least, are pauses; so it comes here before it is trimmed


def floor_below(samples):
    """How far the quiet frames of 20 ms, those of the quietest twentieth, are below the speech, in dB."""
    size = RATE // 50
    energy = np.mean(samples[: samples.size // size * size].astype(np.float64).reshape(-1, size) ** 2, axis=1)
    return 20 * np.log10((active_level(samples) + 1e-12) / (np.sqrt(np.quantile(energy, FLOOR_SHARE)) + 1e-12))


def _spectra(samples):
    padded = np.pad(samples.astype(np.float64), (FRAME, FRAME + -samples.size % STEP))
    return np.fft.rfft(np.lib.stride_tricks.sliding_window_view(padded, FRAME)[::STEP] * np.hanning(FRAME + 1)[:-1])


def _samples(spectra, size):
    pieces = np.fft.irfft(spectra) * np.hanning(FRAME + 1)[:-1]
    out = np.zeros((pieces.shape[0] - 1) * STEP + FRAME)
    for part in range(FRAME // STEP):
        block = pieces[:, part * STEP : (part + 1) * STEP].ravel()
        out[part * STEP : part * STEP + block.size] += block
    return out[FRAME : FRAME + size] / 1.5  # the squared windows' sum at this step


def _smoothed(values, count, axis):
    """The mean of `count` neighbours along an axis."""
    moved = np.moveaxis(values, axis, 0)
    padded = np.pad(moved, [(count // 2, count // 2)] + [(0, 0)] * (moved.ndim - 1), "edge")
    return np.moveaxis(sum(padded[i : i + moved.shape[0]] for i in range(count)) / count, 0, axis)


def without_floor(samples):
    """The speech with its steady noise subtracted, bin by bin, and what is left of it in pauses held down."""
    spectra = _spectra(samples)
    energy = _smoothed(np.abs(spectra) ** 2, 5, 0)
    # Noise energies at that percentile are below their mean.
    floor = OVER * _smoothed(np.quantile(energy, FLOOR_SHARE, axis=0), 5, 0) * 2
    gain = np.clip(1 - floor / (energy + 1e-20), DEEPEST**2, 1) ** 0.5
    whole = energy[:, 3:].sum(axis=1)
    pause = np.clip((whole / (2 * floor[3:].sum() + 1e-20)) ** 2, 0.1, 1)
    return _samples(spectra * (_smoothed(gain, 3, 1) * _smoothed(pause, 5, 0)[:, None]), samples.size)


def clean_speech(samples):
    """The recording as it can be learnt from, or None where too much noise is in it."""
    below = floor_below(samples)
    if below < WORST:
        return None
    if below < CLEAN:
        samples = without_floor(samples)
    return samples if floor_below(samples) >= CLEAN else None

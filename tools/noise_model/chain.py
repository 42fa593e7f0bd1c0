"""The sound chain around the network, over whole clips: what the audio library does frame by frame.

Samples are floats on the 16-bit scale. A clip's first network frame begins one step before its first
sample, as in the library, where a session starts with one step of silence.
"""

from dataclasses import dataclass

import numpy as np

RATE = 16000
LOG_FLOOR = np.float32(1000)
MASK_THRESHOLD = 0.3


@dataclass(frozen=True)
class Shape:
    """Sizes and references that stand in the model file."""

    frame: int = 512
    preview: int = 4
    compression: int = 2
    state: int = 256
    hidden_layers: int = 3
    reference_amplitude: float = 500.0  # below the library's default: the first value fades sooner
    reference_energy: float = 100.0

    @property
    def step(self):
        return self.frame // 2

    @property
    def bins(self):
        """What the network sees; the one at half the rate is cut."""
        return self.frame // 2

    @property
    def band_starts(self):
        """First bin of every band: single bins, then in each octave twice as many together."""
        size, k = self.bins, self.compression + 1
        boundary, width, start, starts = 2 * size >> k, 1, 0, []
        while start < size:
            if start == boundary:
                width *= 2
                boundary *= 2
            starts.append(start)
            start += width
        return np.array(starts)

    @property
    def bands(self):
        return self.band_starts.size

    @property
    def band_widths(self):
        return np.diff(np.append(self.band_starts, self.bins))

    @property
    def window(self):
        i = np.arange(self.frame)
        return np.sin(np.pi / 2 * np.sin(np.pi * i / self.frame) ** 2).astype(np.float32)


def frames(samples, shape):
    """Overlapping frames, [frame, sample]; what doesn't fill a step at the end is left out."""
    count = samples.size // shape.step
    padded = np.concatenate([np.zeros(shape.step, np.float32), samples[: count * shape.step].astype(np.float32)])
    return np.lib.stride_tricks.as_strided(
        padded, (count, shape.frame), (padded.strides[0] * shape.step, padded.strides[0]), writeable=False
    )


def spectra(samples, shape):
    """Complex spectra, [frame, bin], all bins up to half the rate."""
    return np.fft.rfft(frames(samples, shape) * shape.window).astype(np.complex64)


def rescaling(samples, shape):
    """The factor by which every frame is brought to the reference level before the network.

    The level is the mean energy of the last three seconds' loud frames; the reference is the first
    value, and stays in the mean until that is full.
    """
    energies = np.mean(frames(samples, shape).astype(np.float64) ** 2, axis=1)
    initial = float(np.float32(shape.reference_amplitude)) ** 2
    capacity = RATE * 3 // shape.step
    loud = energies >= shape.reference_energy
    total = np.cumsum(np.concatenate([[initial], energies[loud]]))
    held = np.cumsum(loud)  # index of the newest value for every frame
    oldest = held - capacity
    level = (total[held] - np.where(oldest >= 0, total[np.maximum(oldest, 0)], 0)) / np.minimum(held + 1, capacity)
    return (shape.reference_amplitude / np.sqrt(level)).astype(np.float32)


def features(spectrum, scale, shape):
    """Log energies of the bands, [frame, band], neither stacked nor normalised."""
    level = np.abs(spectrum[:, : shape.bins]) * scale[:, None]
    return np.log(np.add.reduceat(level * level, shape.band_starts, axis=1) + LOG_FLOOR)


def stacked(normalised, mean, deviation, shape):
    """Each frame with the ones before it, oldest first. Before the first there were zeros, not silence."""
    before = np.tile(-mean / deviation, (shape.preview - 1, 1)).astype(np.float32)
    padded = np.concatenate([before, normalised])
    return np.concatenate([padded[i : i + normalised.shape[0]] for i in range(shape.preview)], axis=1)


def full_mask(bands, shape):
    """From the network's output, [frame, band], to the gain of every bin.

    What is below the threshold is pressed down: pauses get quieter for it, speech hardly changes.
    """
    gains = bands.astype(np.float32) ** 2
    gains = np.where(gains < MASK_THRESHOLD, gains * gains / MASK_THRESHOLD, gains)
    return np.pad(np.repeat(gains, shape.band_widths, axis=1), ((0, 0), (0, 1)))


def resynthesise(spectrum, mask, shape):
    """The masked spectra as samples again, each at the time it had in the clip."""
    pieces = np.fft.irfft(spectrum * mask) * shape.window
    out = np.zeros((pieces.shape[0] + 1) * shape.step)
    halves = out.reshape(-1, shape.step)
    halves[:-1] += pieces[:, : shape.step]
    halves[1:] += pieces[:, shape.step :]
    return out[shape.step :].astype(np.float32)

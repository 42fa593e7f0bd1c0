"""How much of the speech's short-time envelopes a mask leaves, for training to raise.

After STOI (Taal, Hendriks, Heusdens, Jensen: "An algorithm for intelligibility prediction of time-frequency
weighted noisy speech", IEEE TASLP 19(7), 2011), on the chain's own frames and bands: correlations over 0.38 s of
third octaves from 150 Hz on. A window counts by its frames within 40 dB of the loudest.
"""

from functools import lru_cache

import numpy as np
import torch

import chain

THIRD_OCTAVES, WINDOW, HOP = 15, 24, 4
ACTIVE, CLIPPED = 1e-4, 1 + 10 ** (15 / 20)  # of the loudest frame's energy; of the clean envelope
LEAST = 1e-6  # energy of a frame, where loud ones have about the size 1


@lru_cache
def _third_octaves(shape, device):
    """Which share of every band lies in every third octave, [band, third octave]."""
    low = 150 * 2 ** ((2 * np.arange(THIRD_OCTAVES) - 1) / 6)
    frequency = np.arange(shape.bins) * chain.RATE / shape.frame
    inside = (frequency[:, None] >= low) & (frequency[:, None] < low * 2 ** (1 / 3))
    shares = np.add.reduceat(inside.astype(np.float32), shape.band_starts, axis=0) / shape.band_widths[:, None]
    return torch.from_numpy(shares.astype(np.float32)).to(device)


def intelligibility(mask, part, shape=chain.Shape()):
    """Of a mask before squaring and a Scene's tensors, the mean correlation, 0 to 1; 1 without any speech."""
    bands = _third_octaves(shape, mask.device)
    energies = mask**4 * part.mix_energy, part.target_energy
    y, x = ((energy @ bands + LEAST).sqrt().unfold(1, WINDOW, HOP) for energy in energies)
    frame = part.target_energy.sum(dim=2)
    active = (frame > ACTIVE * frame.amax(dim=1, keepdim=True).clamp(min=1)).float().unfold(1, WINDOW, HOP).mean(dim=2)
    # A band that the microphone doesn't have tells nothing.
    weight = active[..., None] * (x.square().mean(dim=3) > 4 * LEAST)
    x, y = (z / z.norm(dim=3, keepdim=True) for z in (x, y))
    y = torch.minimum(y, CLIPPED * x)
    x, y = (z - z.mean(dim=3, keepdim=True) for z in (x, y))
    correlation = (x * y).sum(dim=3) / (x.norm(dim=3) * y.norm(dim=3) + 1e-5)
    return 1 - (weight * (1 - correlation)).sum() / weight.sum().clamp(min=1)

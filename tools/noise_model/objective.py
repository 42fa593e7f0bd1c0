"""What training lowers: distortion, what is left in pauses, and what speech loses of its intelligibility.

All of it from the network's mask, before squaring, [clip, frame, band], and a Scene's tensors of the same frames.
"""

import torch

import chain
from intelligibility import intelligibility

SNR_WEIGHT, SNR_CEILING = 0.012, 3e-5
CLEAN_SNR, CLEAN_WEIGHT = 1e-3, 1.2  # clips with less noise than this beside their speech, and what they count
PAUSE, HEARD, QUIET_ENOUGH_DB = 0.004, 1e-2, -30  # of its energy a pause keeps no more; that it has before; that is left
PAUSE_WEIGHT, INTELLIGIBILITY_WEIGHT = 0.003, 3.0


def _distortion(mask, part):
    """The power 0.5 of a masked magnitude is that of the magnitude times the unsquared mask, so the
    compressed terms are squares in the mask: magnitudes with speech that is missing counted twice,
    and complex values. The third term is the error of the uncompressed spectrum in dB, clip by clip;
    there clean clips count more, whose small errors the others hardly see.
    """
    s2 = mask * mask
    magnitude = s2 * part.mix - 2 * mask * part.product + part.target
    magnitude = torch.where(mask * part.mix < part.product, 2 * magnitude, magnitude)
    compressed = s2 * part.mix - 2 * mask * part.aligned + part.target
    error = (s2 * s2 * part.mix_energy - 2 * s2 * part.common + part.target_energy).clamp(min=0).sum(dim=(1, 2))
    energy = part.target_energy.sum(dim=(1, 2))
    decibels = 10 * torch.log10((error + SNR_CEILING * energy + 1e-4) / (energy + 1e-4))
    noise = (part.mix_energy - 2 * part.common + part.target_energy).sum(dim=(1, 2))
    decibels = torch.where(noise < CLEAN_SNR * energy, CLEAN_WEIGHT * decibels, decibels)
    bins = mask.shape[0] * mask.shape[1] * chain.Shape().bins
    return (magnitude.sum() + compressed.sum()) / bins + SNR_WEIGHT * decibels.mean()


def _left_in_pauses(mask, part):
    """In dB beside what was there. Where everything is to go, the other terms hardly tell little from less."""
    given, left = part.mix_energy.sum(dim=2), (mask**4 * part.mix_energy).sum(dim=2)
    pause = ((part.target_energy.sum(dim=2) < PAUSE * given) & (given > HEARD)).float()
    decibels = (10 * torch.log10((left + 1e-6) / (given + 1e-6))).clamp(min=QUIET_ENOUGH_DB)
    # A part with few of them doesn't hang on these.
    return (pause * decibels).sum() / (pause.sum() + 0.1 * pause.numel())


def _pressed(mask):
    """What the chain's threshold, which is one of the gain, makes of the mask."""
    root = chain.MASK_THRESHOLD**0.5
    return torch.where(mask < root, mask * mask / root, mask)


def loss(mask, part):
    mask = _pressed(mask)
    return (_distortion(mask, part) + PAUSE_WEIGHT * _left_in_pauses(mask, part)
            + INTELLIGIBILITY_WEIGHT * (1 - intelligibility(mask, part)))

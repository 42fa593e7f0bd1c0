"""Measures of cleaned speech beside the clean speech it came from."""

import numpy as np

RATE = 16000
QUIET_DB = -45  # a frame of the clean speech this far below its active level holds no word


def active_level(samples):
    """Root mean square of the frames of 20 ms that are within 35 dB of the loudest."""
    size = RATE // 50
    energy = np.mean(samples[: samples.size // size * size].reshape(-1, size) ** 2, axis=1)
    active = energy[energy > energy.max() * 10**-3.5]
    return np.sqrt(active.mean()) if active.size else 0.0


def si_sdr(estimate, clean):
    """Scale-invariant signal-to-distortion ratio in dB (Le Roux, Wisdom, Erdogan, Hershey: "SDR - half-baked or
    well done?", ICASSP 2019)."""
    estimate, clean = (x.astype(np.float64) - np.mean(x, dtype=np.float64) for x in (estimate, clean))
    target = clean * (np.dot(estimate, clean) / (np.dot(clean, clean) + 1e-12))
    return float(10 * np.log10((np.sum(target**2) + 1e-12) / (np.sum((estimate - target) ** 2) + 1e-12)))


def _frames(samples, size=RATE // 100):
    return samples[: samples.size // size * size].astype(np.float64).reshape(-1, size)


def between_words(estimate, mix, clean):
    """How much weaker the sound became where nobody speaks, in dB, or None without pauses.

    The first second doesn't count, since a session has to hear the noise first, nor do 100 ms after a word.
    """
    level = np.mean(_frames(clean) ** 2, axis=1)
    quiet = level < (active_level(clean) * 10 ** (QUIET_DB / 20)) ** 2
    loud_before = np.convolve(~quiet, np.ones(11), "full")[: quiet.size] > 0
    pause = quiet & ~loud_before
    pause[:100] = False
    if pause.sum() < 10:
        return None
    before, after = (np.sum(_frames(x)[pause] ** 2) for x in (mix, estimate))
    return float(10 * np.log10((before + 1e-9) / (after + 1e-9)))


STOI_RATE, STOI_FRAME, STOI_SPECTRUM, STOI_BANDS, STOI_SEGMENT = 10000, 256, 512, 15, 30
STOI_RANGE_DB, STOI_CLIP_DB = 40, -15


def _resample(samples, rate):
    count = int(round(samples.size * rate / RATE))
    spectrum = np.fft.rfft(samples.astype(np.float64))
    out = np.zeros(count // 2 + 1, complex)
    size = min(out.size, spectrum.size)
    out[:size] = spectrum[:size]
    return np.fft.irfft(out, count) * (count / samples.size)


def _windowed(samples):
    window = np.hanning(STOI_FRAME + 2)[1:-1]
    starts = np.arange(0, samples.size - STOI_FRAME + 1, STOI_FRAME // 2)
    return samples[starts[:, None] + np.arange(STOI_FRAME)] * window


def _without_silence(clean, other):
    """Both without the frames in which the clean one is 40 dB below its loudest, joined again."""
    a, b = _windowed(clean), _windowed(other)
    level = 20 * np.log10(np.linalg.norm(a, axis=1) + 1e-12)
    keep = level > level.max() - STOI_RANGE_DB
    half, joined = STOI_FRAME // 2, []
    for x in (a[keep], b[keep]):
        out = np.zeros((x.shape[0] + 1) * half)
        out.reshape(-1, half)[:-1] += x[:, :half]
        out.reshape(-1, half)[1:] += x[:, half:]
        joined.append(out)
    return joined


def _third_octaves():
    frequency = np.linspace(0, STOI_RATE, STOI_SPECTRUM + 1)[: STOI_SPECTRUM // 2 + 1]
    bands = np.zeros((STOI_BANDS, frequency.size))
    for k in range(STOI_BANDS):
        edges = [150 * 2 ** ((2 * k + side) / 6) for side in (-1, 1)]
        low, high = (int(np.argmin((frequency - edge) ** 2)) for edge in edges)
        bands[k, low:high] = 1
    return bands


def stoi(estimate, clean):
    """Short-time objective intelligibility, 0 to 1 (Taal, Hendriks, Heusdens, Jensen: "An algorithm for
    intelligibility prediction of time-frequency weighted noisy speech", IEEE TASLP 19(7), 2011)."""
    x, y = _without_silence(_resample(clean, STOI_RATE), _resample(estimate, STOI_RATE))
    bands = _third_octaves()
    x, y = (np.sqrt(bands @ np.abs(np.fft.rfft(_windowed(s), STOI_SPECTRUM).T) ** 2) for s in (x, y))
    if x.shape[1] < STOI_SEGMENT:
        raise ValueError("less than 0.4 s of speech")
    segments = np.arange(x.shape[1] - STOI_SEGMENT + 1)[:, None] + np.arange(STOI_SEGMENT)
    x, y = x[:, segments], y[:, segments]  # [band, segment, frame]
    y = y * (np.linalg.norm(x, axis=2) / (np.linalg.norm(y, axis=2) + 1e-12))[..., None]
    y = np.minimum(y, x * (1 + 10 ** (-STOI_CLIP_DB / 20)))
    x, y = (s - s.mean(axis=2, keepdims=True) for s in (x, y))
    norms = np.linalg.norm(x, axis=2) * np.linalg.norm(y, axis=2)
    return float(np.mean(np.sum(x * y, axis=2) / (norms + 1e-12)))

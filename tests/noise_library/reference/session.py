"""A session: the caller's rate and sample format on one side, one cleaner on the other."""

import numpy as np

from .cleaners import Cleaner1, Cleaner2, Cleaner3, Cleaner4, Cleaner5, Cleaner6, Model, NoiseLevel
from .kernels import f32
from .resampler import Resampler
from .vad import VoiceActivity

CLEANERS = {
    ("clean", "0.0.1"): Cleaner1, ("clean", "0.0.2"): Cleaner2, ("clean", "0.0.3"): Cleaner3,
    ("clean", "0.0.4"): Cleaner4, ("clean", "0.0.5"): Cleaner5, ("clean", "0.0.6"): Cleaner6,
    ("vad", "VAD_0.0.1"): VoiceActivity, ("level", "0.0.5"): NoiseLevel,
}


def sample_count(duration, rate):
    return int(rate * duration / 1000.0)


def _clamp(samples):
    return np.clip(samples, f32(-32768), f32(32767))


class Session:
    """`kind` is "clean", "vad" or "level"; the latter two have no output rate of their own."""

    def __init__(self, kind, weights, environment, in_rate, out_rate, duration):
        model = Model(weights, environment)
        self.kind = kind
        self.cleaner = CLEANERS[kind, model.version](model, duration)
        self.in_size, model_size = sample_count(duration, in_rate), sample_count(duration, model.rate)
        self.out_size = sample_count(duration, out_rate)
        self.resampler_in = Resampler(self.in_size, model_size)
        self.resampler_out = Resampler(model_size, model_size if kind == "vad" else self.out_size)

    def process(self, samples):
        """A cleaned frame in the format of `samples` (int16 or float32), or the measured value."""
        wide = samples.dtype == f32
        x = samples * f32(32768) if wide else samples.astype(f32)
        x = self.cleaner.clean(_clamp(self.resampler_in.resample(x)))
        if self.kind != "clean":
            return x[0]
        x = _clamp(self.resampler_out.resample(x))
        assert x.size == self.out_size
        return x * f32(3.0517578e-5) if wide else np.trunc(x).astype(np.int16)

    def reset(self):
        """For the noise level only."""
        self.cleaner.start()
        self.resampler_in.reset()
        self.resampler_out.reset()

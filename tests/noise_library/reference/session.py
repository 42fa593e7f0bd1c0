"""A session: the caller's rate and sample format on one side, one cleaner on the other."""

import ctypes

import numpy as np

from .cleaners import Cleaner, Model, VoiceActivity

_FLOATS = ctypes.POINTER(ctypes.c_float)


class Resampler:
    SPARE = 1024
    _library = None

    def __init__(self, in_count, out_count):
        self.ratio, self.carry, self.handle = out_count / in_count, 0, None
        self.buffer = np.zeros(0, np.float32)
        if Resampler._library is None:
            Resampler._library = ctypes.CDLL("libresample.so.1")
            self._library.resample_open.restype = ctypes.c_void_p
            self._library.resample_open.argtypes = [ctypes.c_int, ctypes.c_double, ctypes.c_double]
            self._library.resample_close.argtypes = [ctypes.c_void_p]
            self._library.resample_process.argtypes = [
                ctypes.c_void_p, ctypes.c_double, _FLOATS, ctypes.c_int, ctypes.c_int,
                ctypes.POINTER(ctypes.c_int), _FLOATS, ctypes.c_int,
            ]
        self.reset()

    def reset(self):
        if self.handle is not None:
            self._library.resample_close(self.handle)
        self.first = True
        self.handle = self._library.resample_open(1, self.ratio, self.ratio)

    def _process(self, samples, out):
        samples = np.ascontiguousarray(samples, np.float32)
        used = produced = 0
        consumed = ctypes.c_int()
        while True:
            count = self._library.resample_process(
                self.handle, self.ratio, samples[used:].ctypes.data_as(_FLOATS), samples.size - used, 0,
                ctypes.byref(consumed), out[produced:].ctypes.data_as(_FLOATS), out.size - produced)
            used += consumed.value
            produced += max(count, 0)
            if not (count > 0 or (count == 0 and used < samples.size)):
                return produced

    def resample(self, samples):
        if self.ratio == 1.0:
            return samples
        expected = int(self.ratio * samples.size)
        self.buffer.resize(self.SPARE + expected)
        # After a reset the carry still stands: the first frame goes behind it, and is taken from the front.
        produced = self._process(samples, self.buffer[self.carry :])
        if self.first:
            # The converter starts late: silence leads, and one sample stays behind as slack.
            self.first, self.carry = False, 1
            out = np.concatenate([np.zeros(expected - produced + 1), self.buffer[: produced - 1]])
            self.buffer[0] = self.buffer[produced - 1]
            return out
        out = self.buffer[:expected].copy()
        self.carry += produced - expected
        assert self.carry >= 0
        self.buffer[: self.carry] = self.buffer[expected : expected + self.carry].copy()
        return out


class Session:
    """`kind` is "clean", "vad" or "level"; the latter two have no output rate of their own."""

    def __init__(self, kind, weights, environment, in_rate, out_rate, duration):
        model = Model(weights, environment)
        self.kind = kind
        self.cleaner = VoiceActivity(model, duration) if kind == "vad" else Cleaner(model, duration, kind == "level")
        self.in_size, model_size, self.out_size = (int(r * duration / 1000.0) for r in (in_rate, model.rate, out_rate))
        self.resampler_in = Resampler(self.in_size, model_size)
        self.resampler_out = Resampler(model_size, model_size if kind == "vad" else self.out_size)

    def process(self, samples):
        """A cleaned frame in the format of `samples` (int16 or float32), or the measured value."""
        scale = 1 if samples.dtype == np.int16 else 32768
        x = self.resampler_in.resample(samples.astype(np.float64) * scale)
        x = self.cleaner.clean(np.clip(x, -32768, 32767).astype(np.float64))
        if self.kind != "clean":
            return x[0]
        x = np.clip(self.resampler_out.resample(x), -32768, 32767) / scale
        assert x.size == self.out_size
        return np.trunc(x).astype(np.int16) if samples.dtype == np.int16 else x

    def reset(self):
        self.cleaner.start()
        self.resampler_in.reset()
        self.resampler_out.reset()

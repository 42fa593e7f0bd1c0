"""Rate conversion, frame by frame, over libresample."""

import ctypes

import numpy as np

from .kernels import f32, floats

_FLOATS = ctypes.POINTER(ctypes.c_float)
_library = None


def _libresample():
    global _library
    if _library is None:
        _library = ctypes.CDLL("libresample.so.1")
        _library.resample_open.restype = ctypes.c_void_p
        _library.resample_open.argtypes = [ctypes.c_int, ctypes.c_double, ctypes.c_double]
        _library.resample_close.argtypes = [ctypes.c_void_p]
        _library.resample_process.argtypes = [
            ctypes.c_void_p, ctypes.c_double, _FLOATS, ctypes.c_int, ctypes.c_int,
            ctypes.POINTER(ctypes.c_int), _FLOATS, ctypes.c_int,
        ]
    return _library


class Resampler:
    SPARE = 1024

    def __init__(self, in_count: int, out_count: int):
        self.ratio = out_count / in_count
        self.buffer = floats([])
        self.carry = 0
        self.handle = None
        self.reset()

    def close(self):
        if self.handle is not None:
            _libresample().resample_close(self.handle)
            self.handle = None

    def reset(self):
        self.close()
        self.first = True
        self.handle = _libresample().resample_open(1, self.ratio, self.ratio)

    def __del__(self):
        self.close()

    def _process(self, samples, out) -> int:
        samples = np.ascontiguousarray(samples, dtype=f32)
        used = produced = 0
        consumed = ctypes.c_int()
        while True:
            count = _libresample().resample_process(
                self.handle, self.ratio,
                samples[used:].ctypes.data_as(_FLOATS), samples.size - used, 0, ctypes.byref(consumed),
                out[produced:].ctypes.data_as(_FLOATS), out.size - produced,
            )
            used += consumed.value
            produced += max(count, 0)
            if not (count > 0 or (count == 0 and used < samples.size)):
                return produced

    def resample(self, samples):
        if self.ratio == 1.0:
            return samples
        expected = int(self.ratio * samples.size)
        self.buffer = np.concatenate([self.buffer, np.zeros(self.SPARE + expected, f32)])[: self.SPARE + expected]
        # After a reset the carry still stands: the first frame goes behind it, and is taken from the front.
        produced = self._process(samples, self.buffer[self.carry :])
        if self.first:
            # The converter starts late: silence leads, and one sample stays behind as slack.
            self.first, self.carry = False, 1
            out = np.concatenate([np.zeros(expected - produced + 1, f32), self.buffer[: produced - 1]])
            self.buffer[0] = self.buffer[produced - 1]
            return out
        out = self.buffer[:expected].copy()
        self.carry += produced - expected
        assert self.carry >= 0
        self.buffer[: self.carry] = self.buffer[expected : expected + self.carry].copy()
        return out

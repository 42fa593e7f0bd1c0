"""The C interface of libtalvo_audio.so through ctypes."""

import ctypes

import numpy as np

_CREATE = {"clean": "Nc", "vad": "Vad", "level": "NoiseDb"}


class LibraryError(Exception):
    pass


class Library:
    def __init__(self, path):
        self.c = ctypes.CDLL(str(path))
        for name in ("Nc", "Vad", "NoiseDb"):
            getattr(self.c, f"talvoAudio{name}CreateSession").restype = ctypes.c_void_p
        for name in ("VadFrame", "NoiseDbFrame"):
            for form in ("Int16", "Float"):
                getattr(self.c, f"talvoAudio{name}{form}").restype = ctypes.c_float
        self._check(self.c.talvoAudioGlobalInit(None), "global init")

    def _check(self, code, what, good=0):
        if code != good:
            raise LibraryError(f"{what} gave {code}")

    def set_model(self, path, name):
        self._check(self.c.talvoAudioSetModel(ctypes.c_wchar_p(str(path)), name.encode()), "set model")

    def session(self, kind, in_rate, out_rate, duration, name):
        return LibrarySession(self.c, kind, in_rate, out_rate, duration, name)


class LibrarySession:
    def __init__(self, c, kind, in_rate, out_rate, duration, name):
        self.c, self.kind, self.name = c, kind, _CREATE[kind]
        rates = (in_rate, out_rate) if kind == "clean" else (in_rate,)
        self.handle = ctypes.c_void_p(self._call("CreateSession", *rates, duration, name.encode()))
        if not self.handle:
            raise LibraryError("no session")
        self.out_size = int(out_rate * duration / 1000)

    def _call(self, function, *arguments):
        return getattr(self.c, f"talvoAudio{self.name}{function}")(*arguments)

    def process(self, samples):
        """A cleaned frame in the format of `samples` (int16 or float32), or the measured value."""
        form = "Int16" if samples.dtype == np.int16 else "Float"
        samples = np.ascontiguousarray(samples)
        if self.kind != "clean":
            value = self._call(f"Frame{form}", self.handle, samples.ctypes.data_as(ctypes.c_void_p), samples.size)
            if self.kind == "vad" and not 0 <= value <= 1:
                raise LibraryError(f"voice activity gave {value}")
            return value
        out = np.empty(self.out_size, samples.dtype)
        pointers = (a.ctypes.data_as(ctypes.c_void_p) for a in (samples, out))
        arguments = [x for pair in zip(pointers, (samples.size, out.size)) for x in pair]
        code = self._call(f"CleanAmbientNoise{form}", self.handle, *arguments)
        if code != 0:
            raise LibraryError(f"a frame gave {code}")
        return out

    def reset(self):
        code = self._call("ResetSession", self.handle)
        if code != 1:
            raise LibraryError(f"reset gave {code}")

    def close(self):
        code = self._call("CloseSession", self.handle)
        if code != 0:
            raise LibraryError(f"close gave {code}")

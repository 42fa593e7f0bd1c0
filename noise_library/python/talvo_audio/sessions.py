"""Streams through the library, one session a channel."""

from __future__ import annotations

import ctypes
import math
import os
from types import TracebackType
from typing import Any, TypeVar

import numpy
from numpy.typing import NDArray

from .errors import TalvoAudioError
from .library import FRAME_MILLISECONDS, RATES, library

Samples = NDArray[Any]
"""Floats from -1 to 1 or 16-bit integers: (samples,) or (samples, channels)."""

_Self = TypeVar("_Self", bound="_Sessions")


def _form(dtype: numpy.dtype[Any]) -> tuple[Any, str, Any]:
    """The type that the library works with, its functions' ending and their pointer type."""
    if dtype == numpy.int16:
        return numpy.int16, "Int16", ctypes.POINTER(ctypes.c_short)
    if dtype.kind == "f":
        return numpy.float32, "Float", ctypes.POINTER(ctypes.c_float)
    raise TypeError(f"samples must be floats or 16-bit integers, not {dtype}")


class _Sessions:
    """Sessions of one kind, closed with the object, by `close` or at the end of a `with`."""

    _kind = ""

    def __init__(self, rate: int, model: str | os.PathLike[str] | None, channels: int = 1) -> None:
        self._sessions: list[int] = []
        if rate not in RATES:
            raise ValueError(f"the sample rate must be one of {', '.join(map(str, RATES))}, not {rate}")
        if channels < 1:
            raise ValueError(f"there must be channels, not {channels}")
        self.rate: int = rate
        self._library = library()
        self._frame = rate * FRAME_MILLISECONDS // 1000
        self._name = self._library.model(model)
        for _ in range(channels):
            self._sessions.append(self._open())

    def _open(self) -> int:
        create = getattr(self._library.functions, f"talvoAudio{self._kind}CreateSession")
        rates = [self.rate] * (2 if self._kind == "Nc" else 1)
        session = create(*rates, FRAME_MILLISECONDS, self._name)
        if not session:
            raise TalvoAudioError("the model doesn't serve sessions of this kind and rate")
        return int(session)

    def _shut(self, session: int) -> None:
        getattr(self._library.functions, f"talvoAudio{self._kind}CloseSession")(session)

    def close(self) -> None:
        """Ends the stream; what it would still give is lost. May be called twice."""
        while self._sessions:
            self._shut(self._sessions.pop())

    def __enter__(self: _Self) -> _Self:
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def __del__(self) -> None:
        self.close()

    def _check(self) -> None:
        if not self._sessions:
            raise ValueError("the session is closed")


class Cleaner(_Sessions):
    """Cleans a stream in blocks of any length.

    >>> with Cleaner(16000, strength=0) as cleaner:
    ...     late = numpy.concatenate([cleaner.process(numpy.ones(700, numpy.float32)), cleaner.flush()])
    >>> len(late) == 700 + cleaner.delay and late[:cleaner.delay].any()
    False

    `rate` is one of `RATES`; `strength` from 0, the sound as it came in, to 1, all that the model takes away; `model` a
    ".tw", ".nmw" or ".cfg" file, absent: the one that ships. One thread at a time.
    """

    _kind = "Nc"

    def __init__(
        self,
        rate: int,
        *,
        strength: float = 1.0,
        channels: int = 1,
        model: str | os.PathLike[str] | None = None,
    ) -> None:
        super().__init__(rate, model, channels)
        self._waiting: Samples | None = None  # less than a frame, uncleaned
        self._ready: Samples | None = None  # with the waiting ones always a whole frame
        self._delay: int | None = None
        self._strength = 1.0
        self.strength = strength

    @property
    def strength(self) -> float:
        """May be set at any time; counts from the next 10 ms on."""
        return self._strength

    @strength.setter
    def strength(self, value: float) -> None:
        if not 0.0 <= value <= 1.0:
            raise ValueError(f"the strength must be from 0 to 1, not {value}")
        self._check()
        self._strength = float(value)
        for session in self._sessions:
            self._library.functions.talvoAudioNcSetStrength(session, self._strength)

    @property
    def delay(self) -> int:
        """Samples that the output is late by: the model's and the resamplers' delay, and the frame that is gathered."""
        if self._delay is None:
            self._delay = self._frame + self._measured_delay()
        return self._delay

    def _measured_delay(self) -> int:
        """Where a click comes out of a session that takes nothing away, two frames after its start."""
        session = self._open()
        try:
            self._library.functions.talvoAudioNcSetStrength(session, 0.0)
            click = numpy.zeros(12 * self._frame, numpy.float32)
            click[2 * self._frame] = 0.5
            heard = self._cleaned(session, click)
            return int(numpy.argmax(numpy.abs(heard))) - 2 * self._frame
        finally:
            self._shut(session)

    def _cleaned(self, session: int, samples: Samples) -> Samples:
        """Whole frames of one channel."""
        _, ending, pointer = _form(samples.dtype)
        clean = getattr(self._library.functions, f"talvoAudioNcCleanAmbientNoise{ending}")
        out = numpy.ascontiguousarray(samples).copy()
        for at in range(0, len(out), self._frame):
            frame = out[at : at + self._frame].ctypes.data_as(pointer)
            if clean(session, frame, self._frame, frame, self._frame) != 0:
                raise TalvoAudioError("a frame failed; standard error says why")
        return out

    def process(self, samples: Samples) -> Samples:
        """As many samples as are given, late by `delay`: float32, or int16 for int16. The first ones are silence."""
        self._check()
        given = numpy.asarray(samples)
        kind, _, _ = _form(given.dtype)
        channels = len(self._sessions)
        if given.ndim not in (1, 2) or (1 if given.ndim == 1 else given.shape[1]) != channels:
            raise ValueError(f"samples of shape {given.shape} for {channels} channels")
        rows = given.astype(kind, copy=False).reshape(-1, channels)
        if self._waiting is None or self._ready is None:
            self._waiting = numpy.zeros((0, channels), kind)
            self._ready = numpy.zeros((self._frame, channels), kind)
        elif self._waiting.dtype != kind:
            raise TypeError(f"a stream of {self._waiting.dtype} can't go on with {given.dtype}")
        waiting = numpy.concatenate([self._waiting, rows])
        whole = len(waiting) - len(waiting) % self._frame
        cleaned = [self._cleaned(session, waiting[:whole, at]) for at, session in enumerate(self._sessions)]
        ready = numpy.concatenate([self._ready, numpy.stack(cleaned, axis=1)])
        self._waiting, self._ready = waiting[whole:], ready[len(rows) :]
        out: Samples = ready[: len(rows)].reshape(given.shape)
        return out

    def flush(self) -> Samples:
        """The last `delay` samples of a stream, which goes on after silence of that length."""
        kind = numpy.dtype(numpy.float32) if self._waiting is None else self._waiting.dtype
        shape = (self.delay,) if len(self._sessions) == 1 else (self.delay, len(self._sessions))
        return self.process(numpy.zeros(shape, kind))


class _Measure(_Sessions):
    def __init__(self, rate: int, *, model: str | os.PathLike[str] | None = None) -> None:
        super().__init__(rate, model)

    @property
    def frame_size(self) -> int:
        """Samples of a frame, 10 ms."""
        return self._frame

    def _measured(self, samples: Samples) -> float:
        self._check()
        given = numpy.asarray(samples)
        kind, ending, pointer = _form(given.dtype)
        if given.shape != (self._frame,):
            raise ValueError(f"a frame has {self._frame} samples, not shape {given.shape}")
        frame = numpy.ascontiguousarray(given, kind)
        measure = getattr(self._library.functions, f"talvoAudio{self._kind}Frame{ending}")
        return float(measure(self._sessions[0], frame.ctypes.data_as(pointer), self._frame))


class NoiseLevel(_Measure):
    """Measures the noise of a stream so far, on a cleaning model of version 0.0.5, as the shipped one is.

    >>> with NoiseLevel(16000) as level:
    ...     frames = numpy.random.default_rng(1).normal(0, 0.01, (100, level.frame_size))
    ...     decibels = [level.measure(frame) for frame in frames][-1]
    >>> -50 < decibels < -40
    True
    """

    _kind = "NoiseDb"

    def measure(self, frame: Samples) -> float:
        """With one more frame: decibels relative to full scale, -120 at the lowest."""
        return self._measured(frame)


class VoiceActivity(_Measure):
    """Tells speech from silence, with a model made for it (version VAD_0.0.1); none ships."""

    _kind = "Vad"

    def __init__(self, rate: int, *, model: str | os.PathLike[str]) -> None:
        super().__init__(rate, model=model)

    def probability(self, frame: Samples) -> float:
        """The probability, 0 to 1, that a frame holds speech."""
        value = self._measured(frame)
        if math.isnan(value) or value < 0.0:
            raise TalvoAudioError("a frame failed; standard error says why")
        return value


def clean_samples(
    samples: Samples, rate: int, *, strength: float = 1.0, model: str | os.PathLike[str] | None = None
) -> Samples:
    """A whole sound, cleaned and in step with what was given: the delay is taken out.

    >>> silence = numpy.zeros((4410, 2), numpy.int16)
    >>> numpy.array_equal(clean_samples(silence, 44100), silence)
    True
    """
    given = numpy.asarray(samples)
    channels = 1 if given.ndim == 1 else given.shape[1]
    with Cleaner(rate, strength=strength, channels=channels, model=model) as cleaner:
        first = cleaner.process(given)
        cleaned: Samples = numpy.concatenate([first, cleaner.flush()])[cleaner.delay :]
        return cleaned

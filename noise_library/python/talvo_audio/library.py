"""The audio library as it is loaded, started once in a process, with its models registered once each."""

from __future__ import annotations

import ctypes
import logging
import os
import threading
from pathlib import Path

from .errors import TalvoAudioError

RATES: tuple[int, ...] = (8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000)
"""The sample rates that sessions can have, in hertz."""

FRAME_MILLISECONDS = 10

_LIBRARY = "libtalvo_audio.so.0"
_MODEL = "c6.f.s.ced125.tw"
_PRINT = ctypes.CFUNCTYPE(None, ctypes.c_char_p, ctypes.c_void_p)
_SHORTS = ctypes.POINTER(ctypes.c_short)
_FLOATS = ctypes.POINTER(ctypes.c_float)

_FUNCTIONS = {
    "talvoAudioGlobalInit": (ctypes.c_int, [ctypes.c_wchar_p]),
    "talvoAudioSetModel": (ctypes.c_int, [ctypes.c_wchar_p, ctypes.c_char_p]),
    "talvoAudioSetPrint": (None, [_PRINT, ctypes.c_void_p]),
    "talvoAudioNcCreateSession": (ctypes.c_void_p, [ctypes.c_int32] * 3 + [ctypes.c_char_p]),
    "talvoAudioVadCreateSession": (ctypes.c_void_p, [ctypes.c_int32] * 2 + [ctypes.c_char_p]),
    "talvoAudioNoiseDbCreateSession": (ctypes.c_void_p, [ctypes.c_int32] * 2 + [ctypes.c_char_p]),
    "talvoAudioNcCloseSession": (ctypes.c_int, [ctypes.c_void_p]),
    "talvoAudioVadCloseSession": (ctypes.c_int, [ctypes.c_void_p]),
    "talvoAudioNoiseDbCloseSession": (ctypes.c_int, [ctypes.c_void_p]),
    "talvoAudioNcSetStrength": (ctypes.c_int, [ctypes.c_void_p, ctypes.c_float]),
    "talvoAudioNcCleanAmbientNoiseInt16": (
        ctypes.c_int, [ctypes.c_void_p, _SHORTS, ctypes.c_uint, _SHORTS, ctypes.c_uint]),
    "talvoAudioNcCleanAmbientNoiseFloat": (
        ctypes.c_int, [ctypes.c_void_p, _FLOATS, ctypes.c_uint, _FLOATS, ctypes.c_uint]),
    "talvoAudioVadFrameInt16": (ctypes.c_float, [ctypes.c_void_p, _SHORTS, ctypes.c_uint]),
    "talvoAudioVadFrameFloat": (ctypes.c_float, [ctypes.c_void_p, _FLOATS, ctypes.c_uint]),
    "talvoAudioNoiseDbFrameInt16": (ctypes.c_float, [ctypes.c_void_p, _SHORTS, ctypes.c_uint]),
    "talvoAudioNoiseDbFrameFloat": (ctypes.c_float, [ctypes.c_void_p, _FLOATS, ctypes.c_uint]),
}

_lock = threading.Lock()
_loaded: Library | None = None


def _library_path() -> str:
    """In PREFIX/lib if this file lies in PREFIX/lib/python3/dist-packages, else where the loader looks."""
    for folder in list(Path(os.path.abspath(__file__)).parents)[3:4]:
        for path in [folder / _LIBRARY, *sorted(folder.glob(f"*-linux-gnu*/{_LIBRARY}"))]:
            if path.is_file():
                return str(path)
    return _LIBRARY


class _DlInfo(ctypes.Structure):
    _fields_ = [
        ("file", ctypes.c_char_p),
        ("base", ctypes.c_void_p),
        ("name", ctypes.c_char_p),
        ("address", ctypes.c_void_p),
    ]


class Library:
    """The C interface. Sessions may run on different threads; each one serves one thread at a time."""

    def __init__(self) -> None:
        path = _library_path()
        try:
            self.functions = ctypes.CDLL(path)
            for name, (result, arguments) in _FUNCTIONS.items():
                function = getattr(self.functions, name)
                function.restype, function.argtypes = result, arguments
        except (OSError, AttributeError) as error:
            raise TalvoAudioError(f"the audio library can't be loaded: {error}") from error
        self._printed: list[str] = []
        self._print = _PRINT(self._keep)  # lives as long as the library, which lives as long as the process
        self._models: dict[str, bytes] = {}
        self.functions.talvoAudioSetPrint(self._print, None)
        # Other code of this process may have started it: then it is used as it is.
        self.functions.talvoAudioGlobalInit("")

    def _keep(self, line: bytes, _context: object) -> None:
        text = line.decode(errors="replace")
        self._printed = [*self._printed[-19:], text]
        logging.getLogger("talvo_audio").debug(text)

    def shipped_model(self) -> str:
        """In $CORVANTA_RESOURCES, else beside the loaded library."""
        if chosen := os.environ.get("CORVANTA_RESOURCES"):
            return os.path.join(os.path.abspath(chosen), _MODEL)
        found = _DlInfo()
        address = ctypes.cast(self.functions.talvoAudioGlobalInit, ctypes.c_void_p)
        ctypes.CDLL(None).dladdr(address, ctypes.byref(found))
        library = os.path.realpath(os.fsdecode(found.file or b""))
        path = ""
        for levels in (2, 3):  # Debian's libraries lie one level deeper, in lib/<multiarch>
            prefix = library
            for _ in range(levels):
                prefix = os.path.dirname(prefix)
            path = os.path.join(prefix, "share/corvanta-sdk-video", _MODEL)
            if os.path.isfile(path):
                break
        return path

    def model(self, path: str | os.PathLike[str] | None) -> bytes:
        """The name that a model file is registered under, the shipped one if there is no path."""
        place = self.shipped_model() if path is None else os.path.abspath(os.fspath(path))
        with _lock:
            if place not in self._models:
                if not os.path.isfile(place):
                    raise TalvoAudioError(f"no noise model at {place}")
                self._printed = []
                name = f"python {place}".encode()
                if self.functions.talvoAudioSetModel(place, name) != 0:
                    raise TalvoAudioError(f"the model {place} can't be used: {'; '.join(self._printed)}")
                self._models[place] = name
            return self._models[place]


def library() -> Library:
    """The library of this process, loaded and started at the first call."""
    global _loaded
    with _lock:
        if _loaded is None:
            _loaded = Library()
        return _loaded

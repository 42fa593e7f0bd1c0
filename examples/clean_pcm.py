#!/usr/bin/env python3
"""Cleans raw 16-bit mono sound: clean_pcm.py LIBRARY MODEL [RATE] <noisy.raw >clean.raw"""

import ctypes
import os
import sys

DURATION = 10


def main():
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    library, model = ctypes.CDLL(os.path.abspath(sys.argv[1])), os.path.abspath(sys.argv[2])
    rate = int(sys.argv[3]) if len(sys.argv) > 3 else 16000
    library.talvoAudioNcCreateSession.restype = ctypes.c_void_p

    # The library prints to standard output, which is the sound's here.
    sound = os.fdopen(os.dup(1), "wb")
    os.dup2(2, 1)

    if library.talvoAudioGlobalInit(None) != 0 or library.talvoAudioSetModel(ctypes.c_wchar_p(model), b"model") != 0:
        sys.exit("the model can't be used")
    session = ctypes.c_void_p(library.talvoAudioNcCreateSession(rate, rate, DURATION, b"model"))
    if not session:
        sys.exit("no session")

    size = rate * DURATION // 1000
    frame = (ctypes.c_short * size)()
    while data := sys.stdin.buffer.read(2 * size):
        ctypes.memset(frame, 0, 2 * size)
        ctypes.memmove(frame, data, len(data))
        if library.talvoAudioNcCleanAmbientNoiseInt16(session, frame, size, frame, size) != 0:
            sys.exit("a frame failed")
        sound.write(bytes(frame)[: len(data)])
    sound.close()
    library.talvoAudioNcCloseSession(session)
    library.talvoAudioGlobalDestroy()


if __name__ == "__main__":
    main()

#!/usr/bin/env python3
"""Cleans raw 16-bit mono sound: clean_pcm.py [RATE [MODEL]] <noisy.raw >clean.raw"""

import sys

import numpy
import talvo_audio


def main() -> None:
    rate = int(sys.argv[1]) if len(sys.argv) > 1 else 16000
    model = sys.argv[2] if len(sys.argv) > 2 else None
    with talvo_audio.Cleaner(rate, model=model) as cleaner:
        late = cleaner.delay  # taken out, so that both sounds stay in step
        while data := sys.stdin.buffer.read(2 * rate):
            cleaned = cleaner.process(numpy.frombuffer(data, "<i2"))
            sys.stdout.buffer.write(cleaned[late:].tobytes())
            late = max(0, late - len(cleaned))
        sys.stdout.buffer.write(cleaner.flush()[late:].tobytes())


if __name__ == "__main__":
    main()

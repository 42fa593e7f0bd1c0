"""Takes background noise out of speech, on numpy arrays and on whole files.

>>> import numpy, talvo_audio
>>> noisy = numpy.random.default_rng(1).normal(0, 0.05, 48000).astype(numpy.float32)
>>> quiet = talvo_audio.clean_samples(noisy, 48000)
>>> quiet.shape, quiet.dtype
((48000,), dtype('float32'))
>>> bool(quiet[24000:].std() < 0.3 * noisy[24000:].std())
True

A stream goes through a `Cleaner`, block by block; a file through `clean`, which reads and writes whatever ffmpeg can:

    talvo_audio.clean("lecture.mp4", "lecture.wav", strength=0.8)

Samples are floats from -1 to 1 or 16-bit integers, one value a sample, or one row a sample and one column a channel.
Cleaned sound holds what lies below 8 kHz, at every rate.
"""

from .errors import TalvoAudioError
from .files import clean
from .library import RATES
from .sessions import Cleaner, NoiseLevel, VoiceActivity, clean_samples

__all__ = ["RATES", "Cleaner", "NoiseLevel", "TalvoAudioError", "VoiceActivity", "clean", "clean_samples"]

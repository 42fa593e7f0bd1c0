"""Everything that can be measured: the packed model through the audio library, and peers from Debian.

A cleaner takes a clip as 16-bit samples at 16 kHz and gives one of the same length, in time with it.
"""

import ctypes
import shutil
import subprocess
import tempfile
from pathlib import Path

import numpy as np

import chain
from audio_files import RATE

SHIFT = 1600  # samples by which a peer may be late


class CleanerMissing(Exception):
    """What isn't installed or can't be loaded."""


def _aligned(out, clip):
    """Undoes a peer's delay, which isn't always documented, by the best match with its input."""
    size = out.size + SHIFT
    spectrum = np.fft.rfft(out.astype(float), size) * np.conj(np.fft.rfft(clip.astype(float), size))
    lag = int(np.argmax(np.fft.irfft(spectrum, size)[:SHIFT]))
    return np.concatenate([out[lag:], np.zeros(lag, np.int16)])


class Unprocessed:
    name = "unprocessed"

    def clean(self, clip):
        return clip


class OurModel:
    """Frames of 10 ms through the C interface, a session for every clip."""

    FRAME_MS, DELAY_MS = 10, 31

    def __init__(self, library, model, name="this model"):
        self.name = name
        self.library = library
        self.library.set_model(Path(model).resolve(), name)

    def clean(self, clip):
        size, delay = RATE * self.FRAME_MS // 1000, RATE * self.DELAY_MS // 1000
        session = self.library.session("clean", RATE, RATE, self.FRAME_MS, self.name)
        padded = np.pad(clip, (0, delay + size)).astype(np.int16)
        out = [session.process(padded[i : i + size]) for i in range(0, padded.size - size + 1, size)]
        session.close()
        return np.concatenate(out)[delay : delay + clip.size]


class SpeexDsp:
    name, FRAME = "speexdsp", 160

    def __init__(self):
        try:
            self.c = ctypes.CDLL("libspeexdsp.so.1")
        except OSError as error:
            raise CleanerMissing("libspeexdsp1 isn't installed") from error
        self.c.speex_preprocess_state_init.restype = ctypes.c_void_p

    def clean(self, clip):
        state = ctypes.c_void_p(self.c.speex_preprocess_state_init(self.FRAME, RATE))
        out = np.pad(clip, (0, -clip.size % self.FRAME + 2 * self.FRAME)).astype(np.int16)
        for i in range(0, out.size, self.FRAME):
            self.c.speex_preprocess_run(state, ctypes.c_void_p(out[i:].ctypes.data))
        self.c.speex_preprocess_state_destroy(state)
        return _aligned(out, clip)[: clip.size]


class Ffmpeg:
    def __init__(self, filter_text):
        self.name = filter_text
        if shutil.which("ffmpeg") is None:
            raise CleanerMissing("ffmpeg isn't installed")

    def clean(self, clip):
        form = ["-f", "s16le", "-ar", str(RATE), "-ac", "1"]
        command = ["ffmpeg", "-v", "error", *form, "-i", "-", "-af", self.name, *form, "-"]
        padded = np.pad(clip, (0, SHIFT)).astype("<i2")
        done = subprocess.run(command, input=padded.tobytes(), capture_output=True, check=True)
        out = np.frombuffer(done.stdout, "<i2")
        return _aligned(np.pad(out, (0, max(0, padded.size - out.size))), clip)[: clip.size]


WEBRTC_SOURCE = r"""
#include <webrtc/modules/audio_processing/include/audio_processing.h>
#include <webrtc/modules/interface/module_common_types.h>
#include <algorithm>
#include <memory>

extern "C" int clean(short* samples, int count)
{
    std::unique_ptr<webrtc::AudioProcessing> processing(webrtc::AudioProcessing::Create());
    processing->noise_suppression()->Enable(true);
    processing->noise_suppression()->set_level(webrtc::NoiseSuppression::kHigh);
    webrtc::AudioFrame frame;
    frame.sample_rate_hz_ = 16000;
    frame.samples_per_channel_ = 160;
    frame.num_channels_ = 1;
    for (int i = 0; i + 160 <= count; i += 160) {
        std::copy_n(samples + i, 160, frame.data_);
        if (processing->ProcessStream(&frame) != 0)
            return 1;
        std::copy_n(frame.data_, 160, samples + i);
    }
    return 0;
}
"""


class WebRtc:
    """Its interface is C++, so a few lines of it are built on the spot."""

    name = "webrtc-audio-processing"

    def __init__(self):
        self.folder = tempfile.TemporaryDirectory()
        source, library = (Path(self.folder.name) / n for n in ("webrtc.cpp", "webrtc.so"))
        source.write_text(WEBRTC_SOURCE)
        try:
            flags = subprocess.run(["pkg-config", "--cflags", "--libs", "webrtc-audio-processing"],
                                   capture_output=True, check=True, text=True).stdout.split()
            subprocess.run(["g++", "-std=c++17", "-O2", "-fPIC", "-shared", str(source), "-o", str(library), *flags],
                           capture_output=True, check=True)
            self.c = ctypes.CDLL(str(library))
        except (OSError, subprocess.CalledProcessError) as error:
            raise CleanerMissing("libwebrtc-audio-processing-dev, pkg-config and g++ are needed") from error

    def clean(self, clip):
        out = np.pad(clip, (0, -clip.size % 160 + 1600)).astype(np.int16)
        if self.c.clean(ctypes.c_void_p(out.ctypes.data), out.size) != 0:
            raise RuntimeError("webrtc-audio-processing failed")
        return _aligned(out, clip)[: clip.size]


AFFTDN = ("afftdn=tn=1", "afftdn=nr=20:nf=-40:tn=1", "afftdn=nr=30:nf=-30:tn=1")


def peers():
    """Those that are installed, and a line for each that isn't."""
    found, absent = [Unprocessed()], []
    for make in (SpeexDsp, WebRtc, *(lambda text=text: Ffmpeg(text) for text in AFFTDN)):
        try:
            found.append(make())
        except CleanerMissing as error:
            absent.append(str(error))
    return found, absent


def within_chain(samples, mask_of, shape):
    """What the library does, without it: for checks of a network that isn't packed yet."""
    spectrum = chain.spectra(samples, shape)
    bands = chain.features(spectrum, chain.rescaling(samples, shape), shape)
    return chain.resynthesise(spectrum, chain.full_mask(mask_of(bands), shape), shape)

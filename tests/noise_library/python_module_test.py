"""The Python module against the C interface, and on files: python_module_test.py"""

import ctypes
import doctest
import os
import subprocess
import sys
import tempfile
import threading
import unittest
from pathlib import Path

import numpy
import talvo_audio
from talvo_audio import files, sessions
from talvo_audio.library import library


def speech(rate, seconds=1.0, channels=1):
    times = numpy.arange(int(rate * seconds)) / rate
    voice = sum(numpy.sin(2 * numpy.pi * 140 * n * times) / n for n in range(1, 12)) * 0.15
    voice *= numpy.maximum(0.0, numpy.sin(2 * numpy.pi * 3 * times))
    noise = numpy.random.default_rng(7).normal(0, 0.02, (len(times), channels))
    return (voice[:, None] + noise).astype(numpy.float32).reshape((-1,) if channels == 1 else (-1, channels))


def by_c(samples, rate, strength=1.0):
    """Whole frames, straight through the C interface."""
    functions, frame, out = library().functions, rate // 100, samples.copy()
    session = functions.talvoAudioNcCreateSession(rate, rate, 10, library().model(None))
    functions.talvoAudioNcSetStrength(session, strength)
    ending, kind = ("Int16", ctypes.c_short) if out.dtype == numpy.int16 else ("Float", ctypes.c_float)
    clean = getattr(functions, f"talvoAudioNcCleanAmbientNoise{ending}")
    for at in range(0, len(out) - frame + 1, frame):
        pointer = out[at:].ctypes.data_as(ctypes.POINTER(kind))
        assert clean(session, pointer, frame, pointer, frame) == 0
    functions.talvoAudioNcCloseSession(session)
    return out


def ffmpeg(*arguments):
    return subprocess.run(["ffmpeg", "-v", "error", "-y", *map(str, arguments)], check=True, capture_output=True).stdout


def tags(path):
    entries = "format_tags=title,artist:stream=channels,sample_rate,codec_type"
    return subprocess.run(
        ["ffprobe", "-v", "error", "-of", "csv=p=0", "-show_entries", entries, path], check=True, capture_output=True
    ).stdout.decode().split()


class Streams(unittest.TestCase):
    def test_gives_what_the_c_interface_gives_in_blocks_of_any_length(self):
        for rate, step, kind in [(16000, 77, "f4"), (44100, 5000, "f8"), (48000, 480, "i2"), (96000, 1, "f4")]:
            with self.subTest(rate=rate, kind=kind):
                given = speech(rate, 0.05 if step == 1 else 1.0)
                given = (given * 32767).astype("i2") if kind == "i2" else given.astype(kind)
                with talvo_audio.Cleaner(rate, strength=0.7) as cleaner:
                    parts = [cleaner.process(given[at : at + step]) for at in range(0, len(given), step)]
                    self.assertEqual(len(cleaner.flush()), cleaner.delay)
                out = numpy.concatenate(parts)
                expected = by_c(given.astype("i2" if kind == "i2" else "f4"), rate, 0.7)
                self.assertEqual(out.dtype, expected.dtype)
                numpy.testing.assert_array_equal(out[rate // 100 :], expected[: -(rate // 100)])

    def test_whole_sounds_stay_in_step_channel_by_channel(self):
        given = speech(48000, channels=2)
        untouched = talvo_audio.clean_samples(speech(16000), 16000, strength=0.0)
        numpy.testing.assert_allclose(untouched, speech(16000), atol=1e-4)
        out = talvo_audio.clean_samples(given, 48000)
        self.assertEqual(out.shape, given.shape)
        for channel in range(2):
            alone = talvo_audio.clean_samples(given[:, channel], 48000)
            numpy.testing.assert_array_equal(out[:, channel], alone)
        self.assertEqual(talvo_audio.clean_samples(numpy.zeros(0), 16000).shape, (0,))

    def test_threads_clean_side_by_side(self):
        given, out = speech(16000), {}
        expected = talvo_audio.clean_samples(given, 16000)
        threads = [
            threading.Thread(target=lambda n=n: out.update({n: talvo_audio.clean_samples(given, 16000)})) for n in range(4)
        ]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        self.assertTrue(all(numpy.array_equal(out[n], expected) for n in range(4)))

    def test_refuses_in_words(self):
        cleaner = talvo_audio.Cleaner(16000)
        cleaner.process(numpy.zeros(5, numpy.float32))
        closed = talvo_audio.Cleaner(16000)
        closed.close()
        closed.close()
        rows = [
            (ValueError, "sample rate", lambda: talvo_audio.Cleaner(22050)),
            (ValueError, "strength", lambda: talvo_audio.Cleaner(16000, strength=1.5)),
            (ValueError, "strength", lambda: setattr(cleaner, "strength", float("nan"))),
            (ValueError, "channels", lambda: talvo_audio.Cleaner(16000, channels=0)),
            (ValueError, "shape", lambda: cleaner.process(numpy.zeros((5, 2)))),
            (TypeError, "int64", lambda: cleaner.process(numpy.zeros(5, numpy.int64))),
            (TypeError, "can't go on with int16", lambda: cleaner.process(numpy.zeros(5, numpy.int16))),
            (ValueError, "closed", lambda: closed.process(numpy.zeros(5))),
            (ValueError, "160 samples", lambda: talvo_audio.NoiseLevel(16000).measure(numpy.zeros(161))),
            (talvo_audio.TalvoAudioError, "no noise model at /none.tw", lambda: talvo_audio.Cleaner(16000, model="/none.tw")),
            (talvo_audio.TalvoAudioError, "can't be used", lambda: talvo_audio.Cleaner(16000, model=__file__)),
            (talvo_audio.TalvoAudioError, "doesn't serve", lambda: talvo_audio.VoiceActivity(16000, model=library().shipped_model())),
        ]
        for kind, words, call in rows:
            with self.assertRaisesRegex(kind, words):
                call()


class Files(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        self.noisy = self.folder / "-my: noisy ä.mka"
        filters = ["-f", "lavfi", "-i", "anoisesrc=d=2.5:a=0.2:r=22050:seed=2,aformat=channel_layouts=stereo"]
        picture = ["-f", "lavfi", "-i", "testsrc2=d=2.5:s=64x48"]
        ffmpeg(*filters, *picture, "-metadata", "title=Talk", "-c:a", "flac", f"file:{self.noisy}")

    def test_keeps_length_channels_and_tags_and_leaves_the_source_alone(self):
        before, told = self.noisy.read_bytes(), []
        out = talvo_audio.clean(self.noisy, self.folder / "quiet.flac", progress=told.append)
        self.assertEqual(tags(out), ["audio,24000,2", "Talk"])
        raw = ["-ac", "1", "-ar", "24000", "-f", "f32le", "-"]
        noisy, quiet = (numpy.frombuffer(ffmpeg("-i", f"file:{path}", *raw), "f4") for path in (self.noisy, out))
        self.assertEqual(len(quiet), len(noisy))
        self.assertLess(quiet[24000:].std(), 0.3 * noisy[24000:].std())
        self.assertEqual((told, told[-1]), (sorted(told), 1.0))
        self.assertEqual(self.noisy.read_bytes(), before)
        # In its own place.
        again = talvo_audio.clean(out, out, strength=0.0, overwrite=True)
        kept = numpy.frombuffer(ffmpeg("-i", again, *raw), "f4")
        numpy.testing.assert_allclose(kept[500:-500], quiet[500:-500], atol=0.02)
        self.assertEqual(sorted(os.listdir(self.folder)), sorted([self.noisy.name, "quiet.flac"]))

    def test_a_failure_says_why_and_leaves_what_was_there(self):
        there = self.folder / "there.wav"
        there.write_bytes(b"mine")
        silent = self.folder / "silent.mp4"
        ffmpeg("-f", "lavfi", "-i", "testsrc2=d=0.2:s=64x48", silent)
        text = self.folder / "list.ffconcat"
        text.write_text(f"ffconcat version 1.0\nfile '{self.noisy}'\n")

        def stop(_):
            raise KeyError("enough")

        error = talvo_audio.TalvoAudioError
        rows = [
            (FileExistsError, "there.wav", lambda: talvo_audio.clean(self.noisy, there)),
            (FileNotFoundError, "nothing", lambda: talvo_audio.clean(self.folder / "nothing", there, overwrite=True)),
            (error, "no sound", lambda: talvo_audio.clean(silent, there, overwrite=True)),
            (error, "can't be read", lambda: talvo_audio.clean(text, there, overwrite=True)),
            (error, "ffmpeg failed: .*none", lambda: talvo_audio.clean(self.noisy, there, codec="none", overwrite=True)),
            (error, "ffmpeg failed", lambda: talvo_audio.clean(self.noisy, self.folder / "no/folder.wav")),
            (KeyError, "enough", lambda: talvo_audio.clean(self.noisy, there, overwrite=True, progress=stop)),
        ]
        names = sorted(os.listdir(self.folder))
        for kind, words, call in rows:
            with self.assertRaisesRegex(kind, words):
                call()
            self.assertEqual(there.read_bytes(), b"mine")
            self.assertEqual(sorted(os.listdir(self.folder)), names)


class Programs(unittest.TestCase):
    def test_the_example_writes_as_much_as_it_reads(self):
        example = Path(__file__).parents[2] / "examples/clean_pcm.py"
        given = (speech(48000) * 32767).astype("<i2")
        ran = subprocess.run([sys.executable, "-B", example, "48000"], input=given.tobytes(), capture_output=True, check=True)
        expected = talvo_audio.clean_samples(given, 48000)
        numpy.testing.assert_array_equal(numpy.frombuffer(ran.stdout, "<i2"), expected)


def load_tests(loader, tests, pattern):
    for module in (talvo_audio, sessions, files):
        tests.addTests(doctest.DocTestSuite(module))
    return tests


if __name__ == "__main__":
    unittest.main()

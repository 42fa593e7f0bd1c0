#!/usr/bin/env python3
"""What the model is trained and measured on: splits that share nothing, noise, mixing, and the loss's sums."""

import contextlib
import io
import sys
import tempfile
import unittest
from pathlib import Path

import numpy as np

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/noise_model"))

import audio_files  # noqa: E402
import chain  # noqa: E402
import corpus  # noqa: E402
import evaluation  # noqa: E402
import metrics  # noqa: E402
import mixing  # noqa: E402
import noises  # noqa: E402
import recorded_corpus  # noqa: E402
import scenes  # noqa: E402
import speech_floor  # noqa: E402
import texts  # noqa: E402
import voices  # noqa: E402
from small_corpus import small_corpus, speech_like  # noqa: E402

RATE = audio_files.RATE


class Splits(unittest.TestCase):
    def test_share_no_voice_no_noise_and_no_sentence(self):
        seen = {}
        for split in corpus.SPLITS:
            for name in [v.label for v in voices.voices(split)] + [k.__name__ for k in noises.KINDS[split]]:
                self.assertEqual(seen.setdefault(name, split), split, name)
            variants = {v.name.split("+")[1] for v in voices.computed_voices(split)}
            for other in set(corpus.SPLITS) - {split}:
                self.assertFalse(variants & set(voices.VARIANTS[other]))
        random = np.random.default_rng(1)
        for script in ("english", "latin", "cyrillic", "hindi", "telugu"):
            for split in corpus.SPLITS:
                for _ in range(5):
                    self.assertEqual(texts.split_of(texts.sentence(random, script, split)), split)

    def test_every_noise_is_whole_loud_and_unclipped(self):
        def voice(generator, count):
            return generator.standard_normal(count)

        for kind in (k for kinds in noises.KINDS.values() for k in kinds):
            samples = noises.make(kind, np.random.default_rng(2), 4 * RATE, voice).astype(float)
            self.assertEqual(samples.size, 4 * RATE, kind)
            self.assertAlmostEqual(np.abs(samples).max() / 32768, 0.5, delta=0.001, msg=kind)
            self.assertLess(abs(samples.mean()), samples.std(), kind)


class Recordings(unittest.TestCase):
    def test_are_trimmed_put_into_one_split_and_bad_files_are_named(self):
        random = np.random.default_rng(3)
        with tempfile.TemporaryDirectory() as name:
            folder, said = Path(name), io.StringIO()
            (folder / "in/anna").mkdir(parents=True)
            words = np.concatenate([np.zeros(RATE), 0.2 * speech_like(random, 2), np.zeros(RATE)])
            audio_files.write_audio(folder / "in/anna/1.wav", words)
            audio_files.write_audio(folder / "in/anna/2.wav", words[: RATE // 4])
            (folder / "in/anna/notes.txt").write_text("no sound")
            audio_files.write_audio(folder / "in/anna/3.wav", words + 0.05 * random.standard_normal(words.size))
            with contextlib.redirect_stdout(said):
                recorded_corpus.add_recordings(folder / "work", "speech", folder / "in", "test")
            (clips,) = corpus.load(folder / "work", "speech", "test")
            self.assertIn("notes.txt", said.getvalue())
            self.assertIn("1 files too noisy or short", said.getvalue())
            self.assertEqual(len(clips), 1)
            self.assertLess(abs(clips.clip(0).size / RATE - 2), 0.5)
            with self.assertRaises(corpus.CorpusError):
                corpus.load(folder / "work", "speech", "train")
            with self.assertRaises(corpus.CorpusError):
                recorded_corpus.add_recordings(folder / "work", "speech", folder / "nowhere")


    def test_lose_their_own_noise(self):
        random = np.random.default_rng(6)
        clean = 0.2 * speech_like(random, 4)
        hiss = 0.004 * random.standard_normal(clean.size)
        out = speech_floor.clean_speech(clean + hiss)
        self.assertGreater(speech_floor.floor_below(out), 45)
        self.assertGreater(metrics.si_sdr(out, clean), metrics.si_sdr(clean + hiss, clean) + 6)
        self.assertIsNone(speech_floor.clean_speech(clean + 10 * hiss))


class Mixing(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        small_corpus(Path(cls.folder.name))

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_clips_have_the_level_and_the_distance_that_were_asked_for(self):
        clips = evaluation.TestClips(self.folder.name, 3, recorded=False)
        for distance, level in ((0, -45), (10, -40)):  # low enough for no click to be cut
            for clip in clips.at(distance, level):
                noise = clip.mix - clip.clean
                loudness = mixing.active_level(clip.clean)
                self.assertAlmostEqual(mixing.decibels(loudness / 32768), level, delta=0.1)
                self.assertAlmostEqual(mixing.decibels(loudness / np.sqrt(np.mean(noise**2))), distance, delta=0.2)

    def test_sums_over_bands_give_the_loss_of_every_bin(self):
        shape = chain.Shape()
        mix, target = mixing.Mixer(self.folder.name, "train", 3, 1.0).scene()
        scene = scenes.describe(mix, target, shape)
        mask = np.random.default_rng(1).random((mix.size // shape.step, shape.bands))
        plain = (np.abs(chain.spectra(target, shape)[:, : shape.bins]) ** 2).sum(axis=1)
        scale = np.sqrt(scene.target_energy.sum(axis=1) / np.maximum(plain, 1e-20))
        x, t = (chain.spectra(s, shape)[:, : shape.bins].astype(complex) * scale[:, None] for s in (mix, target))
        bins = np.repeat(mask, shape.band_widths, axis=1)

        def power(z):
            return z / np.sqrt(np.abs(z) + 1e-12)

        for expected, found in (
            (np.sum((np.abs(power(bins**2 * x)) - np.abs(power(t))) ** 2),
             np.sum(mask**2 * scene.mix - 2 * mask * scene.product + scene.target)),
            (np.sum(np.abs(power(bins**2 * x) - power(t)) ** 2),
             np.sum(mask**2 * scene.mix - 2 * mask * scene.aligned + scene.target)),
            (np.sum(np.abs(bins**2 * x - t) ** 2),
             np.sum(mask**4 * scene.mix_energy - 2 * mask**2 * scene.common + scene.target_energy)),
        ):
            self.assertAlmostEqual(found / expected, 1, delta=1e-3)


if __name__ == "__main__":
    unittest.main()

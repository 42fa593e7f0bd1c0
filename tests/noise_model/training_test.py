#!/usr/bin/env python3
"""Training in a folder that holds nothing but sound: it reports, keeps checkpoints and goes on from them."""

import json
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

import numpy as np
import torch

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/noise_model"))

import chain  # noqa: E402
import development  # noqa: E402
import mixing  # noqa: E402
import objective  # noqa: E402
import scenes  # noqa: E402
import training  # noqa: E402
from intelligibility import intelligibility  # noqa: E402
from small_corpus import small_corpus  # noqa: E402

class Training(unittest.TestCase):
    @mock.patch.multiple(training, BATCH=2, STATISTICS_BATCHES=1)
    @mock.patch.multiple(development, CLIPS=2, CLEAN_CLIPS=2, SECONDS=3.0)
    def test_reports_and_goes_on_from_nothing(self):
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            small_corpus(folder)
            seen = 0.0, 0
            for _ in range(2):
                trainer = training.Trainer(folder, seen[0] + 1 / 3600, 1e-3, shape=chain.Shape(state=16))
                self.assertEqual((trainer.elapsed / 3600, trainer.step), seen)
                trainer.run(report_minutes=0)
                last = json.loads(trainer.path("progress.jsonl").read_text().splitlines()[-1])
                self.assertGreater(last["step"], seen[1])
                self.assertTrue(trainer.path("best.pt").exists())
                seen = trainer.elapsed / 3600, last["step"]

    def test_lowers_what_is_heard_as_worse(self):
        with tempfile.TemporaryDirectory() as name:
            small_corpus(Path(name))
            mixer = mixing.Mixer(Path(name), "train", 1, seconds=2.0)
            speech, noise = 3000 * mixer.speech_track(), 300 * mixer.noise_track()
        speech[: speech.size // 3] = 0
        shape = chain.Shape()
        part, clean = (scenes.Scene(*(torch.from_numpy(x)[None] for x in scenes.describe(mix.astype(np.float32), target, shape)))
                       for mix, target in ((speech + noise, speech), (speech, speech)))
        whole = torch.ones_like(part.mix)
        ideal = (part.target / part.mix).clamp(0, 1).sqrt()
        third = whole.shape[1] // 3
        in_pauses, in_words = whole.clone(), whole.clone()
        in_pauses[:, : third - 2] = 0.3
        in_words[:, third + 10 :: 3] = 0.3
        self.assertGreater(intelligibility(whole, clean), 0.999)
        self.assertGreater(intelligibility(ideal, part), intelligibility(whole, part))
        self.assertGreater(intelligibility(whole, part), intelligibility(in_words, part))
        for better, worse in ((ideal, whole), (in_pauses, whole), (whole, in_words)):
            self.assertLess(objective.loss(better, part), objective.loss(worse, part))


if __name__ == "__main__":
    unittest.main()

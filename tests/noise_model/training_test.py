#!/usr/bin/env python3
"""Training in a folder that holds nothing but sound: it reports, keeps checkpoints and goes on from them."""

import json
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "tools/noise_model"))

import chain  # noqa: E402
import development  # noqa: E402
import training  # noqa: E402
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


if __name__ == "__main__":
    unittest.main()

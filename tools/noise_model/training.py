"""Training, with checkpoints to go on from."""

import json
import math
import time
from copy import deepcopy
from dataclasses import asdict
from pathlib import Path

import numpy as np
import torch

import chain
import scenes
from development import Development
from network import Network
from objective import loss

BATCH, PART = 16, 125  # sequences of 8 s, and the frames after which the gradient is cut
RATE_LOW, WARM_UP = 1e-5, 300
CLIP, DECAY, AVERAGE = 0.5, 1e-4, 0.999
FEATURE_NOISE = 0.03
STATISTICS_BATCHES = 5
LONGEST_BATCH = 60.0  # seconds; what goes beyond was a machine that slept, or a process that was halted


def _statistics(source):
    """Mean and deviation of every band over training features, and the batches they were taken from."""
    values = [source.next().features for _ in range(STATISTICS_BATCHES)]
    flat = np.concatenate([v.reshape(-1, v.shape[-1]) for v in values]).astype(np.float64)
    return flat.mean(axis=0), flat.std(axis=0)


def _score(measured):
    return float(np.mean([m.score() for m in measured.values()]))


def _learning_rate(highest, step, progress):
    warm = min(1.0, (step + 1) / WARM_UP)
    return warm * (RATE_LOW + (highest - RATE_LOW) * 0.5 * (1 + math.cos(math.pi * min(progress, 1.0))))


class Trainer:
    def __init__(self, folder, hours, rate, parameters=None, workers=1, device="cpu", shape=chain.Shape(), seed=1):
        """`parameters` are those of a trained network to begin with; a checkpoint in `folder` goes before them."""
        self.folder, self.hours, self.rate, self.shape, self.device = Path(folder), hours, rate, shape, torch.device(device)
        self.path("").mkdir(parents=True, exist_ok=True)
        torch.manual_seed(seed)
        self.elapsed, self.step, self.best = 0.0, 0, -math.inf
        saved = torch.load(self.path("last.pt"), map_location=self.device) if self.path("last.pt").exists() else None
        if saved:
            if saved["shape"] != asdict(shape):
                raise SystemExit("the checkpoint is of a network of another shape; move it away to start anew")
            seed += saved["step"]
        self.source = scenes.Source(folder, seed, shape, BATCH, workers)
        if saved:
            parameters = saved["network"]
        elif parameters:
            parameters = {name: torch.from_numpy(value.copy()) for name, value in parameters.items()}
        mean, deviation = (parameters["mean"], parameters["deviation"]) if parameters else _statistics(self.source)
        self.network = Network(shape, mean, deviation).to(self.device)
        if parameters:
            self.network.load_state_dict(parameters)
        self.average = deepcopy(self.network)
        self.optimiser = torch.optim.AdamW(self.network.parameters(), lr=rate, weight_decay=DECAY, betas=(0.9, 0.98))
        if saved:
            self.average.load_state_dict(saved["average"])
            self.optimiser.load_state_dict(saved["optimiser"])
            self.elapsed, self.step = saved["elapsed"], saved["step"]
            print(f"going on from step {self.step}, after {self.elapsed / 3600:.2f} h", flush=True)
        self.development = Development(folder, shape)
        if self.path("best.pt").exists():
            self._beat_best()
        elif parameters:
            self._report([], time.time())  # what it begins with is to be beaten
            self.save("best.pt")

    def path(self, name):
        return self.folder / "checkpoints" / name

    def save(self, name):
        content = {
            "network": self.network.state_dict(), "average": self.average.state_dict(),
            "optimiser": self.optimiser.state_dict(), "elapsed": self.elapsed, "step": self.step,
            "shape": asdict(self.shape),
        }
        torch.save(content, self.path(name + ".part"))
        self.path(name + ".part").rename(self.path(name))

    def _beat_best(self):
        """Measures the best checkpoint anew, since the development sets may have grown."""
        best = deepcopy(self.average)
        best.load_state_dict(torch.load(self.path("best.pt"), map_location=self.device)["average"])
        self.best = _score(self.development.measure(best))
        print(f"to be beaten: {self.best:.3f}", flush=True)

    def _update_average(self):
        keep = min(AVERAGE, (1 + self.step) / (10 + self.step))
        with torch.no_grad():
            for mean, value in zip(self.average.parameters(), self.network.parameters()):
                mean.lerp_(value, 1 - keep)

    def _train_on(self, batch):
        tensors = scenes.Scene(*(torch.from_numpy(part).to(self.device) for part in batch))
        state, before, losses = self.network.start(BATCH), None, []
        self.network.train()
        for start in range(0, tensors.features.shape[1], PART):
            part = scenes.Scene(*(t[:, start : start + PART] for t in tensors))
            inputs, before = self.network.stacked(part.features, before)
            inputs = inputs + FEATURE_NOISE * torch.randn_like(inputs)
            mask, state = self.network(inputs, state)
            value = loss(mask, part)
            self.optimiser.zero_grad(set_to_none=True)
            value.backward()
            torch.nn.utils.clip_grad_norm_(self.network.parameters(), CLIP)
            for group in self.optimiser.param_groups:
                group["lr"] = _learning_rate(self.rate, self.step, self.elapsed / 3600 / self.hours)
            self.optimiser.step()
            self.step += 1
            self._update_average()
            state = state.detach()
            losses.append(value.item())
        return float(np.mean(losses))

    def _report(self, losses, started):
        measured = self.development.measure(self.average)
        score = _score(measured)
        better = score > self.best
        self.best = max(self.best, score)
        line = {"step": self.step, "hours": round(self.elapsed / 3600, 3), "loss": round(float(np.mean(losses or [0])), 4),
                "score": round(score, 3), **{name: m.rounded() for name, m in measured.items()}}
        with self.path("progress.jsonl").open("a") as file:
            file.write(json.dumps(line) + "\n")
        print(f"step {self.step}  {self.elapsed / 3600:.2f} of {self.hours:g} h  loss {line['loss']:.4f}  score {score:.3f}"
              f"{'  best' if better else ''}  ({time.time() - started:.0f} s to measure)", flush=True)
        for name, m in measured.items():
            print(f"    {name}: {m}", flush=True)
        return better

    def run(self, report_minutes=6.0):
        losses, reported, last = [], self.elapsed, time.time()
        try:
            while self.elapsed < self.hours * 3600:
                # Each batch once: scenes that come again are learnt by heart within minutes.
                losses.append(self._train_on(self.source.next()))
                now = time.time()
                self.elapsed, last = self.elapsed + min(now - last, LONGEST_BATCH), now
                if len(losses) % 10 == 0:
                    print(f"  step {self.step}  loss {np.mean(losses[-10:]):.4f}", flush=True)
                if self.elapsed - reported > report_minutes * 60 or self.elapsed >= self.hours * 3600:
                    better = self._report(losses, time.time())
                    self.save("last.pt")
                    if better:
                        self.save("best.pt")
                    losses, reported, last = [], self.elapsed, time.time()
        except (KeyboardInterrupt, SystemExit):
            self.save("last.pt")
            raise
        finally:
            self.source.close()

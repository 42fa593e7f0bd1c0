"""Training, with checkpoints to go on from."""

import json
import math
import time
from copy import deepcopy
from dataclasses import asdict
from pathlib import Path
from typing import NamedTuple

import numpy as np
import torch

import chain
import metrics
import mixing
import scenes
from network import Network

BATCH, PART = 16, 125  # sequences of 8 s, and the frames after which the gradient is cut
KEPT_BATCHES = 24  # batches that are trained on once more, later
RATE_LOW, WARM_UP = 1e-5, 300
CLIP, DECAY, AVERAGE = 0.5, 1e-4, 0.999
SNR_WEIGHT, SNR_CEILING = 0.02, 1e-5
CLEAN_SNR, CLEAN_WEIGHT = 1e-3, 2.0  # clips with less noise than this beside their speech, and what they count
FEATURE_NOISE = 0.08
DEVELOPMENT_CLIPS, CLEAN_CLIPS, DEVELOPMENT_SECONDS = 32, 24, 6.0
KEPT_ENOUGH = 45.0  # dB; nobody hears what a clean clip loses above
STATISTICS_BATCHES = 5


def loss(mask, part):
    """Of a mask before squaring, and a Scene's tensors of the same frames.

    The power 0.5 of a masked magnitude is that of the magnitude times the unsquared mask, so the
    compressed terms are squares in the mask: magnitudes with speech that is missing counted twice,
    and complex values. The third term is the error of the uncompressed spectrum in dB, clip by clip;
    there clean clips count more, whose small errors the others hardly see.
    """
    s2 = mask * mask
    magnitude = s2 * part.mix - 2 * mask * part.product + part.target
    magnitude = torch.where(mask * part.mix < part.product, 2 * magnitude, magnitude)
    compressed = s2 * part.mix - 2 * mask * part.aligned + part.target
    error = (s2 * s2 * part.mix_energy - 2 * s2 * part.common + part.target_energy).clamp(min=0).sum(dim=(1, 2))
    energy = part.target_energy.sum(dim=(1, 2))
    decibels = 10 * torch.log10((error + SNR_CEILING * energy + 1e-4) / (energy + 1e-4))
    given = (part.mix_energy - 2 * part.common + part.target_energy).sum(dim=(1, 2))
    decibels = torch.where(given < CLEAN_SNR * energy, CLEAN_WEIGHT * decibels, decibels)
    bins = mask.shape[0] * mask.shape[1] * chain.Shape().bins
    return (magnitude.sum() + compressed.sum()) / bins + SNR_WEIGHT * decibels.mean()


class Development:
    """A fixed set of unseen voices, sentences and kinds of noise, mixed and clean, to choose the model by."""

    def __init__(self, folder, shape):
        mixer = mixing.Mixer(folder, "development", 1, DEVELOPMENT_SECONDS)
        random, self.shape, self.clips, self.clean = np.random.default_rng(2), shape, [], []
        for _ in range(DEVELOPMENT_CLIPS):
            speech, noise = mixer.speech_track(), mixer.noise_track()
            level, distance = random.uniform(-45, -15), random.uniform(0, 12)
            clean = speech * (32768 * mixing.gain(level))
            mix = np.clip(np.rint(clean + noise * (32768 * mixing.gain(level - distance))), -32768, 32767)
            size = mix.size // shape.step * shape.step
            before = metrics.si_sdr(mix[:size], clean[:size]), metrics.stoi(mix[:size], clean[:size])
            self.clips.append((*self._heard(mix), clean[:size], before))
        for _ in range(CLEAN_CLIPS):
            clean = np.clip(np.rint(mixer.speech_track() * (32768 * mixing.gain(random.uniform(-45, -15)))), -32768, 32767)
            self.clean.append((*self._heard(clean), clean))

    def _heard(self, samples):
        x = chain.spectra(samples, self.shape)
        return x, chain.features(x, chain.rescaling(samples, self.shape), self.shape)

    def _cleaned(self, network, x, bands, clean):
        """The network's result beside the clean clip, without the last step, which has only half of its overlap."""
        out = chain.resynthesise(x, chain.full_mask(network.run(bands), self.shape), self.shape)
        edge = clean.size // self.shape.step * self.shape.step - self.shape.step
        return out[:edge], clean[:edge]

    def measure(self, network):
        gains = []
        for x, bands, clean, before in self.clips:
            pair = self._cleaned(network, x, bands, clean)
            gains.append((metrics.si_sdr(*pair) - before[0], metrics.stoi(*pair) - before[1]))
        kept = [metrics.si_sdr(*self._cleaned(network, *clip)) for clip in self.clean]
        return Measured(*np.mean(gains, axis=0), np.mean(np.minimum(kept, KEPT_ENOUGH)), np.min(kept))


class Measured(NamedTuple):
    """SI-SDR and STOI gained by mixes, and the SI-SDR that clean clips keep, in dB."""

    si_sdr: float
    stoi: float
    kept: float
    kept_worst: float

    def score(self):
        """One number to choose by: .01 of STOI counts like 1 dB, and a dB of clean speech like a tenth of one."""
        return float(self.si_sdr + 100 * self.stoi + 0.1 * self.kept)


def _statistics(source):
    """Mean and deviation of every band over training features, and the batches they were taken from."""
    values = [source.next().features for _ in range(STATISTICS_BATCHES)]
    flat = np.concatenate([v.reshape(-1, v.shape[-1]) for v in values]).astype(np.float64)
    return flat.mean(axis=0), flat.std(axis=0)


def _learning_rate(highest, step, progress):
    warm = min(1.0, (step + 1) / WARM_UP)
    return warm * (RATE_LOW + (highest - RATE_LOW) * 0.5 * (1 + math.cos(math.pi * min(progress, 1.0))))


class Trainer:
    def __init__(self, folder, hours, rate, parameters=None, workers=1, reuse=0.5, shape=chain.Shape(), seed=1):
        """`parameters` are those of a trained network to begin with; a checkpoint in `folder` goes before them."""
        self.folder, self.hours, self.rate, self.shape = Path(folder), hours, rate, shape
        self.path("").mkdir(parents=True, exist_ok=True)
        torch.manual_seed(seed)
        self.elapsed, self.step, self.best = 0.0, 0, -math.inf
        saved = torch.load(self.path("last.pt")) if self.path("last.pt").exists() else None
        if saved:
            if saved["shape"] != asdict(shape):
                raise SystemExit("the checkpoint is of a network of another shape; move it away to start anew")
            seed += saved["step"]
        self.source = scenes.Source(folder, seed, shape, BATCH, workers, reuse)
        if saved:
            parameters = saved["network"]
        elif parameters:
            parameters = {name: torch.from_numpy(value.copy()) for name, value in parameters.items()}
        mean, deviation = (parameters["mean"], parameters["deviation"]) if parameters else _statistics(self.source)
        self.network = Network(shape, mean, deviation)
        if parameters:
            self.network.load_state_dict(parameters)
        self.average = deepcopy(self.network)
        self.optimiser = torch.optim.AdamW(self.network.parameters(), lr=rate, weight_decay=DECAY, betas=(0.9, 0.98))
        if saved:
            self.average.load_state_dict(saved["average"])
            self.optimiser.load_state_dict(saved["optimiser"])
            self.elapsed, self.step, self.best = saved["elapsed"], saved["step"], saved["best"]
            print(f"going on from step {self.step}, after {self.elapsed / 3600:.2f} h", flush=True)
        self.development = Development(folder, shape)

    def path(self, name):
        return self.folder / "checkpoints" / name

    def save(self, name):
        content = {
            "network": self.network.state_dict(), "average": self.average.state_dict(),
            "optimiser": self.optimiser.state_dict(), "elapsed": self.elapsed, "step": self.step, "best": self.best,
            "shape": asdict(self.shape),
        }
        torch.save(content, self.path(name + ".part"))
        self.path(name + ".part").rename(self.path(name))

    def _update_average(self):
        keep = min(AVERAGE, (1 + self.step) / (10 + self.step))
        with torch.no_grad():
            for mean, value in zip(self.average.parameters(), self.network.parameters()):
                mean.lerp_(value, 1 - keep)

    def _batches(self):
        """New batches, and each a second time after some others, since mixing takes as long as training."""
        kept = []
        while True:
            kept.append(self.source.next())
            yield kept[-1]
            if len(kept) > KEPT_BATCHES:
                yield kept.pop(0)

    def _train_on(self, batch):
        tensors = scenes.Scene(*map(torch.from_numpy, batch))
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
        better = measured.score() > self.best
        self.best = max(self.best, measured.score())
        line = {"step": self.step, "hours": round(self.elapsed / 3600, 3), "loss": round(float(np.mean(losses)), 4),
                "si_sdr_gain": round(float(measured.si_sdr), 2), "stoi_gain": round(float(measured.stoi), 4),
                "clean_kept": round(float(measured.kept), 1), "clean_kept_worst": round(float(measured.kept_worst), 1)}
        with self.path("progress.jsonl").open("a") as file:
            file.write(json.dumps(line) + "\n")
        print(f"step {self.step}  {self.elapsed / 3600:.2f} of {self.hours:g} h  loss {line['loss']:.4f}  development set: SI-SDR "
              f"{measured.si_sdr:+.2f} dB  STOI {measured.stoi:+.4f}  clean kept {measured.kept:.1f} dB (worst "
              f"{measured.kept_worst:.1f}){'  best' if better else ''}  "
              f"({time.time() - started:.0f} s to measure)", flush=True)
        return better

    def run(self, report_minutes=6.0):
        losses, reported, last = [], time.time(), time.time()
        try:
            for batch in self._batches():
                if self.elapsed >= self.hours * 3600:
                    break
                losses.append(self._train_on(batch))
                now = time.time()
                self.elapsed, last = self.elapsed + now - last, now
                if len(losses) % 10 == 0:
                    print(f"  step {self.step}  loss {np.mean(losses[-10:]):.4f}", flush=True)
                if now - reported > report_minutes * 60 or self.elapsed >= self.hours * 3600:
                    better = self._report(losses, time.time())
                    self.save("last.pt")
                    if better:
                        self.save("best.pt")
                    losses, reported, last = [], time.time(), time.time()
        finally:
            self.source.close()

"""The voice activity measure."""

import math
from collections import deque

import numpy as np

from . import features, network, spectrum
from .kernels import f32, f64, floats, mean_square
from .settings import Source


class InputLevel:
    ALPHA, MIN_ENERGY, LIMIT, TARGET = 0.954992586021436, 10000.0, 2.0, 2000.0

    def __init__(self):
        self.energy = 4000000.0

    def coefficient(self, samples):
        e = mean_square(samples)
        if e >= self.MIN_ENERGY:
            a = self.ALPHA if e > self.LIMIT * self.energy else 1 - self.ALPHA
            self.energy = e * a + self.energy * (1 - a)
        return self.TARGET / (math.sqrt(self.energy) + 1e-7)


class VoiceActivity:
    RING, LIMIT, RATIO, MIN_FRAMES = 200, 0.75, 0.95, 300

    def __init__(self, model, duration):
        self.model, self.frame_size = model, duration * model.rate // 1000
        self.window = spectrum.hamming(model.frame_length)
        self.level = InputLevel()
        self.block = np.zeros(model.frame_length - self.frame_size, f32)
        self.history = np.zeros(model.preview * model.mean.size, f32)
        self.state = np.zeros(model.state_size, f32)
        source = Source(model.weights, model.environment, "NIMBA_VAD_", "_v0_0_1")
        self.resets = source.switch("ENABLE_STATE_RESET", False)
        self.flags, self.frames = deque(maxlen=self.RING), 0

    def clean(self, frame):
        scaled = floats(frame.astype(f64) * self.level.coefficient(frame))
        self.block = np.concatenate([self.block, scaled])
        p = float(self.probability(self.block))
        self.block = self.block[self.frame_size :]
        limits = self.model.value.get("Test_MINMAX", ())
        if len(limits) >= 3:
            a, b, c = map(float, limits[:3])
            p = (p - b) * 0.5 / (c - b) + 0.5 if p >= b else (p - a) * 0.5 / (b - a)
            p = min(max(p, 1e-5), 0.99999)
        return floats([p])

    def probability(self, block):
        model = self.model
        assert block.size == model.frame_length
        bins = spectrum.forward(block * self.window)
        x = features.compress_mean(bins.real * bins.real + bins.imag * bins.imag, 3)
        x = np.log(x + f32(1))
        x = features.square_root_normalise(x, model.mean, model.deviation, model.value.get("SD_FLOOR", 0))
        self.history = np.concatenate([self.history[x.size :], x])
        out, self.state = network.gated(model.network, self.state, self.history)
        assert out.size == 1 and len(model.network.wnl) == len(model.network.wl)
        if self.resets:
            self.reset_when_stuck(out[0])
        return out[0]

    def reset_when_stuck(self, raw):
        self.flags.append(self.LIMIT > 1 / (1 + math.exp(-float(raw))))
        self.frames += 1
        if sum(self.flags) > len(self.flags) * self.RATIO and self.frames >= self.MIN_FRAMES:
            self.state = np.zeros_like(self.state)
            self.frames = 0

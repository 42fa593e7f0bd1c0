"""What is remembered of a stream's level from frame to frame."""

import math
from collections import deque

import numpy as np

from .kernels import f32, f64, floats, mean_square


class EnergyGate:
    """Closes when the last frames are much weaker than the loud ones before them."""

    def __init__(self, short_count, long_count, reference):
        self.reference = f32(reference)
        self.short = deque([0.0] * short_count)
        self.long = deque([0.0] * long_count)
        self.short_sum = self.long_sum = 0.0
        self.long_fill = 0
        self.gain = f32(1)

    def hear(self, samples):
        energy = mean_square(samples)
        part = energy / len(self.short)
        self.short_sum += part - self.short.popleft()
        self.short.append(part)
        if part >= self.reference:
            self.long_fill = min(self.long_fill + 1, len(self.long))
            self.long_sum += energy - self.long.popleft()
            self.long.append(energy)
        if self.long_fill == 0:
            self.gain = f32(1)
            return
        upper = self.long_sum / (self.long_fill * 15)
        lower = self.long_sum / (self.long_fill * 80)
        if lower < self.short_sum < upper:
            g = (self.short_sum - lower) / (upper - lower)
            self.gain = f32(g * g)
        else:
            self.gain = f32(0) if self.short_sum <= lower else f32(1)

    def apply(self, mask):
        return mask * self.gain


class MeanEnergy:
    """Mean energy of the latest loud frames, the first value being what was expected."""

    def __init__(self, capacity, reference, initial):
        self.capacity, self.reference = capacity, f32(reference)
        self.values, self.next, self.sum = [initial], 0, initial

    def hear(self, samples):
        energy = mean_square(samples)
        if energy >= self.reference:
            if len(self.values) < self.capacity:
                self.values.append(energy)
                self.sum += energy
            else:
                self.values[self.next] = energy
                self.next = (self.next + 1) % self.capacity
                self.sum = sum(self.values)
        return self.sum / len(self.values)


class SpeakerFix:
    """Turns down voices that are far below the main speaker's level."""

    MAX_CUT_DB = f32(-60)

    def __init__(self, settings, frame_duration, window):
        self.start, self.end = f32(settings.cut_start), f32(settings.cut_end)
        self.run_frames, self.run_min = settings.run_frames, settings.run_min
        self.variable = settings.variable_window
        self.ratios = deque([1.0] * self.run_frames)
        self.window_length = self.run_frames
        self.level = f32(1)
        self.alpha = f32(1) / (f32(settings.utterance) * f32(-2000) / f32(frame_duration)) + f32(1)
        self.window_energy = f32(np.sum(window.astype(f64) ** 2))

    def apply(self, samples):
        ratio = f32(np.sum(samples.astype(f64) ** 2) / self.window_energy)
        self.ratios.popleft()
        self.ratios.append(float(ratio))
        mean = sum(list(self.ratios)[len(self.ratios) - self.window_length :]) / self.window_length
        distance = 10 * math.log10(self.level / (1 + mean))
        cut = 0.0
        if distance >= self.start:
            cut = (distance - self.start) * self.MAX_CUT_DB / (self.end - self.start)
        else:
            self.level = f32(mean * (1 - float(self.alpha)) + float(self.level) * float(self.alpha))
        if self.variable:
            if distance > self.end and self.window_length > self.run_min:
                self.window_length -= 1
            elif distance <= self.end and self.window_length < self.run_frames:
                self.window_length += 1
        return samples * f32(10 ** (cut / 10))


class Noise:
    """Sliding mean of what the mask took away, each entry holding its share."""

    def __init__(self, frames, bins):
        self.frames = frames
        self.mean = floats(np.zeros(bins))
        self.entries = deque(floats(np.zeros(bins)) for _ in range(frames))

    def hear(self, mask, bins):
        removed = f32(1) - mask
        entry = np.log(np.hypot(removed * bins.real, removed * bins.imag) + f32(1))
        self.mean = self.mean - self.entries.pop()
        self.entries.appendleft(entry / f32(self.frames))
        self.mean = self.mean + self.entries[0]

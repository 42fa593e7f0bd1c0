"""The cleaners of every model version, the noise level measure and the voice activity measure."""

import math
from collections import deque
from types import SimpleNamespace

import numpy as np

from . import network
from .settings import read_one, read_settings

DELAY_MS = {
    20: {10: 10, 15: 15, 20: 10, 30: 10, 32: 18, 40: 10},
    30: {10: 25, 15: 15, 20: 25, 30: 15, 32: 29, 40: 25},
    32: {10: 31, 15: 28, 20: 28, 30: 30, 32: 16, 40: 28},
}
FIELDS = {
    "wl": "WeightLinear", "wnl": "WeightNonLinear", "bl": "BaesLinear", "bnl": "BaesNonLinear",
    "wgru": "WeightGRU", "bgru": "BaesGRU", "wgru_reset": "WeightGRU_reset", "bgru_reset": "BiasGRU_reset",
    "multiplier": "HeadenMultiplier", "reducer": "HeadenReducer",
    "gain_linear": "GainLinearNorm", "bias_linear": "BiasLinearNorm",
    "gain_nonlinear": "GainNonLinearNorm", "bias_nonlinear": "BiasNonLinearNorm",
}


def hamming(n):
    return 0.54 - 0.46 * np.cos(2 * np.pi * np.arange(n) / (n - 1))


def vorbis(n):
    return np.sin(np.pi / 2 * np.sin(np.pi * np.arange(n) / n) ** 2)


def triangular(n):
    rise = 2 * np.arange(n // 2) / n
    return np.concatenate([rise, 1 - rise])


def groups(size, k):
    """(first bin, width) of every band: the lowest 2 / 2^k stay, then each octave has twice the width."""
    boundary = 2 * size >> k
    bands, start, width = [(i, 1) for i in range(boundary)], boundary, 2
    while start < size:
        if start == 2 * boundary:
            boundary, width = 2 * boundary, 2 * width
        bands.append((start, width))
        start += width
    return bands


class Model:
    def __init__(self, weights, environment):
        self.weights, self.environment = weights, environment
        value = {key: record.value for key, record in weights.items()}
        self.version = value["Version"]
        self.rate, self.frame_length, self.bins = (value[k] for k in ("SampleRate", "FrameLength", "CoefficientNumber"))
        self.preview, self.step = value["PreviewFrames"], value["Step"]
        self.begin, self.end = value["FiltrBegin"], value["FiltrEnd"]
        self.mean, self.deviation = value["MU"], value["SD"]
        self.network = SimpleNamespace(**{name: value[key] for name, key in FIELDS.items() if key in value})
        self.state_size = self.network.wnl[-1].shape[0]
        self.frame_duration = self.frame_length * 1000 // self.rate
        self.value = value


class EnergyGate:
    """Closes when the last frames are much weaker than the loud ones before them."""

    def __init__(self, long_count, reference):
        self.reference, self.long_fill = reference, 0
        self.short, self.long = deque([0.0] * 10, 10), deque([0.0] * long_count, long_count)

    def gain(self, samples):
        energy = np.mean(samples * samples)
        self.short.append(energy / 10)
        if energy / 10 >= self.reference:
            self.long_fill = min(self.long_fill + 1, len(self.long))
            self.long.append(energy)
        if self.long_fill == 0:
            return 1.0
        upper, lower = (sum(self.long) / (self.long_fill * n) for n in (15, 80))
        return min(max((sum(self.short) - lower) / (upper - lower), 0.0), 1.0) ** 2


class MeanEnergy:
    """Mean energy of the latest loud frames, the first value being what was expected."""

    def __init__(self, capacity, reference, initial):
        self.reference, self.values = reference, deque([initial], capacity)

    def hear(self, samples):
        energy = np.mean(samples * samples)
        if energy >= self.reference:
            self.values.append(energy)
        return sum(self.values) / len(self.values)


class SpeakerFix:
    """Turns down voices that are far below the main speaker's level."""

    def __init__(self, s, frame_duration, window):
        self.s, self.run, self.level = s, int(s.run_frames), 1.0
        self.ratios, self.length = deque([1.0] * self.run, self.run), self.run
        self.alpha = 1 - frame_duration / (2000 * s.utterance)
        self.window_energy = np.sum(window * window)

    def factor(self, samples):
        s = self.s
        self.ratios.append(np.sum(samples * samples) / self.window_energy)
        mean = np.mean(list(self.ratios)[-self.length :])
        distance = 10 * math.log10(self.level / (1 + mean))
        if distance < s.cut_start:
            self.level = mean * (1 - self.alpha) + self.level * self.alpha
        if s.variable_window:
            if distance > s.cut_end:
                self.length -= self.length > s.run_min
            else:
                self.length += self.length < self.run
        return 10 ** (max(distance - s.cut_start, 0.0) * -60 / (s.cut_end - s.cut_start) / 10)


class Cleaner:
    """One input frame in, one output frame out; network frames overlap by half."""

    def __init__(self, model, duration, level=False):
        self.model, self.duration, self.frame_size = model, duration, duration * model.rate // 1000
        self.version, self.measures_level = int(model.version[-1]), level
        prefix = "TALVO_" if self.version == 5 and not level else "NIMBA_"
        self.settings = read_settings(model.weights, model.environment, self.version, prefix)
        self.window = (hamming if self.version == 1 else vorbis)(model.frame_length)
        width = model.end - model.begin
        self.bands = groups(width, self.settings.rate + 1) if self.version >= 4 else [(i, 1) for i in range(width)]
        self.start()

    def start(self):
        model, s = self.model, self.settings
        delay = DELAY_MS.get(model.frame_duration, {}).get(self.duration, 0)
        self.pending, self.overlap = np.zeros(model.step), np.zeros(delay * model.rate // 1000)
        self.saved, self.history = np.zeros(model.bins), np.zeros(len(self.bands) * model.preview)
        self.state, self.skip_now = np.zeros(model.state_size), False
        self.gate = EnergyGate(model.rate * 4 // model.frame_length, s.gate_reference) if s.gate else None
        self.level = MeanEnergy(model.rate * 3 // model.step, s.rescale_energy, s.rescale_amplitude**2)
        self.speaker = None
        if s.speaker_fix and not self.measures_level:
            self.speaker = SpeakerFix(s, model.frame_duration, self.window)
        self.noise = deque(maxlen=model.value.get("NATFrameCount"))
        self.noise.extend(np.zeros((self.noise.maxlen or 0, len(self.bands))))
        self.removed, self.frames = 0.0, 0

    def clean(self, frame):
        step, size = self.model.step, self.frame_size
        self.skip_now = not np.any(frame)
        assert frame.size == size
        limit = size + step if self.version <= 2 else 2 * step
        assert step <= self.overlap.size < limit, "start-up delay"
        self.pending = np.concatenate([self.pending, frame])
        while self.pending.size >= 2 * step:
            cleaned = self.network_frame(self.pending[: 2 * step])
            self.pending = self.pending[step:]
            self.overlap = np.concatenate([self.overlap, np.zeros(step)])
            self.overlap[-2 * step :] += cleaned
        assert self.overlap.size >= size + step, "overlap"
        out, self.overlap = self.overlap[:size], self.overlap[size:]
        if self.measures_level:
            power = self.removed / max(self.frames, 1) / 32768.0**2
            return np.array([10 * math.log10(max(power, 1e-12))])
        return out

    def network_frame(self, frame):
        model, s = self.model, self.settings
        windowed = frame * self.window
        gain = self.gate.gain(windowed) if self.gate else 1.0
        spectrum = np.fft.rfft(windowed)
        self.history = np.concatenate([self.history, self.features(spectrum, frame)])[len(self.bands) :]
        bands = np.ones(len(self.bands)) if s.skip and self.skip_now else self.infer()
        mask = np.zeros(model.bins)
        mask[model.begin : model.end] = np.repeat(bands, [width for _, width in self.bands])
        mask = self.shaped(mask) * gain
        self.saved = mask
        if self.version <= 2:
            kept = slice(model.begin, model.end)
            self.noise.append(np.log(np.abs((1 - mask[kept]) * spectrum[kept]) + 1))
        time = np.fft.irfft(spectrum * mask)
        self.removed, self.frames = self.removed + np.mean((windowed - time) ** 2), self.frames + 1
        return self.synthesise(frame, mask, time)

    def features(self, spectrum, frame):
        s = self.settings
        level = np.abs(spectrum[self.model.begin : self.model.end])
        if s.rescale:
            energy = self.level.hear(frame)
            level = level * (s.rescale_amplitude / math.sqrt(energy) if energy > 1e-6 else 1)
        values = level * level if self.version >= 5 else np.log(level + 1)
        values = np.array([np.sum(values[start : start + width]) for start, width in self.bands])
        if self.version < 5:
            return values
        return np.log(values + (1000 if self.version == 5 else self.model.value["LpsEps"]))

    def infer(self):
        model, seen = self.model, self.history
        if self.version <= 2:
            seen = np.concatenate([seen, np.mean(self.noise, axis=0)])
            assert seen.size == model.mean.size
        repeats = seen.size // model.mean.size
        seen = (seen - np.tile(model.mean, repeats)) / np.tile(model.deviation, repeats)
        if self.version <= 2:
            return network.feed_forward(model.network, seen)
        run = {5: network.gated, 6: network.gated_normalised}.get(self.version, network.recurrent)
        mask, self.state = run(model.network, self.state, seen)
        return mask

    def shaped(self, mask):
        s, x = self.settings, mask
        mask = x * x
        if s.soft_curve:
            mask = x / (np.exp((x - 0.05) / 0.05) + 1) + x * x / (np.exp((x - 0.05) * -3 / 0.05) + 1)
        if s.high_frequency:
            mask[mask.size // 2 :] **= 2
        mask = s.smooth * mask + (1 - s.smooth) * self.saved
        return np.where(mask < s.threshold, mask * mask / s.threshold, mask) if s.expand else mask

    def synthesise(self, frame, mask, time):
        s, window = self.settings, self.window
        if self.version == 1:
            window = 1
            if s.clip_fix:
                window = (hamming if s.window_after == "HAMMING" else triangular)(frame.size)
                time = np.fft.irfft(np.fft.rfft(frame) * mask)
        if s.volume_up:
            time = time * (s.volume / 100 + 1)
        if self.speaker:
            time = time * self.speaker.factor(time)
        out = time * window
        return out * (s.clip_point / out.max()) if s.clip_fix and out.max() > s.clip_point else out


class VoiceActivity:
    ALPHA = 0.954992586021436

    def __init__(self, model, duration):
        self.model, self.frame_size, self.energy = model, duration * model.rate // 1000, 4000000.0
        self.window = hamming(model.frame_length)
        self.block = np.zeros(model.frame_length - self.frame_size)
        self.history = np.zeros(model.preview * model.mean.size)
        self.state = np.zeros(model.state_size)
        key = "NIMBA_VAD_ENABLE_STATE_RESET_v0_0_1"
        self.resets = read_one(model.weights, model.environment, key, "switch", False)
        self.flags, self.frames = deque(maxlen=200), 0

    def clean(self, frame):
        energy = np.mean(frame * frame)
        if energy >= 10000:
            share = self.ALPHA if energy > 2 * self.energy else 1 - self.ALPHA
            self.energy = energy * share + self.energy * (1 - share)
        self.block = np.concatenate([self.block, frame * 2000 / (math.sqrt(self.energy) + 1e-7)])
        p = self.probability(self.block)
        self.block = self.block[self.frame_size :]
        limits = self.model.value.get("Test_MINMAX", ())
        if len(limits) >= 3:
            least, best, greatest = map(float, limits[:3])
            p = (p - best) * 0.5 / (greatest - best) + 0.5 if p >= best else (p - least) * 0.5 / (best - least)
            p = min(max(p, 1e-5), 0.99999)
        return np.array([p])

    def probability(self, block):
        model = self.model
        power = np.abs(np.fft.rfft(block * self.window)) ** 2
        extra = power.size % 8
        assert extra in (0, 1)
        bands = [(i, 1) for i in range(extra)] + [(i + extra, width) for i, width in groups(power.size - extra, 3)]
        x = np.log(np.array([np.mean(power[i : i + width]) for i, width in bands]) + 1)
        x = (x - model.mean) / np.sqrt(model.deviation.astype(np.float64) + model.value.get("SD_FLOOR", 0))
        self.history = np.concatenate([self.history[x.size :], x])
        out, self.state = network.gated(model.network, self.state, self.history)
        assert out.size == 1 and len(model.network.wnl) == len(model.network.wl)
        if self.resets:
            self.flags.append(0.75 > 1 / (1 + math.exp(-out[0])))
            self.frames += 1
            if sum(self.flags) > len(self.flags) * 0.95 and self.frames >= 300:
                self.state, self.frames = np.zeros_like(self.state), 0
        return out[0]

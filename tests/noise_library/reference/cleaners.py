"""The cleaners of every model version, and the noise level measure."""

from types import SimpleNamespace

import numpy as np

from . import features, masks, network, spectrum
from .kernels import f32, floats, mean_square
from .settings import read_settings
from .trackers import EnergyGate, MeanEnergy, Noise, SpeakerFix

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


class Model:
    """The records that every model has, under short names."""

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


class Cleaner:
    """One input frame in, one output frame out; network frames overlap by half."""

    version: int | str
    prefix = "NIMBA_"
    analysis = staticmethod(spectrum.vorbis)

    def __init__(self, model, duration):
        self.model, self.frame_size = model, duration * model.rate // 1000
        self.settings = read_settings(model.weights, model.environment, self.version, self.prefix)
        self.window = self.analysis(model.frame_length)
        self.duration = duration
        self.start()

    def start(self):
        model, s = self.model, self.settings
        delay = DELAY_MS.get(model.frame_duration, {}).get(self.duration, 0)
        self.pending = np.zeros(model.step, f32)
        self.overlap = np.zeros(delay * model.rate // 1000, f32)
        self.saved = np.zeros(model.bins, f32)
        self.history = np.zeros(self.feature_count() * model.preview, f32)
        self.state = np.zeros(model.state_size, f32)
        self.skip_now = False
        self.gate = EnergyGate(10, model.rate * 4 // model.frame_length, s.gate_reference) if s.gate else None
        self.level = None
        if s.rescale:
            initial = float(s.rescale_amplitude * s.rescale_amplitude)
            self.level = MeanEnergy(model.rate * 3 // model.step, s.rescale_energy, initial)
        self.speaker = SpeakerFix(s, model.frame_duration, self.window) if s.speaker_fix else None

    def feature_count(self):
        width = self.model.end - self.model.begin
        return width if self.settings.rate is None else features.band_count(width, self.settings.rate)

    def overlap_limit(self):
        return 2 * self.model.step

    def clean(self, frame):
        step, size = self.model.step, self.frame_size
        if self.settings.skip:
            self.skip_now = not np.any(frame)
        assert frame.size == size
        assert step <= self.overlap.size < self.overlap_limit(), "start-up delay"
        self.pending = np.concatenate([self.pending, frame])
        while self.pending.size >= 2 * step:
            cleaned = self.network_frame(self.pending[: 2 * step])
            self.pending = self.pending[step:]
            self.overlap = np.concatenate([self.overlap, np.zeros(step, f32)])
            self.overlap[-2 * step :] += cleaned
        assert self.overlap.size >= size + step, "overlap"
        out, self.overlap = self.overlap[:size], self.overlap[size:]
        return out

    def network_frame(self, frame):
        model, s = self.model, self.settings
        windowed = frame * self.window
        if self.gate:
            self.gate.hear(windowed)
        bins = spectrum.forward(windowed)
        scale = f32(1)
        if self.level:
            energy = self.level.hear(frame)
            if energy > 1e-6:
                scale = f32(float(s.rescale_amplitude) / np.sqrt(energy))

        self.history = np.concatenate([self.history, self.features(bins[model.begin : model.end], scale)])
        self.history = self.history[-self.feature_count() * model.preview :]
        bands = np.ones(model.network.bnl[-1].size, f32) if s.skip and self.skip_now else self.infer()
        if s.rate is not None:
            bands = features.expand(bands, s.rate)
        assert bands.size == model.end - model.begin
        mask = np.zeros(model.bins, f32)
        mask[model.begin : model.end] = bands

        mask = masks.soft_curve(mask) if s.soft_curve else mask * mask
        if s.high_frequency:
            mask = masks.square_upper_half(mask)
        mask = masks.smooth(mask, self.saved, s.smooth)
        if s.expand:
            mask = masks.expand_below(mask, s.threshold)
        if self.gate:
            mask = self.gate.apply(mask)
        self.saved = mask

        self.note(windowed, bins, mask)
        out = self.synthesise(frame, bins, mask)
        return masks.limit_peak(out, s.clip_point) if s.clip_fix else out

    def features(self, bins, scale):
        raise NotImplementedError

    def infer(self):
        """The mask on the network's bands, from the history."""
        raise NotImplementedError

    def note(self, windowed, bins, mask):
        """What a version remembers of the finished mask."""

    def synthesise(self, frame, bins, mask):
        s = self.settings
        time = spectrum.backward(bins * mask)
        if s.volume_up:
            time = time * (s.volume / f32(100) + f32(1))
        if self.speaker:
            time = self.speaker.apply(time)
        return time * self.window

    def normalised(self):
        return features.normalise(self.history, self.model.mean, self.model.deviation)


class Cleaner2(Cleaner):
    version = 2

    def start(self):
        super().start()
        self.noise = Noise(self.model.value["NATFrameCount"], self.model.end - self.model.begin)

    def overlap_limit(self):
        return self.frame_size + self.model.step

    def features(self, bins, scale):
        return features.log_level(bins)

    def infer(self):
        model = self.model
        joined = features.normalise_with_noise(self.history, self.noise.mean, model.mean, model.deviation)
        return network.feed_forward(model.network, joined)

    def note(self, windowed, bins, mask):
        band = slice(self.model.begin, self.model.end)
        self.noise.hear(mask[band], bins[band])


class Cleaner1(Cleaner2):
    version = 1
    analysis = staticmethod(spectrum.hamming)

    def synthesise(self, frame, bins, mask):
        if not self.settings.clip_fix:
            return spectrum.backward(bins * mask)
        after = spectrum.hamming if self.settings.window_after == "HAMMING" else spectrum.triangular
        return spectrum.backward(spectrum.forward(frame) * mask) * after(self.model.frame_length)


class Cleaner3(Cleaner):
    version = 3

    def features(self, bins, scale):
        return features.log_level(bins, scale)

    def infer(self):
        mask, self.state = network.recurrent(self.model.network, self.state, self.normalised())
        return mask


class Cleaner4(Cleaner3):
    version = 4

    def features(self, bins, scale):
        return features.compress(super().features(bins, scale), self.settings.rate + 1)


class Cleaner5(Cleaner):
    version = 5
    prefix = "TALVO_"
    epsilon = f32(1000)

    def features(self, bins, scale):
        return np.log(features.compress(features.power(bins, scale), self.settings.rate + 1) + self.epsilon)

    def infer(self):
        mask, self.state = network.gated(self.model.network, self.state, self.normalised())
        return mask


class Cleaner6(Cleaner5):
    version = 6
    prefix = "NIMBA_"

    def start(self):
        super().start()
        self.epsilon = f32(self.model.value["LpsEps"])

    def infer(self):
        mask, self.state = network.gated_normalised(self.model.network, self.state, self.normalised())
        return mask


class NoiseLevel(Cleaner5):
    """Decibels, relative to full scale, of what the mask took away since the start or the last reset."""

    version = "level"
    prefix = "NIMBA_"
    FLOOR = -120.0

    def start(self):
        super().start()
        self.removed, self.frames = 0.0, 0

    def note(self, windowed, bins, mask):
        self.removed += mean_square(windowed - spectrum.backward(bins * mask))
        self.frames += 1

    def clean(self, frame):
        super().clean(frame)
        power = self.removed / self.frames / 32768.0**2 if self.frames else 0.0
        return floats([max(10 * np.log10(power), self.FLOOR) if power > 0 else self.FLOOR])

"""Fixed sets of unseen voices, sentences and noises, mixed and clean, to choose the model by: one of
generated sound, and one of recordings where there are any."""

from typing import NamedTuple

import numpy as np

import chain
import corpus
import metrics
import mixing

CLIPS, CLEAN_CLIPS, SECONDS = 24, 20, 6.0
KEPT_ENOUGH, PAUSES_ENOUGH = 50.0, 30.0  # dB; nobody hears the difference above


class Measured(NamedTuple):
    """What mixes gain: SI-SDR in dB, STOI, and by how many dB pauses are quieter; and the SI-SDR that clean clips keep."""

    si_sdr: float
    stoi: float
    pauses: float
    kept: float
    kept_worst: float

    def score(self):
        """One number to choose by, in which .01 of STOI counts like 10 dB in pauses or of clean speech."""
        return 100 * self.stoi + 0.1 * min(self.pauses, PAUSES_ENOUGH) + 0.1 * self.kept

    def rounded(self):
        return {name: round(float(value), 4 if name == "stoi" else 1) for name, value in self._asdict().items()}

    def __str__(self):
        return (f"SI-SDR {self.si_sdr:+.2f} dB  STOI {self.stoi:+.4f}  pauses {-self.pauses:.1f} dB  "
                f"clean kept {self.kept:.1f} dB, worst {self.kept_worst:.1f}")


class _Set:
    def __init__(self, mixer, shape):
        random, self.shape, self.clips, self.clean = np.random.default_rng(2), shape, [], []
        for _ in range(CLIPS):
            speech, noise = mixer.speech_track(), mixer.noise_track()
            level, distance = random.uniform(-45, -15), random.uniform(0, 15)
            clean = speech * (32768 * mixing.gain(level))
            mix = np.clip(np.rint(clean + noise * (32768 * mixing.gain(level - distance))), -32768, 32767)
            size = mix.size // shape.step * shape.step - shape.step
            before = metrics.si_sdr(mix[:size], clean[:size]), metrics.stoi(mix[:size], clean[:size])
            self.clips.append((*self._heard(mix), clean[:size], mix[:size], before))
        for _ in range(CLEAN_CLIPS):
            clean = np.clip(np.rint(mixer.speech_track() * (32768 * mixing.gain(random.uniform(-45, -15)))), -32768, 32767)
            self.clean.append((*self._heard(clean), clean))

    def _heard(self, samples):
        x = chain.spectra(samples, self.shape)
        return x, chain.features(x, chain.rescaling(samples, self.shape), self.shape)

    def _cleaned(self, network, x, bands):
        """Without the last step, which has only half of its overlap."""
        return chain.resynthesise(x, chain.full_mask(network.run(bands), self.shape), self.shape)[: -self.shape.step]

    def measure(self, network):
        gains, pauses, kept = [], [], []
        for x, bands, clean, mix, before in self.clips:
            out = self._cleaned(network, x, bands)[: clean.size]
            gains.append((metrics.si_sdr(out, clean) - before[0], metrics.stoi(out, clean) - before[1]))
            pauses.append(metrics.between_words(out, mix, clean))
        for x, bands, clean in self.clean:
            out = self._cleaned(network, x, bands)
            kept.append(metrics.si_sdr(out, clean[: out.size]))
        quiet = np.mean([p for p in pauses if p is not None] or [0.0])
        return Measured(*np.mean(gains, axis=0), quiet, np.mean(np.minimum(kept, KEPT_ENOUGH)), np.min(kept))


class Development:
    def __init__(self, folder, shape):
        self.sets = {}
        for name, recorded in (("generated", False), ("recorded", True)):
            try:
                mixer = mixing.Mixer(folder, "development", 1, SECONDS, recorded=recorded)
            except corpus.CorpusError:
                continue
            self.sets[name] = _Set(mixer, shape)
        if not self.sets:
            raise corpus.CorpusError(f"{folder} has nothing for development: run the data step first")

    def measure(self, network):
        return {name: one.measure(network) for name, one in self.sets.items()}

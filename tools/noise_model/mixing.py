"""Mixing speech and noise into scenes, new ones all the time.

Every scene has its own voice, tempo and pitch, room, equaliser, noises, levels and distance between
speech and noise, and some have a jump of the level in the middle or noise that comes and goes; some
come through a microphone that colours, or that clips.
"""

import numpy as np

import corpus
import noises
from audio_files import RATE
from metrics import active_level

KEPT_NOISE = 0.04  # the part of the noise that stays in the target: the chain has no floor of its own
# Little of it can be told from speech, so training mixes it this much less often.
MUSIC, SELDOM = {"recorded_music", "recorded_font", "recorded_instruments", "music"}, 0.35
RECORDED, NATURAL, COMPUTED = 0.6, 0.3, 0.1  # shares of recordings and of synthetic voices, where all are there


def decibels(gain):
    return 20 * np.log10(np.maximum(gain, 1e-12))


def gain(db):
    return 10 ** (db / 20)


def _curve(random, count, spread_db):
    """A smooth gain over the frequencies of a spectrum."""
    points = random.integers(3, 9)
    tilt = random.normal(0, spread_db) * np.linspace(-1, 1, points)
    return gain(np.interp(np.linspace(0, points - 1, count), np.arange(points), random.normal(0, spread_db, points) + tilt))


def _resized(spectrum, count):
    """A spectrum with bins cut off or added at the top: the sound at another tempo and pitch."""
    out = np.zeros(count, complex)
    size = min(count, spectrum.size)
    out[:size] = spectrum[:size]
    return out


def _room(random, count):
    """The spectrum of a room's response: a direct path, and a tail that fades."""
    tail_seconds = np.exp(random.uniform(np.log(0.08), np.log(0.8)))
    t = np.arange(min(count, int(RATE * tail_seconds))) / RATE
    tail = random.standard_normal(t.size) * 10 ** (-3 * t / tail_seconds)
    tail[: int(RATE * random.uniform(0.001, 0.012))] = 0
    # Rooms swallow the high frequencies first.
    tail = np.convolve(tail, np.ones(random.integers(1, 4)), "same")
    tail *= gain(-random.uniform(1, 20)) / (np.sqrt(np.sum(tail**2)) + 1e-9)
    response = np.zeros(count)
    response[: t.size] = tail
    response[0] += 1
    return np.fft.rfft(response)


def _shared(weights, *parts):
    """Weights of which each part has its share; what parts are missing goes to the others."""
    for part, share in parts:
        if part.any():
            weights[part] *= share / weights[part].sum()
    return weights / weights.sum()


def _microphone(random, count):
    """A smooth curve between a lowest and a highest frequency."""
    frequency = np.linspace(0, RATE / 2, count)
    low, high = np.exp(random.uniform(np.log(20), np.log(250))), random.uniform(3400, 9000)
    slopes = 1 / np.sqrt(1 + (low / np.maximum(frequency, 1)) ** 4) / np.sqrt(1 + (frequency / high) ** 24)
    return _curve(random, count, 2) * slopes


class Mixer:
    """Draws scenes from one split of a corpus. The same seed gives the same scenes."""

    def __init__(self, folder, split, seed, seconds=8.0, recorded=None):
        """`recorded` takes only recordings, or only what was generated."""
        self.random = np.random.default_rng(seed)
        self.voices, self.noises = (corpus.load(folder, what, split, recorded) for what in ("speech", "noise"))
        self.count = int(seconds * RATE) // 1280 * 1280
        self.voice_weights = self._voice_weights()
        self.noise_weights = self._noise_weights(SELDOM if split == "train" else 1.0)

    def _voice_weights(self):
        """Longer voices come more often than shorter ones."""
        size = np.array([v.samples.size**0.5 for v in self.voices])
        recorded = np.array([v.recorded for v in self.voices])
        computed = np.array([v.name.startswith("espeak-ng") for v in self.voices])
        return _shared(size, (recorded, RECORDED), (~recorded & ~computed, NATURAL), (computed, COMPUTED))

    def _noise_weights(self, music):
        shares = {kind.__name__: share for kind, share in noises.SHARES.items()}
        weights = np.array([n.samples.size**0.5 if n.recorded else shares.get(n.name, 1.0) for n in self.noises])
        weights *= [music if n.name in MUSIC else 1.0 for n in self.noises]
        recorded = np.array([n.recorded for n in self.noises])
        return _shared(weights, (recorded, RECORDED), (~recorded, 1 - RECORDED))

    def _utterances(self, count):
        """One voice, sentence after sentence with pauses."""
        random = self.random
        voice = self.voices[random.choice(len(self.voices), p=self.voice_weights)]
        out = np.zeros(count)
        at = int(random.uniform(0, 1.2) * RATE) if random.random() < 0.7 else -int(random.uniform(0, 2) * RATE)
        while at < count:
            clip = voice.clip(random.integers(len(voice))).astype(np.float64)
            clip *= gain(random.normal(0, 2))
            begin, end = max(at, 0), min(at + clip.size, count)
            if end > begin:
                out[begin:end] = clip[begin - at : end - at]
            pause = random.uniform(0.05, 0.6) if random.random() < 0.75 else random.uniform(0.6, 2.5)
            at += clip.size + int(pause * RATE)
        return out

    def speech_track(self):
        random = self.random
        tempo = np.exp(random.uniform(np.log(0.8), np.log(1.42))) if random.random() < 0.8 else 1.0
        dry = self._utterances(int(self.count * tempo) // 1280 * 1280)
        spectrum = _resized(np.fft.rfft(dry), self.count // 2 + 1)
        if random.random() < 0.75:
            spectrum *= _curve(random, spectrum.size, 3.5)
        if random.random() < 0.5:
            spectrum *= _room(random, self.count)
        speech = np.fft.irfft(spectrum, self.count)
        return speech / (active_level(speech) + 1e-12)

    def noise_track(self):
        random = self.random
        out = np.zeros(self.count)
        for _ in range(1 if random.random() < 0.65 else 2):
            noise = self.noises[random.choice(len(self.noises), p=self.noise_weights)]
            tempo = np.exp(random.uniform(np.log(0.7), np.log(1.4)))
            spectrum = _resized(np.fft.rfft(noise.draw(random, int(self.count * tempo) // 1280 * 1280)), self.count // 2 + 1)
            spectrum *= _curve(random, spectrum.size, 3)
            one = np.fft.irfft(spectrum, self.count)
            out += one * gain(random.uniform(-12, 0)) / (np.sqrt(np.mean(one**2)) + 1e-12)
        return out / np.sqrt(np.mean(out**2) + 1e-12)

    def _steps(self, spread_db):
        """A gain that jumps once or twice, within 40 ms."""
        random, jumps = self.random, self.random.integers(1, 3)
        at = np.sort(random.integers(self.count // 8, self.count, jumps))
        db = np.clip(np.cumsum(random.normal(0, spread_db, jumps)), -30, 25)
        places = np.stack([at, at + 640], axis=1).ravel()
        return gain(np.interp(np.arange(self.count), places, np.repeat(np.append(0, db), 2)[1:-1]))

    def scene(self):
        """(what a microphone hears, what should be left of it), on the 16-bit scale."""
        random = self.random
        speech, noise = self.speech_track(), self.noise_track()
        kind = random.random()
        distance = random.uniform(-6, 22) if kind < 0.78 else random.uniform(22, 55) if kind < 0.88 else 90.0
        place = random.random()
        level = random.uniform(-42, -14) if place < 0.65 else random.uniform(-62, -42) if place < 0.87 else random.uniform(-14, 1)
        if random.random() < 0.25:
            change, what = self._steps(12), random.random()
            speech = speech * change if what < 0.75 else speech
            noise = noise * change if not 0.5 < what < 0.75 else noise
        if random.random() < 0.15:
            begin, end = np.sort(random.integers(0, self.count, 2))
            noise = noise.copy()
            noise[begin:end] *= gain(-random.uniform(10, 60))
        if random.random() < 0.15:
            # A microphone that was muted.
            heard = np.arange(self.count) >= random.uniform(0.1, 0.7) * self.count
            speech, noise = speech * heard, noise * heard
        if random.random() < 0.03:
            speech, distance = speech * 0, min(distance, 30.0)
        speech = speech * (32768 * gain(level))
        noise = noise * (32768 * gain(level - distance))
        if random.random() < 0.35:
            heard_through = _microphone(random, self.count // 2 + 1)
            speech, noise = (np.fft.irfft(np.fft.rfft(x) * heard_through, self.count) for x in (speech, noise))
        mix = speech + noise
        if random.random() < 0.05:
            most = np.abs(mix).max() * random.uniform(0.3, 1)
            mix = np.clip(mix, -most, most)
        if random.random() < 0.35:
            mix = mix + random.random(self.count) - random.random(self.count)  # dither, as many converters add it
        mix = np.clip(np.rint(mix), -32768, 32767)
        return mix.astype(np.float32), (speech + KEPT_NOISE * noise).astype(np.float32)

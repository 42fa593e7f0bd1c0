"""Noise, made from scratch: about two dozen kinds, each with parameters of its own for every clip.

A generator takes a random generator and a number of samples and gives as many floats, of any level.
The kinds of the development and test sets are never trained on, nor are those of the test set ever
used to choose a model. Those that need voices are made from the voices of their own split.
"""

import numpy as np

from audio_files import RATE


def _smooth(random, count, points):
    """A curve of `count` values through `points` random ones."""
    return np.interp(np.linspace(0, points - 1, count), np.arange(points), random.standard_normal(points))


def _filtered(samples, gain_db):
    """Through a filter whose gain is given from 0 Hz to half the rate."""
    spectrum = np.fft.rfft(samples)
    curve = np.interp(np.linspace(0, 1, spectrum.size), np.linspace(0, 1, len(gain_db)), gain_db)
    return np.fft.irfft(spectrum * 10 ** (curve / 20), samples.size)


def _tilt(random, low, high, points=129):
    """Gains that fall or rise by so many decibels an octave, with some ripple."""
    frequency = np.maximum(np.linspace(0, RATE / 2, points), 60)
    slope = random.uniform(low, high)
    return slope * np.log2(frequency / 1000) + random.uniform(0, 4) * _smooth(random, points, random.integers(4, 14))


def _band(samples, low, high):
    spectrum = np.fft.rfft(samples)
    frequency = np.fft.rfftfreq(samples.size, 1 / RATE)
    return np.fft.irfft(spectrum / np.sqrt((1 + (low / np.maximum(frequency, 1)) ** 4) * (1 + (frequency / high) ** 4)), samples.size)


def _white(random, count):
    return random.standard_normal(count)


def _level(random, count, seconds, depth_db):
    """A slowly changing gain."""
    points = max(2, int(count / RATE / seconds) + 2)
    return 10 ** (depth_db * np.clip(_smooth(random, count, points), -2, 2) / 20)


def _wander(random, count, seconds, share):
    """1, more or less by a share of it."""
    points = max(2, int(count / RATE / seconds) + 2)
    return 1 + share * _smooth(random, count, points)


def _harmonics(random, pitch, slope, most=40, detune=0.0):
    """Partials of a pitch in Hz for every sample, each weaker than the last by `slope` a partial number."""
    phase = 2 * np.pi * np.cumsum(pitch) / RATE
    out = np.zeros(pitch.size)
    for k in range(1, min(most, int(RATE / 2.2 / pitch.max())) + 1):
        gain = k**-slope * 10 ** (random.normal(0, 5) / 20)
        out += gain * np.sin(k * (1 + detune * random.standard_normal()) * phase + random.uniform(0, 2 * np.pi))
    return out


def _ring(random, low, high, decay, partials=3):
    """A short struck sound."""
    t = np.arange(int(RATE * decay * 6)) / RATE
    out = np.zeros(t.size)
    for _ in range(partials):
        f, d = np.exp(random.uniform(np.log(low), np.log(high))), decay * random.uniform(0.4, 1.3)
        out += random.uniform(0.3, 1) * np.exp(-t / d) * np.sin(2 * np.pi * f * t + random.uniform(0, 6))
    return out


def _strew(random, count, sounds, per_second, spread_db=8, at=None):
    """Puts sounds of a list at random or given places."""
    out = np.zeros(count)
    if at is None:
        at = random.integers(0, count, random.poisson(per_second * count / RATE))
    for start in at:
        sound = sounds[random.integers(len(sounds))]
        sound = sound[: count - start]
        out[start : start + sound.size] += sound * 10 ** (random.normal(0, spread_db) / 20)
    return out


def _bursts(random, count, per_second, length, pause):
    """Sample numbers of events that come in groups, as keys and steps do."""
    at, now = [], random.uniform(0, pause)
    while now < count / RATE:
        end = now + random.exponential(length)
        while now < end:
            at.append(int(now * RATE))
            now += max(0.03, random.normal(1 / per_second, 0.35 / per_second))
        now += random.exponential(pause)
    return [a for a in at if a < count]


def coloured(random, count):
    return _filtered(_white(random, count), _tilt(random, -9, 3))


def shaped(random, count):
    return _filtered(_white(random, count), 9 * _smooth(random, 129, random.integers(5, 20)) + _tilt(random, -5, 0))


def modulated(random, count):
    parts = [_filtered(_white(random, count), _tilt(random, -6, 1) + 8 * _smooth(random, 129, 8)) for _ in range(3)]
    return sum(p * _level(random, count, random.uniform(0.1, 1.5), random.uniform(4, 10)) for p in parts)


def pulsed(random, count):
    rate, t = random.uniform(0.7, 9), np.arange(count) / RATE
    gate = np.clip(4 * np.sin(2 * np.pi * rate * t * 1.0) + random.uniform(-3, 3), 0, 1)
    return _filtered(_white(random, count), _tilt(random, -7, 2)) * (gate + random.uniform(0.02, 0.3))


def fan(random, count):
    pitch = random.uniform(40, 240) * _wander(random, count, 5, 0.004)
    air = _filtered(_white(random, count), _tilt(random, -8, -3))
    return air / air.std() + random.uniform(0.1, 1.2) * _harmonics(random, pitch, random.uniform(0.6, 1.6), 20)


def hum(random, count):
    pitch = random.choice([50.0, 60.0]) * _wander(random, count, 20, 0.0005)
    noise = _filtered(_white(random, count), _tilt(random, -6, 1))
    return _harmonics(random, pitch, random.uniform(0.3, 1.5), 60) + random.uniform(0.02, 0.4) * noise / noise.std()


def engine(random, count):
    pitch = random.uniform(18, 60) * _wander(random, count, random.uniform(0.5, 4), random.uniform(0.01, 0.25))
    pitch = np.clip(pitch, 12, 140)
    roar = _filtered(_white(random, count), _tilt(random, -9, -4))
    beat = 1 + 0.6 * np.sin(2 * np.pi * np.cumsum(pitch) / RATE)
    return 1.5 * _harmonics(random, pitch, random.uniform(0.4, 1.1), 60) + random.uniform(0.3, 1.5) * beat * roar / roar.std()


def rain(random, count):
    drops = [_ring(random, 600, 6500, random.uniform(0.001, 0.006), 2) for _ in range(30)]
    hiss = _filtered(_white(random, count), _tilt(random, -1, 4))
    return _strew(random, count, drops, random.uniform(30, 400), 7) + random.uniform(0.01, 0.4) * hiss / hiss.std()


def clicks(random, count):
    sounds = [_ring(random, 300, 7000, random.uniform(0.0005, 0.01), 4) for _ in range(12)]
    return _strew(random, count, sounds, random.uniform(1, 12), 9) + 0.01 * coloured(random, count)


def taps(random, count):
    sounds = [_ring(random, 150, 3000, random.uniform(0.004, 0.03), 5) for _ in range(10)]
    at = _bursts(random, count, random.uniform(3, 9), 2.0, 1.0)
    return _strew(random, count, sounds, 0, 5, at) + 0.01 * coloured(random, count)


def music(random, count):
    out, now, beat = np.zeros(count), 0, random.uniform(0.2, 0.6)
    root, scale = random.uniform(80, 220), np.array([0, 2, 4, 5, 7, 9, 11, 12, 14, 16])
    slope, decay = random.uniform(0.7, 2), random.uniform(0.15, 1.5)
    drum = _filtered(_white(random, RATE // 5), _tilt(random, -9, 3)) * np.exp(-np.arange(RATE // 5) / RATE / 0.04)
    while now < count:
        length = int(RATE * beat * random.choice([1, 2, 4]))
        for _ in range(random.integers(1, 4)):
            pitch = np.full(int(length * 1.5), root * 2 ** ((random.choice(scale) + 12 * random.integers(0, 3)) / 12))
            note = _harmonics(random, pitch, slope, 14) * np.exp(-np.arange(pitch.size) / RATE / decay)
            note *= np.minimum(1, np.arange(pitch.size) / 200)
            out[now : now + note.size] += note[: count - now]
        if random.random() < 0.6:
            out[now : now + drum.size] += 2 * drum[: count - now] / drum.std() * 0.5
        now += int(RATE * beat * random.choice([1, 1, 2]))
    return out


def traffic(random, count):
    out = 0.15 * _filtered(_white(random, count), _tilt(random, -8, -4))
    t = np.arange(count) / RATE
    for _ in range(max(1, int(count / RATE * random.uniform(0.1, 0.5)))):
        near = 1 / (1 + ((t - random.uniform(0, t[-1])) / random.uniform(0.5, 3)) ** 2)
        out += near**1.5 * _filtered(_white(random, count), _tilt(random, -7, -1)) * random.uniform(0.3, 1)
    return out


def machine(random, count):
    period = random.uniform(0.15, 1.2)
    at = np.arange(random.uniform(0, period), count / RATE, period)
    at = (np.clip(at + random.normal(0, 0.01 * period, at.size), 0, None) * RATE).astype(int)
    knocks = [_ring(random, 60, 4000, random.uniform(0.005, 0.06), 7) for _ in range(3)]
    drone = _harmonics(random, random.uniform(30, 150) * _wander(random, count, 4, 0.01), 1.0, 40)
    noise = coloured(random, count)
    return _strew(random, count, knocks, 0, 2, at[at < count]) + random.uniform(0.02, 0.2) * (drone + noise / noise.std())


def water(random, count):
    sounds = []
    for _ in range(25):
        t = np.arange(int(RATE * random.uniform(0.01, 0.06))) / RATE
        rise = random.uniform(300, 2500) * (1 + random.uniform(0, 12) * t)
        sounds.append(np.sin(2 * np.pi * np.cumsum(rise) / RATE) * np.sin(np.pi * t / t[-1]) ** 0.5 * np.exp(-t * 40))
    flow = _filtered(_white(random, count), _tilt(random, -4, 0))
    return _strew(random, count, sounds, random.uniform(15, 120), 7) + random.uniform(0.02, 0.3) * flow / flow.std()


def crackle(random, count):
    snap = [_ring(random, 800, 7500, random.uniform(0.0003, 0.003), 3) for _ in range(12)]
    bed = _filtered(_white(random, count), _tilt(random, -9, -5)) * _level(random, count, 0.3, 4)
    return _strew(random, count, snap, random.uniform(4, 40), 10) + random.uniform(0.02, 0.2) * bed / bed.std()


def signals(random, count):
    """Ringing, beeping, sirens."""
    t, base = np.arange(count) / RATE, random.uniform(350, 2600)
    sweep = 1 + random.choice([0, 0.25, 0.5]) * np.sin(2 * np.pi * random.uniform(0.15, 5) * t)
    tone = _harmonics(random, np.clip(base * sweep, 100, 5000), random.uniform(1, 3), 5)
    gate = (t * random.uniform(0.4, 6)) % 1 < random.uniform(0.2, 1.2)
    gate = np.convolve(gate, np.hanning(160) / 80, "same")
    return tone * gate + random.uniform(0.02, 0.2) * coloured(random, count)


def handling(random, count):
    """Thumps, rustle and scraping on a table or a microphone."""
    thumps = [_ring(random, 25, 250, random.uniform(0.02, 0.1), 3) for _ in range(6)]
    rustle = _filtered(_white(random, count), _tilt(random, -2, 4)) * _level(random, count, 0.12, 14)
    return _strew(random, count, thumps, random.uniform(0.4, 3), 6) + random.uniform(0.05, 0.6) * rustle / rustle.std()


def _voices_at_once(random, count, voice, people):
    out = np.zeros(count)
    for _ in range(people):
        mumble = voice(random, count)
        out += mumble / (mumble.std() + 1e-9) * 10 ** (random.normal(0, 4) / 20)
    return out


def babble(random, count, voice):
    """A few people, more or less far away."""
    out = _voices_at_once(random, count, voice, random.integers(3, 9))
    return _filtered(out, _tilt(random, -3, 0.5)) + random.uniform(0, 0.3) * coloured(random, count)


def crowd(random, count, voice):
    out = _voices_at_once(random, count, voice, random.integers(10, 28))
    tail = _white(random, RATE // 2) * np.exp(-np.arange(RATE // 2) / RATE / random.uniform(0.05, 0.3))
    size = count + tail.size
    wet = np.fft.irfft(np.fft.rfft(out, size) * np.fft.rfft(tail, size), size)[:count]
    return out / out.std() + random.uniform(0.5, 2) * wet / wet.std()


def office(random, count, voice):
    """Keys, a computer and somebody on the telephone."""
    keys = [_ring(random, 400, 5000, random.uniform(0.002, 0.012), 5) for _ in range(8)]
    out = _strew(random, count, keys, 0, 4, _bursts(random, count, random.uniform(4, 8), 3, 1.5))
    talk = _filtered(voice(random, count), [-12, 0, 0, -10, -25, -40])
    air = fan(random, count)
    return out / out.std() + random.uniform(0.2, 1) * talk / (talk.std() + 1e-9) + random.uniform(0.2, 1.5) * air / air.std()


def train_ride(random, count):
    beat, t = random.uniform(0.5, 1.1), np.arange(count) / RATE
    joints = [_ring(random, 40, 900, random.uniform(0.02, 0.06), 6) for _ in range(4)]
    at = np.concatenate([np.arange(0, t[-1], beat), np.arange(0.16, t[-1], beat)])
    rumble = _filtered(_white(random, count), _tilt(random, -10, -6)) * _level(random, count, 0.5, 3)
    squeal = _harmonics(random, random.uniform(900, 2500) * _wander(random, count, 0.7, 0.01), 2, 3)
    return (_strew(random, count, joints, 0, 3, (at * RATE).astype(int)) * 0.5 + rumble / rumble.std()
            + 0.15 * squeal * _level(random, count, 1, 15) / 6)


def typing(random, count):
    down = [_band(_white(random, 600) * np.exp(-np.arange(600) / random.uniform(20, 90)), 500, 5000) for _ in range(10)]
    up = [0.4 * d[::2] for d in down]
    at = np.array(_bursts(random, count, random.uniform(4, 8), 4, 0.7), int)
    later = at + (RATE * random.uniform(0.06, 0.12, at.size)).astype(int)
    return _strew(random, count, down, 0, 4, at) + _strew(random, count, up, 0, 4, later[later < count]) + 0.01 * _white(random, count)


def cafe(random, count, voice):
    """Many tables, cups and spoons, a grinder now and then."""
    talk = crowd(random, count, voice)
    cups = [_ring(random, 1500, 7000, random.uniform(0.01, 0.08), 5) for _ in range(10)]
    grinder = _harmonics(random, random.uniform(90, 200) * _wander(random, count, 2, 0.03), 0.4, 50)
    grinder *= np.interp(np.linspace(0, 1, count), *zip((0, 0), (0.55, 0), (0.6, 1), (0.8, 1), (0.82, 0), (1, 0)))
    return talk / talk.std() + _strew(random, count, cups, random.uniform(1, 4), 6) * 0.6 + random.uniform(0, 0.25) * grinder


def vacuum(random, count):
    motor = _harmonics(random, random.uniform(180, 400) * _wander(random, count, 1.5, 0.02), 0.8, 30)
    air = _filtered(_white(random, count), 8 * _smooth(random, 129, 16) + _tilt(random, -3, -1))
    strokes = _level(random, count, 0.6, 3)
    return strokes * (air / air.std() + random.uniform(0.2, 0.8) * motor / motor.std())


def wind(random, count):
    gusts = _level(random, count, random.uniform(0.3, 1.2), 9)
    low = _band(np.cumsum(_white(random, count)), 25, 220)
    whistle = _band(_white(random, count), 350, 700) * _level(random, count, 0.8, 8)
    flutter = np.clip(low / low.std(), -2, 2)
    return gusts * flutter + 0.08 * gusts * whistle / whistle.std()


def street(random, count):
    """Cars that pass, a horn, steps on gravel."""
    t, out = np.arange(count) / RATE, 0.2 * _filtered(_white(random, count), _tilt(random, -6, -3))
    for _ in range(max(1, int(t[-1] / 6))):
        x = (t - random.uniform(0, t[-1])) * random.uniform(6, 20) / 8
        tyres = _band(_white(random, count), 300, 1600) / (1 + x**2)
        motor = _harmonics(random, random.uniform(50, 90) * (1 - 0.06 * np.tanh(x)), 0.9, 40) / (1 + x**2)
        out += tyres / tyres.std() * 0.3 + 0.1 * motor
    step = [_band(_white(random, 2400) * np.hanning(2400), 1500, 6000) for _ in range(6)]
    at = (np.arange(0.3, t[-1], random.uniform(0.45, 0.6)) * RATE).astype(int)
    horn = _harmonics(random, np.full(RATE, random.uniform(380, 450)), 0.5, 12) * np.hanning(RATE) * 0.1
    return out + 0.15 * _strew(random, count, step, 0, 3, at) + _strew(random, count, [horn], 0.05, 3)


def drill(random, count):
    pitch = random.uniform(25, 40) * _wander(random, count, 0.4, 0.05)
    hammer = np.maximum(0, np.sin(2 * np.pi * np.cumsum(pitch) / RATE)) ** 8
    on = np.repeat(random.random(count // RATE + 1) < 0.75, RATE)[:count]
    sound = _filtered(hammer * _white(random, count), 6 * _smooth(random, 129, 12) + _tilt(random, -3, 0))
    return sound * np.convolve(on, np.hanning(1600) / 800, "same") + 0.05 * sound.std() * _white(random, count)


KINDS = {
    "train": (coloured, shaped, modulated, pulsed, fan, hum, engine, rain, clicks, taps, music, traffic, machine, water,
              crackle, signals, handling, babble, crowd),
    "development": (office, train_ride, drill),
    "test": (cafe, vacuum, typing, wind, street),
}
WITH_VOICES = (babble, crowd, office, cafe)
# Harder ones come more often.
SHARES = {babble: 3.5, crowd: 3, modulated: 1.5, shaped: 1.5, coloured: 1.5, music: 1.5, engine: 1.5, machine: 1.5, fan: 1.5,
          traffic: 1.5}


def make(kind, random, count, voice):
    """16-bit samples whose loudest is at half of full scale."""
    out = kind(random, count, voice) if kind in WITH_VOICES else kind(random, count)
    return np.rint(out * (0.5 * 32767 / np.abs(out).max())).astype(np.int16)

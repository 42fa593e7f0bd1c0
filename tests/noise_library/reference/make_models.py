"""Small random models of every version, the same for the same seed, whose recurrences forget."""

import numpy as np
from weights import Kind, Record

from .cleaners import groups

DEFAULT_RATE = 2


def setting_key(version, name, kind="clean"):
    if kind == "vad":
        return f"NIMBA_VAD_{name}_v0_0_1"
    prefix = "TALVO_" if version == "0.0.5" and kind == "clean" and name != "COMPRESS_RATE" else "NIMBA_"
    return f"{prefix}{name}_v{version.replace('.', '_')}"


def weight_key(version, name, kind="clean"):
    if (version, name) == ("0.0.4", "ENABLE_RESCALE"):
        return "BRELLIN_NIMBA_ENABLE_RESCALE_v0_0_4"
    return "CONTROL_" + setting_key(version, name, kind)


def control_text(value):
    return str(value).upper() if isinstance(value, bool) else str(value)


def weight_record(value):
    if isinstance(value, bool):
        return Record(Kind.STRING, "t" if value else "f")
    return Record({str: Kind.STRING, int: Kind.INT, float: Kind.FLOAT}[type(value)], value)


class _Random:
    def __init__(self, seed):
        self.generator = np.random.default_rng(seed)

    def vector(self, size, mean=0.0, spread=0.1):
        return (mean + spread * self.generator.standard_normal(size)).astype(np.float32)

    def matrix(self, rows, cols, gain=0.6):
        return (gain / np.sqrt(rows) * self.generator.standard_normal((rows, cols))).astype(np.float32)


def make_model(version, seed=1, rate=16000, frame_ms=20, preview=3, begin=1, end=None, hidden=(20, 26, 20),
               compress=DEFAULT_RATE, tile_mean=True, noise_frames=6, openness=0.5, minmax=True, floor=True):
    # The network sees the bins from `begin` to `end`. `compress` must be the compression rate that the session will
    # use. The last of `hidden` is the size of the state, and so must the first be. `tile_mean` gives MU and SD for one
    # frame of history in place of all; a higher `openness` lets the mask pass more.
    random = _Random(seed)
    voice = version.startswith("VAD")
    length = rate * frame_ms // 1000
    bins = length // 2 + 1
    end = bins if end is None else end
    widths = np.ones(end - begin, int)
    if version in ("0.0.4", "0.0.5", "0.0.6"):
        widths = np.array([width for _, width in groups(end - begin, compress + 1)])
    elif voice:
        widths = np.array([1, *(width for _, width in groups(bins - 1, 3))])
    bands, state = widths.size, hidden[-1]

    # Where speech at a tenth of full scale lies; in 0.0.4 the logarithms themselves are summed.
    mean, spread = (8.0, 2.5) if version in ("0.0.1", "0.0.2", "0.0.3", "0.0.4") else (16.0, 4.0)
    scale = widths if version == "0.0.4" else np.ones(bands)
    repeats = 1 if tile_mean or voice else preview
    mu, sd = np.tile(mean * scale, repeats), np.tile(spread * scale, repeats)
    if version in ("0.0.1", "0.0.2"):
        mu = np.concatenate([np.tile(mean * scale, preview), np.full(bands, 3.0)])
        sd = np.concatenate([np.tile(spread * scale, preview), np.full(bands, 2.0)])
    mu = (mu + random.vector(mu.size, spread=0.2)).astype(np.float32)
    sd = (sd * (1 + random.vector(sd.size))).astype(np.float32)

    inputs = bands * preview + (bands if version in ("0.0.1", "0.0.2") else state)
    sizes = [inputs, *hidden]
    shapes = list(zip(sizes[:-1], sizes[1:]))
    outputs = 1 if voice else bands
    last = random.matrix(state, outputs, gain=3.0)
    wl, wnl = ([random.matrix(*shape) for shape in shapes] for _ in range(2))
    bl, bnl = ([random.vector(n) for n in hidden] for _ in range(2))
    if version in ("0.0.1", "0.0.2") or voice:
        # These passes count the straight branch's layers too; the last one is never used.
        wl.append(np.zeros((state, outputs), np.float32))
        bl.append(np.zeros(outputs, np.float32))

    records = {
        "Version": Record(Kind.STRING, version),
        "SampleRate": Record(Kind.INT, rate),
        "FrameLength": Record(Kind.INT, length),
        "Step": Record(Kind.INT, length // 2),
        "FiltrBegin": Record(Kind.INT, begin),
        "FiltrEnd": Record(Kind.INT, end),
        "PreviewFrames": Record(Kind.INT, preview),
        "CoefficientNumber": Record(Kind.INT, bins),
        "MU": Record(Kind.VECTOR, mu),
        "SD": Record(Kind.VECTOR, sd),
        "WeightLinear": Record(Kind.MATRICES, wl),
        "WeightNonLinear": Record(Kind.MATRICES, [*wnl, last]),
        "BaesLinear": Record(Kind.VECTORS, bl),
        "BaesNonLinear": Record(Kind.VECTORS, [*bnl, random.vector(outputs, mean=openness)]),
    }
    if version in ("0.0.1", "0.0.2"):
        records["NATFrameCount"] = Record(Kind.INT, noise_frames)
        records["HeadenMultiplier"] = Record(Kind.VECTORS, [random.vector(n, mean=1.0) for n in hidden])
        records["HeadenReducer"] = Record(Kind.VECTORS, [random.vector(n) for n in hidden])
    if version in ("0.0.5", "0.0.6") or voice:
        records["WeightGRU"] = Record(Kind.MATRIX, random.matrix(inputs, state, gain=1.0))
        records["BaesGRU"] = Record(Kind.VECTOR, random.vector(state))
    if version == "0.0.6":
        records["WeightGRU_reset"] = Record(Kind.MATRIX, random.matrix(inputs, state, gain=1.0))
        records["BiasGRU_reset"] = Record(Kind.VECTOR, random.vector(state))
        for branch in ("Linear", "NonLinear"):
            records[f"Gain{branch}Norm"] = Record(Kind.VECTORS, [random.vector(n, mean=0.6) for n in hidden])
            records[f"Bias{branch}Norm"] = Record(Kind.VECTORS, [random.vector(n) for n in hidden])
        records["LpsEps"] = Record(Kind.FLOAT, 25.5)
    if voice:
        if minmax:
            records["Test_MINMAX"] = Record(Kind.VECTOR, [0.05, 0.55, 0.95])
            records["Test_BestF1"] = Record(Kind.FLOAT, 0.55)
        if floor:
            records["SD_FLOOR"] = Record(Kind.FLOAT, 0.75)
    return records


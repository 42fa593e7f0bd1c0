"""What is compared: versions, settings, rates, durations, formats and forms of file."""

from dataclasses import dataclass, field
from itertools import cycle, product
from random import Random

CLEANING = ("0.0.1", "0.0.2", "0.0.3", "0.0.4", "0.0.5", "0.0.6")
RATES = (8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000)
DURATIONS = (10, 15, 20, 30, 32, 40)
RESAMPLED_DURATIONS = (10, 20, 30, 40)
WRONG_START = "outputData_.size() >= params_.step && outputData_.size() < "
STARVED = ("outputData_.size() >= (params_.inputFrameDuration*params_.sampleRate)/1000+params_.step), "
           "function cleanNoise, file noise_canceller/")


@dataclass
class Case:
    name: str
    version: str
    kind: str = "clean"
    model: dict = field(default_factory=dict)  # arguments of make_model
    settings: dict = field(default_factory=dict)  # in the control file
    weight_settings: dict = field(default_factory=dict)  # in the weight file
    in_rate: int = 16000
    out_rate: int = 16000
    duration: int = 10
    int16: bool = False
    extension: str = ".nmw"
    seconds: float = 0.5
    resets: int = 0  # how often the signal runs again after a reset
    aborts: str = ""  # the text of the assertion that must end the process


def _aborts(version, frame_ms, duration):
    """The pairings that the start-up delays don't cover, by the assertion that stops them."""
    if (frame_ms, duration) == (32, 15):
        return STARVED
    early_pair = version in ("0.0.1", "0.0.2") and frame_ms > 20 and duration == 10
    return WRONG_START if early_pair else ""


def _pairings(everything):
    forms, versions = cycle([(".nmw", False), (".tw", False), (".nmw", True)]), cycle(CLEANING)
    for frame_ms, duration in product((20, 30, 32), DURATIONS):
        chosen = CLEANING if everything else {next(versions), next(versions)} | {"0.0.5"}
        for version in sorted(chosen):
            extension, int16 = next(forms)
            aborts = _aborts(version, frame_ms, duration)
            yield Case(f"{frame_ms} ms model, {duration} ms frames", version, model={"frame_ms": frame_ms},
                       duration=duration, extension=extension, int16=int16, aborts=aborts)
    for frame_ms in (10, 15, 40):
        model = {"frame_ms": frame_ms, "end": 65}
        yield Case(f"{frame_ms} ms model", "0.0.5", model=model, aborts=WRONG_START)


def _rates(everything):
    versions, durations, formats = cycle(CLEANING), cycle(RESAMPLED_DURATIONS), cycle((False, True, False))
    for model_rate, in_rate, out_rate in product((8000, 16000, 32000), RATES, RATES):
        if not everything and (RATES.index(in_rate) * 2 + RATES.index(out_rate) + model_rate // 8000) % 9 != 0:
            continue
        for duration in RESAMPLED_DURATIONS if everything else [next(durations)]:
            frame_ms = 32 if (in_rate + duration) % 3 == 0 else 20
            version = next(versions)
            if _aborts(version, frame_ms, duration):
                version = "0.0.5"
            # Above the input's band there is only rounding to see, and a logarithm would magnify it.
            bins = int(min(in_rate, model_rate) / 2 * 0.9 * frame_ms / 1000) // 8 * 8
            model = {"rate": model_rate, "frame_ms": frame_ms, "end": bins + 1}
            yield Case(f"{in_rate} to {out_rate} Hz, model {model_rate}, {duration} ms frames", version,
                       model=model, in_rate=in_rate, out_rate=out_rate,
                       duration=duration, int16=next(formats), seconds=0.4)
    for rate in (8000, 32000):
        yield Case(f"{rate} Hz throughout, 15 ms frames", "0.0.5", model={"rate": rate, "frame_ms": 30},
                   in_rate=rate, out_rate=rate, duration=15)


FIX = "BACKGROUND_SPEAKER_FIX_"
SWITCH = (False, True, True)

# What a setting may be, good and bad. One of another type than the first is a text for the control file alone.
VALUES = {
    "SMOOT_COEF": (0.3, 0.6, 1.0, 0.0, 1.5, "0.5x"),
    "SMOOT_RM_MODIFY": SWITCH,
    "HIGH_FREQ_SMOOT": (*SWITCH, "1"),
    "ENABLE_CLIP_FIX": SWITCH,
    "CLIP_FIX_POINT": (2000, 4000, 0, 40000, "3000.9"),
    "SKIP_FRAME": SWITCH,
    "VOLUME_UP": SWITCH,
    "VOLUME_UP_PERCENT": (30.0, 150.5, 0.0, 200.0),
    "ENABLE_THRESH_CUT": SWITCH,
    "THRESH_CUT_REF_EN": (1, 900, 0, 5000),
    "ENABLE_RM_THRESHOLD": SWITCH,
    "RM_THRESHOLD": (0.4, 0.7, 1.0, 0.0, 1.1),
    "ENABLE_WINDOW_AFTER": SWITCH,
    "WINDOW_AFTER": ("HAMMING", "TRIANGL"),
    "ENABLE_RESCALE": (*SWITCH, "true"),
    "RESCALE_REF_AMPL": (300.0, 5000.0),
    "RESCALE_REF_EN": (10.0, 5000.0),
    "COMPRESS_RATE": (0, 1, 2, 3),
    "ENABLE_" + FIX[:-1]: SWITCH,
    FIX + "CUT_START_DB": (1.5, 3.0),
    FIX + "CUT_END_DB": (12.0, 30.0),
    FIX + "RUN_FRAME_COUNT": (7.9, 12.0),
    FIX + "RUN_MIN_LEN": (1, 3),
    FIX + "UTTERANCE_LEN": (0.1, 0.25),
    FIX + "VAR_WIND_MODE": SWITCH,
}


def _of_another_kind(value):
    """A record that doesn't count; for a switch the control file's text, which is no weight file's true."""
    return "TRUE" if isinstance(value, bool) else {int: float, float: str, str: len}[type(value)](value)


def _random_settings(seed):
    """About half of the settings, each in the control file, the weight file, both or as a record of another kind."""
    random = Random(seed)
    version, kind = random.choice([*((version, "clean") for version in CLEANING), ("0.0.5", "level")])
    model, control, stored = {"openness": random.choice((0.5, 5.0))}, {}, {}
    for name, values in VALUES.items():
        value = random.choice(values)
        place = random.choice(("", "", "", "control", "control", "stored", "both", "other kind"))
        if place and name == "COMPRESS_RATE":  # the model's sizes hang on it
            place, model["compress"] = "stored" if place == "other kind" else place, value
        if place in ("control", "both"):
            control[name] = value
        if place == "both":
            stored[name] = values[0]
        elif place == "stored" and isinstance(value, type(values[0])):
            stored[name] = value
        elif place == "other kind":
            stored[name] = _of_another_kind(value)
    return Case(f"settings {seed}", version, kind=kind, model=model, settings=control, weight_settings=stored,
                extension=".cfg", seconds=1.0, int16=kind == "clean" and random.random() < 0.3)


def _settings(everything):
    yield from map(_random_settings, range(800 if everything else 150))
    yield Case("other prefix", "0.0.5", extension=".cfg",
               settings={"NIMBA_SMOOT_COEF_v0_0_5": 0.3, "TALVO_COMPRESS_RATE_v0_0_5": 1})


def _shapes():
    for version in CLEANING:
        yield Case("narrow band, long history", version, seconds=0.8,
                   model={"begin": 8, "end": 72, "preview": 5, "tile_mean": False, "hidden": (12, 12)})
        yield Case("one hidden layer, one frame", version, model={"preview": 1, "hidden": (16,), "noise_frames": 1})
        yield Case("from the first bin", version, model={"begin": 0, "end": 160})
        yield Case("long stream", version, seconds=8.0, settings={"ENABLE_THRESH_CUT": True}, extension=".cfg")


def _voice(everything):
    forms = cycle((False, True))
    for frame_ms, duration in product((10, 15, 20, 30, 32, 40), DURATIONS):
        if duration <= frame_ms:
            yield Case(f"{frame_ms} ms model, {duration} ms frames", "VAD_0.0.1", kind="vad",
                       model={"frame_ms": frame_ms}, duration=duration, int16=next(forms), seconds=1.0)
    rates = [(m, r) for m in (8000, 16000, 32000) for r in RATES if r >= m]
    for model_rate, rate in rates if everything else rates[::2]:
        yield Case(f"{rate} Hz, model {model_rate}", "VAD_0.0.1", kind="vad", model={"rate": model_rate},
                   in_rate=rate, duration=20, int16=next(forms))
    yield Case("state reset", "VAD_0.0.1", kind="vad",
               settings={"ENABLE_STATE_RESET": True}, extension=".cfg", seconds=7.0)
    yield Case("state reset, in the weight file", "VAD_0.0.1", kind="vad",
               weight_settings={"ENABLE_STATE_RESET": True}, extension=".tw", seconds=7.0)
    yield Case("one hidden layer, one frame", "VAD_0.0.1", kind="vad", model={"preview": 1, "hidden": (8,)})
    yield Case("no limits, no floor", "VAD_0.0.1", kind="vad", model={"minmax": False, "floor": False}, seconds=1.0)


def _level(everything):
    for rate in RATES if everything else (8000, 16000, 44100):
        yield Case(f"{rate} Hz, 20 ms frames, reset", "0.0.5", kind="level", in_rate=rate, duration=20, resets=2)
    for duration in DURATIONS:
        yield Case(f"{duration} ms frames, reset", "0.0.5", kind="level", duration=duration, resets=1,
                   model={"frame_ms": 30}, int16=duration == 15)


def cases(everything=False):
    yield from _pairings(everything)
    yield from _rates(everything)
    yield from _settings(everything)
    yield from _shapes()
    yield from _voice(everything)
    yield from _level(everything)

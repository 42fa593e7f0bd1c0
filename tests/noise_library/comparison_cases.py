"""What is compared: versions, settings, rates, durations, formats and forms of file."""

from dataclasses import dataclass, field
from itertools import cycle, product

CLEANING = ("0.0.1", "0.0.2", "0.0.3", "0.0.4", "0.0.5", "0.0.6")
RATES = (8000, 12000, 16000, 24000, 32000, 44100, 48000, 88200, 96000)
DURATIONS = (10, 15, 20, 30, 32, 40)
RESAMPLED_DURATIONS = (10, 20, 30, 40)
WRONG_START = "outputData_.size() >= params_.step && outputData_.size() < "
STARVED = "outputData_.size() >= (params_.inputFrameDuration*params_.sampleRate)/1000+params_.step"


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


RESCALED = ("0.0.3", "0.0.4", "0.0.5", "0.0.6")
COMPRESSED = RESCALED[1:]
LATEST = RESCALED[2:]
FIX = "BACKGROUND_SPEAKER_FIX_"

# (name, versions, settings); the noise level measure takes those of 0.0.5 but the speaker fix.
SETTINGS = (
    ("nothing set", CLEANING, {}),
    ("smoothing", CLEANING, {"SMOOT_COEF": 0.6}),
    ("smoothing 0", CLEANING, {"SMOOT_COEF": 0.0}),
    ("smoothing 1.5", LATEST, {"SMOOT_COEF": 1.5}),
    ("soft curve", CLEANING, {"SMOOT_RM_MODIFY": True}),
    ("high frequencies", CLEANING, {"HIGH_FREQ_SMOOT": True}),
    ("clip fix", CLEANING, {"ENABLE_CLIP_FIX": True, "CLIP_FIX_POINT": 4000}),
    ("clip fix, bad point", CLEANING, {"ENABLE_CLIP_FIX": True, "CLIP_FIX_POINT": 40000}),
    ("clip point alone", LATEST, {"CLIP_FIX_POINT": 4000}),
    ("gate", CLEANING, {"ENABLE_THRESH_CUT": True, "THRESH_CUT_REF_EN": 900}),
    ("gate, bad reference", CLEANING, {"ENABLE_THRESH_CUT": True, "THRESH_CUT_REF_EN": 5000}),
    ("mask threshold", CLEANING, {"ENABLE_RM_THRESHOLD": True, "RM_THRESHOLD": 0.7}),
    ("mask threshold 1", LATEST, {"ENABLE_RM_THRESHOLD": True, "RM_THRESHOLD": 1.0}),
    ("mask threshold, bad", CLEANING, {"ENABLE_RM_THRESHOLD": True, "RM_THRESHOLD": 0.0}),
    ("all mask stages", CLEANING, {"SMOOT_COEF": 0.4, "SMOOT_RM_MODIFY": True, "HIGH_FREQ_SMOOT": True,
                                   "ENABLE_CLIP_FIX": True, "CLIP_FIX_POINT": 3000, "ENABLE_THRESH_CUT": True,
                                   "ENABLE_RM_THRESHOLD": True, "RM_THRESHOLD": 0.4}),
    ("other synthesis window", ("0.0.1",), {"ENABLE_CLIP_FIX": True, "ENABLE_WINDOW_AFTER": True,
                                            "WINDOW_AFTER": "HAMMING"}),
    ("same synthesis window", ("0.0.1",), {"ENABLE_CLIP_FIX": True, "ENABLE_WINDOW_AFTER": True,
                                           "WINDOW_AFTER": "TRIANGL"}),
    ("synthesis window, not enabled", ("0.0.1",), {"ENABLE_CLIP_FIX": True, "WINDOW_AFTER": "HAMMING"}),
    ("synthesis window, no clip fix", ("0.0.1",), {"ENABLE_WINDOW_AFTER": True, "WINDOW_AFTER": "HAMMING"}),
    ("no rescaling", RESCALED, {"ENABLE_RESCALE": False}),
    ("rescaling references alone", RESCALED, {"RESCALE_REF_AMPL": 300.0, "RESCALE_REF_EN": 5000.0}),
    ("rescaling references", RESCALED, {"ENABLE_RM_THRESHOLD": True,
                                        "RESCALE_REF_AMPL": 300.0, "RESCALE_REF_EN": 5000.0}),
    ("compression 0", COMPRESSED, {"COMPRESS_RATE": 0}),
    ("compression 1", COMPRESSED, {"COMPRESS_RATE": 1}),
    ("compression 3", COMPRESSED, {"COMPRESS_RATE": 3}),
    ("skipping", LATEST, {"SKIP_FRAME": True}),
    ("volume", LATEST, {"VOLUME_UP": True, "VOLUME_UP_PERCENT": 150.5}),
    ("volume 200", LATEST, {"VOLUME_UP": True, "VOLUME_UP_PERCENT": 200.0}),
    ("volume, clip fix off", LATEST, {"VOLUME_UP": True, "VOLUME_UP_PERCENT": 150.0, "CLIP_FIX_POINT": 2000}),
    ("volume, clip fix on", LATEST, {"VOLUME_UP": True, "VOLUME_UP_PERCENT": 30.0,
                                     "ENABLE_CLIP_FIX": True, "CLIP_FIX_POINT": 2000}),
    ("speaker fix", LATEST, {"ENABLE_" + FIX[:-1]: True}),
    ("gentle speaker fix", LATEST, {"ENABLE_" + FIX[:-1]: True, FIX + "CUT_START_DB": 1.5, FIX + "CUT_END_DB": 30.0,
                                    FIX + "RUN_FRAME_COUNT": 7.9, FIX + "RUN_MIN_LEN": 3, FIX + "UTTERANCE_LEN": 0.25}),
    ("shrinking speaker fix", LATEST, {"ENABLE_" + FIX[:-1]: True, FIX + "CUT_START_DB": 3.0, FIX + "CUT_END_DB": 6.0,
                                       FIX + "RUN_FRAME_COUNT": 12.0, FIX + "UTTERANCE_LEN": 0.1}),
    ("fixed speaker fix", LATEST, {"ENABLE_" + FIX[:-1]: True, FIX + "CUT_START_DB": 2.0, FIX + "CUT_END_DB": 40.0,
                                   FIX + "UTTERANCE_LEN": 0.2, FIX + "VAR_WIND_MODE": False}),
    ("other prefix", ("0.0.5",), {"NIMBA_SMOOT_COEF_v0_0_5": 0.3, "TALVO_COMPRESS_RATE_v0_0_5": 1}),
)


def _settings(everything):
    forms, at = cycle((False, True, False)), 0
    for name, versions, settings in SETTINGS:
        model = {"compress": settings["COMPRESS_RATE"]} if "COMPRESS_RATE" in settings else {}
        if name == "clip fix, bad point":
            model["openness"] = 5.0  # so that samples beyond the default point come through
        kinds = [(version, "clean") for version in versions]
        if "0.0.5" in versions and not any(FIX[:-1] in key or "v0_0_5" in key for key in settings):
            kinds.append(("0.0.5", "level"))
        for version, kind in kinds:
            at += 1
            for in_file in (False, True) if everything and settings else [at % 2 == 0]:
                place = {"weight_settings" if in_file else "settings": settings}
                label = name + (", in the weight file" if in_file and settings else "")
                yield Case(label, version, kind=kind, model=model, extension=".nmw" if in_file else ".cfg",
                           seconds=1.0, int16=kind == "clean" and next(forms), **place)
    yield Case("control file over weight file", "0.0.5", settings={"SMOOT_COEF": 0.5, "ENABLE_RESCALE": False},
               weight_settings={"SMOOT_COEF": 0.9, "ENABLE_RESCALE": True, "HIGH_FREQ_SMOOT": True}, extension=".cfg",
               seconds=1.0)
    yield Case("text that isn't clean", "0.0.5", extension=".cfg",
               settings={"ENABLE_RESCALE": "true", "HIGH_FREQ_SMOOT": "1", "SMOOT_COEF": "0.5x",
                         "ENABLE_CLIP_FIX": True, "CLIP_FIX_POINT": "3000.9"})
    yield Case("values of another kind", "0.0.5",
               weight_settings={"SMOOT_COEF": "0.3", "HIGH_FREQ_SMOOT": 1, "COMPRESS_RATE": 1.0,
                                "ENABLE_CLIP_FIX": True, "CLIP_FIX_POINT": 3000.0})


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

"""A model's settings: the control file first, then the weight file, then the default."""

import re
from types import SimpleNamespace

import numpy as np
from weights import Kind

FIX = "BACKGROUND_SPEAKER_FIX_"


def _real(text):
    match = re.match(r"\s*[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?", text)
    return float(np.float32(match.group())) if match else 0.0


def _whole(text):
    match = re.match(r"\s*[-+]?\d+", text)
    return int(match.group()) if match else 0


# The type of record, and what a control file's text is.
READERS = {
    "real": (Kind.FLOAT, _real),
    "whole": (Kind.INT, _whole),
    "switch": (Kind.STRING, lambda text: text == "TRUE"),
    "text": (Kind.STRING, str),
}


def _any(_):
    return True


# (first version, field, name, kind, default, the switch it hangs on, the values allowed), as they are read
TABLE = (
    (1, "smooth", "SMOOT_COEF", "real", 1.0, None, lambda v: 0 < v <= 1),
    (1, "soft_curve", "SMOOT_RM_MODIFY", "switch", False, None, _any),
    (1, "high_frequency", "HIGH_FREQ_SMOOT", "switch", False, None, _any),
    (1, "clip_fix", "ENABLE_CLIP_FIX", "switch", False, None, _any),
    (1, "clip_point", "CLIP_FIX_POINT", "whole", 25000, "clip_fix", lambda v: 1 <= v <= 32768),
    (5, "skip", "SKIP_FRAME", "switch", False, None, _any),
    (5, "volume_up", "VOLUME_UP", "switch", False, None, _any),
    (5, "volume", "VOLUME_UP_PERCENT", "real", 0.0, "volume_up", lambda v: 0 < v < 200),
    (1, "gate", "ENABLE_THRESH_CUT", "switch", False, None, _any),
    (1, "gate_reference", "THRESH_CUT_REF_EN", "whole", 100, "gate", lambda v: 1 <= v <= 1000),
    (1, "expand", "ENABLE_RM_THRESHOLD", "switch", False, None, _any),
    (1, "threshold", "RM_THRESHOLD", "real", 0.5, "expand", lambda v: 0 < v <= 1),
    (1, "window_after", "WINDOW_AFTER", "text", "TRIANGL", None, _any),
    (3, "rescale", "ENABLE_RESCALE", "switch", True, None, _any),
    # These two hang on the mask threshold's switch, not on the one of rescaling.
    (3, "rescale_amplitude", "RESCALE_REF_AMPL", "real", 2000.0, "expand", _any),
    (3, "rescale_energy", "RESCALE_REF_EN", "real", 100.0, "expand", _any),
    (4, "rate", "COMPRESS_RATE", "whole", 2, None, _any),
    (5, "speaker_fix", "ENABLE_" + FIX[:-1], "switch", False, None, _any),
    (5, "cut_start", FIX + "CUT_START_DB", "real", 10.0, None, _any),
    (5, "cut_end", FIX + "CUT_END_DB", "real", 15.0, None, _any),
    (5, "run_frames", FIX + "RUN_FRAME_COUNT", "real", 40.0, None, _any),
    (5, "run_min", FIX + "RUN_MIN_LEN", "whole", 2, None, _any),
    (5, "utterance", FIX + "UTTERANCE_LEN", "real", 2.0, None, _any),
    (5, "variable_window", FIX + "VAR_WIND_MODE", "switch", True, None, _any),
)


def read_one(weights, environment, key, kind, default, weight_key=None):
    record_kind, from_text = READERS[kind]
    if key in environment:
        return from_text(environment[key])
    record = weights.get(weight_key or "CONTROL_" + key)
    if record is None or record.kind is not record_kind:
        return default
    return record.value == "t" if kind == "switch" else record.value


def read_settings(weights, environment, version, prefix):
    s = SimpleNamespace()
    for first, field, name, kind, default, needs, allowed in TABLE:
        value = default
        if version >= first and (needs is None or getattr(s, needs)):
            key = ("NIMBA_" if field == "rate" else prefix) + name + f"_v0_0_{version}"
            stored = "BRELLIN_NIMBA_ENABLE_RESCALE_v0_0_4" if (version, field) == (4, "rescale") else None
            value = read_one(weights, environment, key, kind, default, stored)
        elif first > version and kind == "switch":
            value = False
        setattr(s, field, value if allowed(value) else default)
    s.volume_up = s.volume_up and s.volume > 0
    s.clip_fix = s.clip_fix or s.volume_up
    return s

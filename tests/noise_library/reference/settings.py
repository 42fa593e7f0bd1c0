"""A model's settings: the control file first, then the weight file, then the default."""

import re
from types import SimpleNamespace

from weights import Kind

from .kernels import f32


def _atof(text):
    match = re.match(r"\s*[-+]?(\d+\.?\d*|\.\d+)([eE][-+]?\d+)?", text)
    return float(match.group()) if match else 0.0


def _atoi(text):
    match = re.match(r"\s*[-+]?\d+", text)
    return int(match.group()) if match else 0


class Source:
    def __init__(self, weights, environment, prefix, suffix):
        self.weights, self.environment, self.prefix, self.suffix = weights, environment, prefix, suffix

    def find(self, name, kind, prefix=None, weight_key=None):
        key = (prefix or self.prefix) + name + self.suffix
        if key in self.environment:
            return self.environment[key], None
        record = self.weights.get(weight_key or "CONTROL_" + key)
        return None, record.value if record is not None and record.kind is kind else None

    def real(self, name, default):
        text, stored = self.find(name, Kind.FLOAT)
        return f32(_atof(text)) if text is not None else f32(default if stored is None else stored)

    def whole(self, name, default, prefix=None):
        text, stored = self.find(name, Kind.INT, prefix)
        return _atoi(text) if text is not None else default if stored is None else stored

    def switch(self, name, default, weight_key=None):
        text, stored = self.find(name, Kind.STRING, weight_key=weight_key)
        return text == "TRUE" if text is not None else default if stored is None else stored == "t"

    def text(self, name):
        text, stored = self.find(name, Kind.STRING)
        return text if text is not None else stored


def read_settings(weights, environment, version, prefix):
    """`version` is the class's number, 1 to 6, or "level" for the noise level measure."""
    number = 5 if version == "level" else version
    source = Source(weights, environment, prefix, f"_v0_0_{number}")
    s = SimpleNamespace(skip=False, volume_up=False, rescale=False, speaker_fix=False, rate=None)

    s.smooth = source.real("SMOOT_COEF", 1)
    if not 0 < s.smooth <= 1:
        s.smooth = f32(1)
    s.soft_curve = source.switch("SMOOT_RM_MODIFY", False)
    s.high_frequency = source.switch("HIGH_FREQ_SMOOT", False)
    s.clip_fix = source.switch("ENABLE_CLIP_FIX", False)
    s.clip_point = f32(25000)
    if s.clip_fix:
        s.clip_point = f32(source.whole("CLIP_FIX_POINT", 25000))
        if not 1 <= s.clip_point <= 32768:
            s.clip_point = f32(25000)
    if number >= 5:
        s.skip = source.switch("SKIP_FRAME", False)
        s.volume_up = source.switch("VOLUME_UP", False)
        s.volume = f32(0)
        if s.volume_up:
            s.volume = source.real("VOLUME_UP_PERCENT", 0)
            s.volume_up = bool(0 < s.volume < 200)
            s.clip_fix = s.clip_fix or s.volume_up
    s.gate = source.switch("ENABLE_THRESH_CUT", False)
    s.gate_reference = f32(100)
    if s.gate:
        s.gate_reference = f32(source.whole("THRESH_CUT_REF_EN", 100))
        if not 1 <= s.gate_reference <= 1000:
            s.gate_reference = f32(100)
    s.expand = source.switch("ENABLE_RM_THRESHOLD", False)
    s.threshold = f32(0.5)
    if s.expand:
        s.threshold = source.real("RM_THRESHOLD", 0.5)
        if not 0 < s.threshold <= 1:
            s.threshold = f32(0.5)
    if number == 1:
        s.window_after = source.text("WINDOW_AFTER") or "TRIANGL"
    if number >= 3:
        key = "BRELLIN_NIMBA_ENABLE_RESCALE_v0_0_4" if number == 4 else None
        s.rescale = source.switch("ENABLE_RESCALE", True, weight_key=key)
        s.rescale_amplitude, s.rescale_energy = f32(2000), f32(100)
        # These two hang on the mask threshold's switch, not on the one of rescaling.
        if s.expand:
            s.rescale_amplitude = source.real("RESCALE_REF_AMPL", 2000)
            s.rescale_energy = source.real("RESCALE_REF_EN", 100)
    if number >= 4:
        s.rate = source.whole("COMPRESS_RATE", 2, prefix="NIMBA_")
    if number >= 5 and version != "level":
        name = "BACKGROUND_SPEAKER_FIX"
        s.speaker_fix = source.switch("ENABLE_" + name, False)
        s.cut_start = source.real(name + "_CUT_START_DB", 10)
        s.cut_end = source.real(name + "_CUT_END_DB", 15)
        s.run_frames = int(source.real(name + "_RUN_FRAME_COUNT", 40))
        s.run_min = source.whole(name + "_RUN_MIN_LEN", 2)
        s.utterance = source.real(name + "_UTTERANCE_LEN", 2)
        s.variable_window = source.switch(name + "_VAR_WIND_MODE", True)
    return s

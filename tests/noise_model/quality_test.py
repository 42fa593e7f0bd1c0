#!/usr/bin/env python3
"""What the model that ships must reach on a few clips, so that no worse one goes unseen: quality_test.py LIBRARY MODEL"""

import subprocess
import sys
from pathlib import Path

import numpy as np

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools/noise_model")]

import metrics  # noqa: E402
from cleaners import OurModel  # noqa: E402
from evaluation import sixteen_bit  # noqa: E402
from talvo_audio import Library  # noqa: E402

SPOKEN = {
    "slt": "The boat left the harbour early, and nobody on the shore waved at it.",
    "rms": "Seven large boxes stood in front of the yellow house until the evening.",
    "awb": "She asked whether the shop would open again after the summer holidays.",
}
# The spectrum falls with this power of the frequency.
NOISES = {"white": 0, "pink": 0.5, "brown": 1}
DISTANCE_DB = 5
FLOORS = {"SI-SDR gain, dB": 8.0, "STOI gain": 0.03, "pauses, dB": 18.0, "clean speech kept, dB": 50.0}


def speech(voice):
    spoken = f"flite=text='{SPOKEN[voice].replace(',', chr(92) + ',')}':voice={voice}"
    command = ["ffmpeg", "-v", "error", "-f", "lavfi", "-i", spoken, "-ar", str(metrics.RATE), "-f", "s16le", "-"]
    samples = np.frombuffer(subprocess.check_output(command), "<i2").astype(float)
    # A pause before, in which the noise is alone.
    samples = np.pad(samples, (2 * metrics.RATE, metrics.RATE // 2))
    return samples * (1500 / metrics.active_level(samples))


def noise(power, count):
    spectrum = np.fft.rfft(np.random.default_rng(7).standard_normal(count))
    frequency = np.maximum(np.fft.rfftfreq(count, 1 / metrics.RATE), 50)
    samples = np.fft.irfft(spectrum * frequency**-power, count)
    return samples * (1500 * 10 ** (-DISTANCE_DB / 20) / np.sqrt(np.mean(samples**2)))


def measured(model):
    rows = {name: [] for name in FLOORS}
    for voice in SPOKEN:
        clean = speech(voice)
        rows["clean speech kept, dB"].append(metrics.si_sdr(model.clean(sixteen_bit(clean)), clean))
        for power in NOISES.values():
            mix = sixteen_bit(clean + noise(power, clean.size))
            out = model.clean(mix)
            rows["SI-SDR gain, dB"].append(metrics.si_sdr(out, clean) - metrics.si_sdr(mix, clean))
            rows["STOI gain"].append(metrics.stoi(out, clean) - metrics.stoi(mix, clean))
            rows["pauses, dB"].append(metrics.between_words(out, mix, clean))
    return {name: float(np.mean(values)) for name, values in rows.items()}


reached = measured(OurModel(Library(sys.argv[1]), sys.argv[2]))
for name, floor in FLOORS.items():
    print(f"{name}: {reached[name]:.3f}, at least {floor}")
sys.exit(not all(reached[name] >= floor for name, floor in FLOORS.items()))

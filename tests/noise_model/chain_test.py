#!/usr/bin/env python3
"""The training code's sound chain beside the audio library, with a random model: chain_test.py LIBRARY"""

import sys
import tempfile
from pathlib import Path

import numpy as np

ROOT = Path(__file__).resolve().parents[2]
sys.path[:0] = [str(ROOT / "tools/noise_model"), str(ROOT / "tests/noise_library")]

import chain  # noqa: E402
import cleaners  # noqa: E402
import metrics  # noqa: E402
import model_file  # noqa: E402
from reference import network as reference  # noqa: E402
from reference.cleaners import Model  # noqa: E402
from talvo_audio import Library  # noqa: E402
from weights import read_weights, write_weights  # noqa: E402

LIMIT_DB = -60


def random_parameters(shape, seed=3):
    random = np.random.default_rng(seed)

    def normal(*size, gain):
        return (gain * random.standard_normal(size)).astype(np.float32)

    size, inputs = shape.state, shape.bands * shape.preview
    parameters = {
        "mean": 11 + normal(shape.bands, gain=1), "deviation": 3 + normal(shape.bands, gain=0.2),
        "first_input": normal(inputs, 3 * size, gain=inputs**-0.5), "first_bias": normal(3 * size, gain=0.1),
        "first_state": normal(size, 3 * size, gain=0.4 * size**-0.5),
        "last": normal(size, shape.bands, gain=3 * size**-0.5), "last_bias": normal(shape.bands, gain=0.5),
    }
    for i in range(shape.hidden_layers - 1):
        parameters[f"layers.{2 * i}"] = normal(size, 2 * size, gain=0.7 * size**-0.5)
        parameters[f"layers.{2 * i + 1}"] = normal(2 * size, gain=0.1)
    return parameters


def make_clip(seconds=6):
    random, t = np.random.default_rng(5), np.arange(seconds * chain.RATE) / chain.RATE
    buzz = sum(np.sin(2 * np.pi * k * (130 * t + 2 * np.sin(3 * t))) / k for k in range(1, 30))
    samples = (buzz * (1 + np.sin(2 * np.pi * 3 * t)) + 0.3 * random.standard_normal(t.size)) * 3000
    samples *= np.interp(t, [0, 0.5, 1.5, 2, 4, 4.1, 6], [0, 1, 1, 0.01, 0.01, 8, 1])
    samples[int(2.5 * chain.RATE) : 3 * chain.RATE] = 0
    return np.clip(np.rint(samples), -32768, 32767).astype(np.int16)


def masks(model, bands, shape):
    """Frame by frame with the reference's forward pass."""
    mean, deviation = model.mean, model.deviation
    inputs = chain.stacked((bands - mean) / deviation, mean, deviation, shape)
    state, out = np.zeros(model.state_size, np.float32), []
    for x in inputs.astype(np.float32):
        mask, state = reference.gated(model.network, state, x)
        out.append(mask)
    return np.array(out)


def decibels(difference, whole):
    return 20 * np.log10((np.linalg.norm(difference) + 1e-12) / np.linalg.norm(whole))


def check_library(library_path, shape, folder):
    path = folder / "random.tw"
    records = model_file.records_of(random_parameters(shape), shape)
    # Training knows no rest on zeros, which the clip has.
    del records["CONTROL_TALVO_SKIP_FRAME_v0_0_5"]
    write_weights(path, records)
    clip = make_clip()
    out = cleaners.OurModel(Library(Path(library_path).resolve()), path).clean(clip).astype(np.float64)
    model = Model(read_weights(path), {})
    mine = cleaners.within_chain(clip.astype(np.float32), lambda bands: masks(model, bands, shape), shape)
    edge = clip.size // shape.step * shape.step - shape.step  # behind it the last frame's other half is missing
    mine, out = mine[:edge], out[:edge]
    # The library cuts to whole numbers, toward zero; a quiet part must agree as well as the whole.
    mine = np.trunc(np.clip(mine, -32768, 32767))
    parts = {"whole": slice(None), "quiet": slice(2 * chain.RATE, int(2.4 * chain.RATE))}
    good = True
    for name, part in parts.items():
        limit = LIMIT_DB if name == "whole" else -30
        difference = decibels(mine[part] - out[part], mine[part])
        print(f"library beside training code, {name}: {difference:.1f} dB")
        good &= difference < limit and np.abs(mine[part] - out[part]).max() <= 2
    return good


def check_torch(shape):
    try:
        import torch
        from network import Network
    except ImportError:
        print("torch isn't installed: its network isn't checked")
        return True
    parameters = random_parameters(shape)
    network = Network(shape, parameters["mean"], parameters["deviation"])
    network.load_state_dict({name: torch.from_numpy(value) for name, value in parameters.items()})
    clip = make_clip(3).astype(np.float32)
    bands = chain.features(chain.spectra(clip, shape), chain.rescaling(clip, shape), shape)
    difference = np.abs(network.run(bands) - masks(Model(model_file.records_of(parameters, shape), {}), bands, shape)).max()
    print(f"torch's network beside the reference: {difference:.1e}")
    return bool(difference < 1e-4)


def check_packing(shape):
    """What is packed comes back as it was, and rounding moves a weight by less than one part in 256."""
    parameters = random_parameters(shape)
    back = model_file.parameters_of(model_file.records_of(parameters, shape), shape)
    good = back.keys() == parameters.keys() and all(np.array_equal(back[k], parameters[k]) for k in back)
    rounded = model_file.in_bfloat16(parameters)
    for name, values in parameters.items():
        matrix = values.ndim == 2
        good &= bool(np.all(np.abs(rounded[name] - values) <= matrix * np.abs(values) / 256))
        good &= not matrix or not np.any(rounded[name].view(np.uint32) & 0xFFFF)
    print(f"packing: {'as it was' if good else 'NOT as it was'}")
    return good


def check_metrics():
    """Known values: a tenth of independent noise is 20 dB; nothing changed is 1."""
    random = np.random.default_rng(1)
    clean = random.standard_normal(3 * chain.RATE) * np.repeat(random.uniform(0.01, 1, 60), chain.RATE // 20)
    noise = random.standard_normal(clean.size) * np.sqrt(np.mean(clean**2))
    ratio = metrics.si_sdr(3 * (clean + 0.1 * noise), clean)
    intelligible = [metrics.stoi(clean + g * noise, clean) for g in (0, 0.3, 1, 3)]
    print(f"SI-SDR {ratio:.2f} dB, STOI {' '.join(f'{s:.3f}' for s in intelligible)}")
    falling = all(a > b for a, b in zip(intelligible, intelligible[1:]))
    return abs(ratio - 20) < 0.2 and abs(intelligible[0] - 1) < 1e-6 and falling


def main():
    shape = chain.Shape(state=48)
    with tempfile.TemporaryDirectory() as folder:
        results = (check_library(sys.argv[1], shape, Path(folder)), check_torch(shape), check_packing(shape),
                   check_metrics())
    return 0 if all(results) else 1


if __name__ == "__main__":
    sys.exit(main())

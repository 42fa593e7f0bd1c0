"""The model file: what the network learnt, and the settings that it was trained for."""

import numpy as np

import chain
from weights import Kind, Record

VERSION = "0.0.5"


def _settings(shape):
    """The library takes the references only where the mask's threshold is on; this one is too low to be heard."""
    values = {
        "ENABLE_RM_THRESHOLD": Record(Kind.STRING, "t"),
        "RM_THRESHOLD": Record(Kind.FLOAT, chain.MASK_THRESHOLD),
        "RESCALE_REF_AMPL": Record(Kind.FLOAT, shape.reference_amplitude),
        "RESCALE_REF_EN": Record(Kind.FLOAT, shape.reference_energy),
    }
    # The noise cleaner and the noise level measure read the same settings under different names.
    records = {f"CONTROL_{prefix}_{name}_v0_0_5": r for prefix in ("TALVO", "NIMBA") for name, r in values.items()}
    records["CONTROL_NIMBA_COMPRESS_RATE_v0_0_5"] = Record(Kind.INT, shape.compression)
    return records


def records_of(parameters, shape):
    """The records of a model; `parameters` are the network's, by name, as arrays."""
    size = shape.state

    def three(name):
        joined = np.asarray(parameters[name])
        return [joined[..., i * size : (i + 1) * size] for i in range(3)]

    # The library puts the state in front of the features.
    first = [np.concatenate(pair) for pair in zip(three("first_state"), three("first_input"))]
    bias = three("first_bias")
    nonlinear, linear, nonlinear_bias, linear_bias = [first[0]], [first[1]], [bias[0]], [bias[1]]
    for i in range(0, 2 * (shape.hidden_layers - 1), 2):
        matrix, vector = (np.asarray(parameters[f"layers.{i + k}"]) for k in (0, 1))
        nonlinear.append(matrix[:, :size])
        linear.append(matrix[:, size:])
        nonlinear_bias.append(vector[:size])
        linear_bias.append(vector[size:])
    return {
        "Version": Record(Kind.STRING, VERSION),
        "SampleRate": Record(Kind.INT, chain.RATE),
        "FrameLength": Record(Kind.INT, shape.frame),
        "Step": Record(Kind.INT, shape.step),
        "FiltrBegin": Record(Kind.INT, 0),
        "FiltrEnd": Record(Kind.INT, shape.bins),
        "PreviewFrames": Record(Kind.INT, shape.preview),
        "CoefficientNumber": Record(Kind.INT, shape.bins + 1),
        "MU": Record(Kind.VECTOR, np.asarray(parameters["mean"])),
        "SD": Record(Kind.VECTOR, np.asarray(parameters["deviation"])),
        "WeightLinear": Record(Kind.MATRICES, linear),
        "BaesLinear": Record(Kind.VECTORS, linear_bias),
        "WeightNonLinear": Record(Kind.MATRICES, [*nonlinear, np.asarray(parameters["last"])]),
        "BaesNonLinear": Record(Kind.VECTORS, [*nonlinear_bias, np.asarray(parameters["last_bias"])]),
        "WeightGRU": Record(Kind.MATRIX, first[2]),
        "BaesGRU": Record(Kind.VECTOR, bias[2]),
        **_settings(shape),
    }

"""The model file: what the network learnt, and the settings that it was trained for."""

import numpy as np

import chain
from weights import Kind, ModelFileError, Record

VERSION = "0.0.5"


def in_bfloat16(parameters):
    """The network's parameters with each matrix rounded to bfloat16, the precision it was trained with.

    The library works with half as many bytes then, and they stay in the processor's inner caches.
    """

    def rounded(values):
        bits = np.ascontiguousarray(values, np.float32).view(np.uint32)
        return ((bits + 0x7FFF + (bits >> 16 & 1)) & 0xFFFF0000).astype(np.uint32).view(np.float32)

    return {name: rounded(values) if np.ndim(values) == 2 else values for name, values in parameters.items()}


def _settings(shape):
    """The library takes the references only where the mask's threshold is on."""
    values = {
        "ENABLE_RM_THRESHOLD": Record(Kind.STRING, "t"),
        "RM_THRESHOLD": Record(Kind.FLOAT, chain.MASK_THRESHOLD),
        "RESCALE_REF_AMPL": Record(Kind.FLOAT, shape.reference_amplitude),
        "RESCALE_REF_EN": Record(Kind.FLOAT, shape.reference_energy),
    }
    # The noise cleaner and the noise level measure read the same settings under different names.
    records = {f"CONTROL_{prefix}_{name}_v0_0_5": r for prefix in ("TALVO", "NIMBA") for name, r in values.items()}
    # Silence of zeros is in no recording that was trained on: after it noise would pass for speech for seconds.
    records["CONTROL_TALVO_SKIP_FRAME_v0_0_5"] = Record(Kind.STRING, "t")
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


def parameters_of(records, shape):
    """The inverse: the network's parameters of a packed model, to go on training from."""
    size = shape.state
    expected = {"Version": VERSION, "FrameLength": shape.frame, "Step": shape.step, "PreviewFrames": shape.preview,
                "CONTROL_NIMBA_COMPRESS_RATE_v0_0_5": shape.compression}
    for key, value in expected.items():
        if key not in records or records[key].value != value:
            raise ModelFileError(f"the model's {key} isn't {value}")

    nonlinear, nonlinear_bias = records["WeightNonLinear"].value, records["BaesNonLinear"].value
    linear, linear_bias = records["WeightLinear"].value, records["BaesLinear"].value
    if [len(nonlinear), nonlinear[0].shape[1]] != [shape.hidden_layers + 1, size]:
        raise ModelFileError("the model's layers have other sizes")
    first = np.concatenate([nonlinear[0], linear[0], records["WeightGRU"].value], axis=1)
    parameters = {
        "mean": records["MU"].value, "deviation": records["SD"].value,
        "first_state": first[:size], "first_input": first[size:],
        "first_bias": np.concatenate([nonlinear_bias[0], linear_bias[0], records["BaesGRU"].value]),
        "last": nonlinear[-1], "last_bias": nonlinear_bias[-1],
    }
    for i in range(1, shape.hidden_layers):
        parameters[f"layers.{2 * i - 2}"] = np.concatenate([nonlinear[i], linear[i]], axis=1)
        parameters[f"layers.{2 * i - 1}"] = np.concatenate([nonlinear_bias[i], linear_bias[i]])
    return parameters

"""Float kernels."""

import numpy as np

f32 = np.float32
f64 = np.float64


def floats(values) -> np.ndarray:
    return np.asarray(values, dtype=f32)


def vector_times_matrix(vector, matrix, bias):
    """bias + vector * matrix, each output adding its products in row order, in single precision."""
    assert matrix.shape[0] == vector.size and vector.size != 0 and bias.size == matrix.shape[1]
    terms = np.vstack([bias, vector[:, None] * matrix])
    return np.add.accumulate(terms, axis=0, dtype=f32)[-1]


def sigmoid(x):
    with np.errstate(over="ignore"):
        return floats(1.0 / (1.0 + np.exp(-x.astype(f64))))


def relu_plus(a, b):
    assert a.size == b.size != 0
    return np.maximum(a, f32(0)) + b


def blend(v1, gamma, v2):
    """gamma of v1 and the rest of v2."""
    assert v1.size == v2.size == gamma.size
    return (f32(1) - gamma) * v2 + v1 * gamma


def rms(a):
    return f32(np.sqrt(np.sum(a * a, dtype=f64) / a.size) + 1e-6)


def mean_square(a) -> float:
    assert a.size > 1
    wide = a.astype(f64)
    return float(np.sum(wide * wide) / a.size)

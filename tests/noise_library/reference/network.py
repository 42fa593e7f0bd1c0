"""The forward passes. Weights come as an object with the lists of a weight file as attributes."""

import numpy as np

from .kernels import blend, floats, relu_plus, rms, sigmoid, vector_times_matrix


def _layer(w, i, x):
    return relu_plus(vector_times_matrix(x, w.wnl[i], w.bnl[i]), vector_times_matrix(x, w.wl[i], w.bl[i]))


def _output(w, x):
    return sigmoid(vector_times_matrix(x, w.wnl[-1], w.bnl[-1]))


def feed_forward(w, x):
    assert len(w.wl) == len(w.wnl) == len(w.bl) == len(w.multiplier) + 1 == len(w.reducer) + 1
    for i in range(len(w.wnl) - 1):
        x = _layer(w, i, x) * w.multiplier[i] - w.reducer[i]
    return _output(w, x)


def recurrent(w, state, x):
    """Gives the mask and the new state."""
    state = np.concatenate([state, x])
    for i in range(len(w.wnl) - 1):
        state = _layer(w, i, state)
    return _output(w, state), state


def gated(w, state, x):
    x = np.concatenate([state, x])
    update = sigmoid(vector_times_matrix(x, w.wgru, w.bgru))
    for i in range(len(w.wnl) - 1):
        x = _layer(w, i, x)
        if i == 0:
            state = blend(x, update, state)
    return _output(w, x), state


def _normalise(x, gain, bias):
    x = x - floats(np.sum(x, dtype=np.float64) / x.size)
    return x / rms(x) * gain + bias


def gated_normalised(w, state, x):
    joined = np.concatenate([state, x])
    update = sigmoid(vector_times_matrix(joined, w.wgru, w.bgru))
    reset = sigmoid(vector_times_matrix(joined, w.wgru_reset, w.bgru_reset))
    x = np.concatenate([state * reset, x])
    for i in range(len(w.wnl) - 1):
        a = vector_times_matrix(x, w.wnl[i], w.bnl[i])
        b = vector_times_matrix(x, w.wl[i], w.bl[i])
        b = _normalise(b, w.gain_linear[i], w.bias_linear[i])
        a = _normalise(a, w.gain_nonlinear[i], w.bias_nonlinear[i])
        x = relu_plus(a, b)
        if i == 0:
            x = state = blend(state, update, x)
    return _output(w, x), state

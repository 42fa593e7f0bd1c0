"""The forward passes. Weights come as an object with the lists of a weight file as attributes."""

import numpy as np


def _affine(x, matrix, bias):
    assert matrix.shape == (x.size, bias.size)
    return np.asarray(x, np.float64) @ matrix + bias


def _sigmoid(x):
    return 1 / (1 + np.exp(-x))


def _branches(w, i, x):
    return _affine(x, w.wnl[i], w.bnl[i]), _affine(x, w.wl[i], w.bl[i])


def _relu_plus(a, b):
    return np.maximum(a, 0) + b


def _output(w, x):
    return _sigmoid(_affine(x, w.wnl[-1], w.bnl[-1]))


def feed_forward(w, x):
    assert len(w.wl) == len(w.wnl) == len(w.bl) == len(w.multiplier) + 1 == len(w.reducer) + 1
    for i in range(len(w.wnl) - 1):
        x = _relu_plus(*_branches(w, i, x)) * w.multiplier[i] - w.reducer[i]
    return _output(w, x)


def recurrent(w, state, x):
    state = np.concatenate([state, x])
    for i in range(len(w.wnl) - 1):
        state = _relu_plus(*_branches(w, i, state))
    return _output(w, state), state


def gated(w, state, x):
    x = np.concatenate([state, x])
    update = _sigmoid(_affine(x, w.wgru, w.bgru))
    for i in range(len(w.wnl) - 1):
        x = _relu_plus(*_branches(w, i, x))
        if i == 0:
            state = (1 - update) * state + x * update
    return _output(w, x), state


def _normalise(x, gain, bias):
    x = x - np.mean(x)
    return x / (np.sqrt(np.mean(x * x)) + 1e-6) * gain + bias


def gated_normalised(w, state, x):
    joined = np.concatenate([state, x])
    update = _sigmoid(_affine(joined, w.wgru, w.bgru))
    reset = _sigmoid(_affine(joined, w.wgru_reset, w.bgru_reset))
    x = np.concatenate([state * reset, x])
    for i in range(len(w.wnl) - 1):
        a, b = _branches(w, i, x)
        x = _relu_plus(_normalise(a, w.gain_nonlinear[i], w.bias_nonlinear[i]),
                       _normalise(b, w.gain_linear[i], w.bias_linear[i]))
        if i == 0:
            x = state = (1 - update) * x + state * update
    return _output(w, x), state

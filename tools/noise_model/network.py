"""The network of a "0.0.5" model, for whole clips at once.

Each hidden layer adds a rectified and a straight map of its input. The first one also sees the
state, a gate decides how much of its output goes into the next state, and its output goes on
ungated; so only the first layer runs frame by frame.
"""

import time
from functools import lru_cache

import numpy as np
import torch
from torch import nn


@lru_cache
def fast_type(device):
    """What products are made in while training: bfloat16, but not on a processor that is slower with it."""
    if device != "cpu":
        return torch.bfloat16
    seconds = {}
    for kind in (torch.bfloat16, torch.float32):
        a, b = torch.ones(512, 256, dtype=kind), torch.ones(256, 512, dtype=kind)
        torch.mm(a, b)
        begin = time.process_time()
        torch.mm(a, b)
        seconds[kind] = time.process_time() - begin
    return min(seconds, key=seconds.get)


class _Recurrence(torch.autograd.Function):
    """The first layer over time, with its gradient written out: torch's own is several times slower."""

    @staticmethod
    def forward(ctx, from_input, state, weights):
        count, batch, width = from_input.shape
        size, weights = width // 3, weights.to(from_input.dtype)
        low = weights.to(fast_type(weights.device.type)) if ctx.needs_input_grad[0] else weights
        device = from_input.device
        out, gates = (torch.empty(count, batch, size, device=device) for _ in range(2))
        states = torch.empty(count + 1, batch, size, device=device)
        states[0] = state
        positive = torch.empty(count, batch, size, dtype=torch.bool, device=device)
        for t in range(count):
            u = torch.mm(states[t].to(low.dtype), low).float().add_(from_input[t])
            torch.gt(u[:, :size], 0, out=positive[t])
            torch.add(u[:, :size].clamp_(min=0), u[:, size : 2 * size], out=out[t])
            torch.sigmoid(u[:, 2 * size :], out=gates[t])
            torch.lerp(states[t], out[t], gates[t], out=states[t + 1])
        ctx.save_for_backward(out, gates, states, positive, low)
        return out, states[-1].clone()

    @staticmethod
    def backward(ctx, d_out, _):
        out, gates, states, positive, low = ctx.saved_tensors
        count, batch, size = out.shape
        # What a step passes on to its inputs, as far as it doesn't depend on the steps after it.
        slope = (out - states[:-1]) * gates * (1 - gates)
        d_input = torch.empty(count, batch, 3 * size, device=out.device)
        d_state = torch.zeros(batch, size, device=out.device)
        back = low.t().contiguous()
        for t in range(count - 1, -1, -1):
            du = d_input[t]
            straight = du[:, size : 2 * size]
            torch.addcmul(d_out[t], d_state, gates[t], out=straight)
            torch.mul(straight, positive[t], out=du[:, :size])
            torch.mul(d_state, slope[t], out=du[:, 2 * size :])
            d_state = d_state - d_state * gates[t] + torch.mm(du.to(low.dtype), back).float()
        flat = d_input.reshape(-1, 3 * size)
        d_weights = torch.mm(states[:-1].reshape(-1, size).t().to(low.dtype), flat.to(low.dtype)).float()
        return d_input, None, d_weights


def _product(x, weight, bias, fast):
    if not fast:
        return torch.addmm(bias, x, weight)
    low = fast_type(x.device.type)
    return torch.mm(x.to(low), weight.to(low)).float() + bias


class Network(nn.Module):
    """`mean` and `deviation` normalise the bands; they are no parameters, but belong to the model."""

    def __init__(self, shape, mean, deviation):
        super().__init__()
        self.shape = shape
        self.register_buffer("mean", torch.as_tensor(mean, dtype=torch.float32))
        self.register_buffer("deviation", torch.as_tensor(deviation, dtype=torch.float32))
        size, inputs = shape.state, shape.bands * shape.preview

        def matrix(rows, cols, gain=0.7):
            return nn.Parameter(torch.randn(rows, cols) * (gain / rows**0.5))

        # Rectified, straight and gate side by side.
        self.first_input = matrix(inputs, 3 * size)
        self.first_state = matrix(size, 3 * size, 0.4)
        self.first_bias = nn.Parameter(torch.cat([torch.zeros(2 * size), torch.linspace(-4, 1, size)]))
        self.layers = nn.ParameterList()
        for _ in range(shape.hidden_layers - 1):
            self.layers.extend([matrix(size, 2 * size), nn.Parameter(torch.zeros(2 * size))])
        self.last = matrix(size, shape.bands, 0.5)
        self.last_bias = nn.Parameter(torch.ones(shape.bands))

    def stacked(self, bands, before=None):
        """Normalised frames with those before them, [clip, frame, band]; `before` are the last ones of the part before."""
        x = (bands - self.mean) / self.deviation
        if before is None:
            before = (-self.mean / self.deviation).expand(x.shape[0], self.shape.preview - 1, -1)
        padded = torch.cat([before, x], dim=1)
        parts = [padded[:, i : i + x.shape[1]] for i in range(self.shape.preview)]
        return torch.cat(parts, dim=2), padded[:, x.shape[1] :]

    def forward(self, inputs, state):
        """The mask before it is squared, [clip, frame, band], and the state for what follows."""
        batch, count, width = inputs.shape
        size, fast = self.shape.state, self.training
        flat = inputs.transpose(0, 1).reshape(-1, width)
        u = _product(flat, self.first_input, self.first_bias, fast).view(count, batch, -1)
        x, state = _Recurrence.apply(u, state, self.first_state)
        x = x.view(-1, size)
        for weight, bias in zip(self.layers[0::2], self.layers[1::2]):
            u = _product(x, weight, bias, fast)
            x = u[:, :size].relu() + u[:, size:]
        mask = torch.sigmoid(_product(x, self.last, self.last_bias, fast))
        return mask.view(count, batch, -1).transpose(0, 1), state

    def start(self, batch):
        return torch.zeros(batch, self.shape.state, device=self.mean.device)

    @torch.no_grad()
    def run(self, bands):
        """The squared-to-be mask of one clip, [frame, band], for its unnormalised bands."""
        self.eval()
        inputs, _ = self.stacked(torch.as_tensor(np.ascontiguousarray(bands), device=self.mean.device)[None])
        return self(inputs, self.start(1))[0][0].cpu().numpy()

#!/usr/bin/env python3
"""Compares libtalvo_audio.so with the reference, case by case, each in a process of its own: some must abort."""

import argparse
import json
import multiprocessing.connection
import os
import signal
import sys
import tempfile
from pathlib import Path

import numpy as np

from comparison_cases import cases
from reference import make_models
from reference.session import Session
from talvo_audio import Library
from weights import write_control, write_weights

# Both sides round to single precision, about 1e-7 of the largest value of a frame, at different places:
# the transforms differ, and so do the last bits of logarithms and square roots. The network and the
# mask's curves magnify that by a few ten times, and a recurrence carries it on.
# Float samples: relative to the peak of the result within about 50 ms. 16-bit samples: truncation may turn
# rounding into one step, but only where a sample lies at a whole number, so at most STEPS of all samples,
# and never two steps. Probabilities and levels: absolute.
SAMPLES = 5e-5
STEPS = 1e-2
PROBABILITY = 2e-5
DECIBELS = 1e-4


def make_signal(rate, seconds, seed=7):
    """Syllables of harmonics over noise, with a fade, digital silence, and a stretch beyond full scale."""
    random = np.random.default_rng(seed)
    t = np.arange(int(rate * seconds)) / rate
    pitch = 2 * np.pi * (140 * t + 3 * np.sin(2 * np.pi * 1.7 * t))
    harmonics = sum(np.sin(k * pitch + k * k) / k for k in range(1, min(25, int(rate / 2 / 220))))
    x = 0.1 * harmonics * (1 + np.sin(2 * np.pi * 4.3 * t)) + 0.006 * random.standard_normal(t.size)
    u = t / seconds
    x *= np.interp(u, [0, 0.03, 0.3, 0.45, 0.5, 0.58, 0.6, 1], [0, 1, 1, 0.02, 0.02, 0.3, 1, 1])
    x[(u > 0.5) & (u < 0.56)] = 0
    x[(u > 0.7) & (u < 0.75)] *= 9
    return x.astype(np.float32)


def make_model_file(case, folder):
    """Gives the file to load, its records and its environment as the library should see them."""

    def named(settings, key):
        return {k if k[:6] in ("NIMBA_", "TALVO_") else key(case.version, k, case.kind): v for k, v in settings.items()}

    records = make_models.make_model(case.version, **case.model)
    for key, value in named(case.weight_settings, make_models.weight_key).items():
        records[key] = make_models.weight_record(value)
    settings = named(case.settings, make_models.setting_key)
    environment = {key: make_models.control_text(value) for key, value in settings.items()}
    control = case.extension == ".cfg"
    weights = folder / ("model.nmw" if control else "model" + case.extension)
    write_weights(weights, records)
    if not control:
        return weights, records, environment
    write_control(folder / "model.cfg", [("WEIGHT", str(weights)), *environment.items()])
    return folder / "model.cfg", records, environment


def sample_deviation(result, expected, rate):
    """The worst deviation in parts of the expected result's peak around it."""
    block = rate // 20
    padded = np.pad(np.abs(expected), (block, -expected.size % block + block)).reshape(-1, block).max(axis=1)
    peaks = np.repeat(np.max([padded[:-2], padded[1:-1], padded[2:]], axis=0), block)[: expected.size]
    return float(np.max(np.abs(result.astype(np.float64) - expected) / np.maximum(peaks, 1e-6)))


def compare(case, library_path, folder):
    """(deviation, tolerance) of one case."""
    path, records, environment = make_model_file(case, folder)
    library = Library(library_path)
    library.set_model(path, "model")
    mine = Session(case.kind, records, environment, case.in_rate, case.out_rate, case.duration)
    theirs = library.session(case.kind, case.in_rate, case.out_rate, case.duration, "model")
    x = make_signal(case.in_rate, case.seconds)
    if case.int16:
        x = np.clip(np.rint(x * 32768), -32768, 32767).astype(np.int16)
    frames = [x[i : i + mine.in_size] for i in range(0, x.size - mine.in_size + 1, mine.in_size)]
    result, expected = [], []
    for turn in range(case.resets + 1):
        if turn:
            theirs.reset()
            mine.reset()
        result += [theirs.process(frame) for frame in frames]
        if not case.aborts:
            expected += [mine.process(frame) for frame in frames]
    theirs.close()
    result, expected = np.hstack(result), np.hstack(expected)
    if not np.all(np.isfinite(result)) or np.ptp(expected) == 0:
        raise ValueError("the result isn't finite, or the case shows nothing")
    distance = np.abs(result.astype(np.float64) - expected)
    if case.kind != "clean":
        return float(distance.max()), PROBABILITY if case.kind == "vad" else DECIBELS
    if case.int16:
        return (float(distance.max()), 1.0) if distance.max() > 1 else (float(np.mean(distance > 0)), STEPS)
    return sample_deviation(result, expected, case.out_rate), SAMPLES


def work(case, library_path, folder):
    """A case in its process; what the library prints goes to a file in the folder."""
    log = os.open(folder / "log", os.O_CREAT | os.O_WRONLY | os.O_APPEND)
    os.dup2(log, 1)
    os.dup2(log, 2)
    (folder / "result").write_text(json.dumps(compare(case, library_path, folder)))


def judge(case, folder, exit_code):
    """(whether the case is good, what to print)."""
    log = (folder / "log").read_text(errors="replace")
    if case.aborts:
        good = exit_code == -signal.SIGABRT and case.aborts in log
        return good, "aborts" if good else f"didn't abort with {case.aborts!r} (exit code {exit_code})\n{log}"
    if exit_code != 0:
        return False, f"ended with exit code {exit_code}\n{log}"
    deviation, tolerance = json.loads((folder / "result").read_text())
    good = deviation <= tolerance
    return good, f"{deviation:8.1e} of {tolerance:.0e}" + ("" if good else f"\n{case}")


def run(chosen, library_path, jobs):
    failed = 0
    with tempfile.TemporaryDirectory() as root:
        running, left = {}, list(enumerate(chosen))
        while left or running:
            while left and len(running) < jobs:
                number, case = left.pop(0)
                folder = Path(root) / str(number)
                folder.mkdir()
                process = multiprocessing.get_context("fork").Process(target=work, args=(case, library_path, folder))
                process.start()
                running[process.sentinel] = process, case, folder
            process, case, folder = running.pop(multiprocessing.connection.wait(running)[0])
            process.join()
            good, text = judge(case, folder, process.exitcode)
            failed += not good
            verdict, form = "ok" if good else "FAIL", "16 bit" if case.int16 else "float"
            print(f"{verdict:4}  {case.kind:5}  {case.version:9}  {form:6}  {case.name:50}  {text}", flush=True)
    print(f"{len(chosen)} cases, {failed} failed")
    return 1 if failed else 0


def main():
    parser = argparse.ArgumentParser(description="Compares libtalvo_audio.so with the reference.")
    parser.add_argument("library", type=Path)
    parser.add_argument("--all", action="store_true", help="every combination; takes minutes")
    parser.add_argument("--only", default="", help="cases with this text in kind, version or name")
    parser.add_argument("--jobs", type=int, default=os.cpu_count() or 1)
    arguments = parser.parse_args()
    chosen = [c for c in cases(arguments.all) if arguments.only in f"{c.kind} {c.version} {c.name}"]
    if not chosen:
        parser.error("no case has that text")
    return run(chosen, arguments.library.resolve(), max(1, arguments.jobs))


if __name__ == "__main__":
    sys.exit(main())

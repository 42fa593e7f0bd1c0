"""Notes of real instruments from a SoundFont 2 file, for music as noise."""

import re
import struct

import numpy as np

from audio_files import RATE

HEADER = struct.Struct("<20sIIIIIBbHH")
TONES = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}
SCALES = ((0, 2, 4, 5, 7, 9, 11), (0, 2, 3, 5, 7, 8, 10), (0, 3, 5, 7, 10), tuple(range(12)))
FADE = RATE // 50


def _chunk(data, name):
    at = data.index(name)
    return data[at + 8 : at + 8 + struct.unpack("<I", data[at + 4 : at + 8])[0]]


class SoundFont:
    def __init__(self, path):
        data = path.read_bytes()
        self.samples = np.frombuffer(_chunk(data, b"smpl"), "<i2")
        self.instruments = {}  # name: [(pitch in half tones, first, end, loop's first, loop's end, rate)]
        for name, first, end, loop, loop_end, rate, _, _, _, _ in HEADER.iter_unpack(_chunk(data, b"shdr")):
            name = name.split(b"\0")[0].decode("latin-1")
            note = re.fullmatch(r"(.*?)[ _-]*([A-Ga-g])(#?) ?(\d) ?(\(?[LR]\)?)?", name)
            if note and rate > 8000:
                pitch = 12 * int(note[4]) + TONES[note[2].upper()] + len(note[3])
                self.instruments.setdefault(note[1], []).append((pitch, first, end, loop, loop_end, rate))
        self.instruments = {name: notes for name, notes in self.instruments.items() if len(notes) >= 4}

    def _note(self, name, pitch, count):
        nearest, first, end, loop, loop_end, rate = min(self.instruments[name], key=lambda n: abs(n[0] - pitch))
        place = np.arange(count) * (rate / RATE * 2 ** ((pitch - nearest) / 12))
        if loop_end - loop > 16:
            place = np.where(place >= loop_end - first, loop - first + (place - (loop - first)) % (loop_end - loop), place)
        place = place[place < end - first - 1].astype(int)
        note = self.samples[first + place].astype(np.float64)
        size = min(FADE, note.size)
        note[note.size - size :] *= np.linspace(1, 0, size)
        return note

    def piece(self, random, count):
        """One to three instruments that play in one key, anything from held notes to quick runs."""
        out = np.zeros(count)
        scale, key = SCALES[random.integers(len(SCALES))], random.integers(12)
        for name in random.choice(sorted(self.instruments), random.integers(1, 4), replace=False):
            pitches = [n[0] for n in self.instruments[name]]
            allowed = [p for p in range(min(pitches) - 2, max(pitches) + 3) if (p - key) % 12 in scale]
            length, chord = np.exp(random.uniform(np.log(0.15), np.log(4))), random.integers(1, 4)
            at, step, voice = 0, random.integers(len(allowed)), random.uniform(0.2, 1)
            while at < count:
                size = min(int(length * random.choice((0.5, 1, 1, 2)) * RATE) + FADE, count - at)
                for k in range(chord):
                    note = self._note(name, allowed[(step + 2 * k) % len(allowed)], size)
                    out[at : at + note.size] += voice * random.uniform(0.5, 1) * note
                step = int(np.clip(step + random.integers(-3, 4), 0, len(allowed) - 1))
                at += int(size * random.uniform(0.8, 1)) + (RATE // 2 if random.random() < 0.1 else 0)
        return out if np.abs(out).max() > 0 else self.piece(random, count)

"""The voices of Debian's speech synthesisers, and what they say.

A speaker belongs to one split, also where two programs have a voice of the same person. Natural
voices are made of recordings (diphones, units or trained models); espeak-ng's are computed from
rules, sound buzzier, and serve to widen the range of sounds, pitches and speeds.
"""

import shutil
import subprocess
import tempfile
from dataclasses import dataclass
from pathlib import Path

import numpy as np

from audio_files import RATE, read_audio
from texts import sentence

SPLITS = ("train", "development", "test")


@dataclass(frozen=True)
class Voice:
    program: str  # "flite", "festival" or "espeak-ng"
    name: str
    split: str
    script: str = "latin"
    female: bool = False
    seconds: int = 0  # of speech to make, in the full size

    @property
    def natural(self):
        return self.program != "espeak-ng"

    @property
    def label(self):
        return f"{self.program}_{self.name}".replace("/", "_").replace(" ", "_")


NATURAL = (
    Voice("flite", "slt", "train", "english", True, 1700),
    Voice("flite", "awb", "train", "english", False, 1200),
    Voice("flite", "kal16", "train", "english", False, 500),
    Voice("festival", "cmu_us_slt_arctic_hts", "train", "english", True, 900),
    Voice("festival", "kal_diphone", "train", "english", False, 500),
    Voice("festival", "lp_diphone", "train", "latin", True, 1500),
    Voice("festival", "suo_fi_lj_diphone", "train", "latin", True, 1500),
    Voice("festival", "pc_diphone", "train", "latin", False, 900),
    Voice("festival", "czech_krb", "train", "latin", False, 900),
    Voice("festival", "czech_ph", "train", "latin", False, 900),
    Voice("festival", "hindi_NSK_diphone", "train", "hindi", False, 900),
    Voice("festival", "marathi_NSK_diphone", "train", "hindi", False, 700),
    Voice("festival", "telugu_NSK_diphone", "train", "telugu", False, 900),
    Voice("festival", "msu_ru_nsh_clunits", "train", "cyrillic", False, 900),
    Voice("festival", "ked_diphone", "development", "english", False, 200),
    Voice("festival", "czech_dita", "development", "latin", True, 300),
    Voice("festival", "czech_machac", "development", "latin", False, 200),
    Voice("flite", "rms", "test", "english", False, 300),
    Voice("festival", "upc_ca_ona_hts", "test", "latin", True, 400),
    Voice("festival", "hy_fi_mv_diphone", "test", "latin", False, 200),
)

LANGUAGES = {
    "train": "en-us en-gb-scotland de fr-fr es it pt-br nl da nb pl cs hu ro tr id hr et lt sw eo af cy".split(),
    "development": ["en-gb-x-rp", "es-419", "sk", "lv"],
    "test": ["en-029", "sv", "ca", "pt", "sl"],
}
VARIANTS = {
    "train": """f2 f3 f5 m1 m3 m4 m8 Alicia Annie anika belinda linda steph2 aunty Andy Diogo Gene Henrique Hugo Jacky Lee
        Mario Michael Mike adam antonio boris david ed gustave iven john marcelo max michel norbert pablo quincy rob sandro
        travis victor zac klatt klatt2 klatt4 f2 f5 Alicia linda""".split(),
    "development": "f1 m2 shelby Marco benjamin klatt3".split(),
    "test": "f4 m5 m7 steph paul edward2 Denis klatt5".split(),
}
COMPUTED_SECONDS = {"train": 4500, "development": 300, "test": 500}


def computed_voices(split):
    """Every variant of a split, each with a language of that split."""
    languages, variants = LANGUAGES[split], VARIANTS[split]
    seconds = COMPUTED_SECONDS[split] // len(variants)
    for i, variant in enumerate(variants):
        language = languages[i % len(languages)]
        script = "english" if language.startswith("en") else "latin"
        yield Voice("espeak-ng", f"{language}+{variant}", split, script, variant[0] == "f", seconds)


def voices(split):
    return [v for v in NATURAL if v.split == split] + list(computed_voices(split))


def _festival(voice, texts, folder):
    """All sentences in one process, since loading a voice takes longer than speaking."""
    script = folder / "speak.scm"
    lines = [f"(voice_{voice.name})"]
    for i, text in enumerate(texts):
        lines.append(f'(utt.save.wave (utt.synth (Utterance Text "{text}")) "{folder}/{i}.wav" \'riff)')
    script.write_text("\n".join(lines) + "\n", encoding="iso-8859-2" if voice.name.startswith("czech") else "utf-8")
    # A sentence that a voice can't speak ends the process; those before it are kept.
    subprocess.run(["festival", "-b", str(script)], capture_output=True, check=False)


def _flite(voice, texts, folder):
    for i, text in enumerate(texts):
        subprocess.run(["flite", "-voice", voice.name, "-t", text, "-o", str(folder / f"{i}.wav")],
                       capture_output=True, check=False)


def _espeak(voice, texts, folder, random):
    for i, text in enumerate(texts):
        pitch, speed = random.integers(20, 81), random.integers(115, 215)
        subprocess.run(["espeak-ng", "-v", voice.name, "-p", str(pitch), "-s", str(speed), "-w", str(folder / f"{i}.wav"),
                        text], capture_output=True, check=False)


def trim(samples):
    """Without the silence around the speech, which is put back by the mixing, more or less of it."""
    size = RATE // 100
    frames = samples[: samples.size // size * size].astype(np.float64).reshape(-1, size)
    level = np.sqrt(np.mean(frames**2, axis=1))
    loud = np.flatnonzero(level > 0.01 * level.max(initial=0) + 1e-9)
    if loud.size == 0:
        return samples[:0]
    return samples[max(loud[0] - 3, 0) * size : (loud[-1] + 8) * size]


def missing_programs():
    return [p for p in ("flite", "festival", "espeak-ng", "ffmpeg") if shutil.which(p) is None]


def speak(voice, seconds, random):
    """Utterances at RATE as arrays of 16-bit numbers, until there are `seconds` of them."""
    utterances, total, barren = [], 0, 0
    while total < seconds * RATE and barren < 3:
        texts = [sentence(random, voice.script, voice.split) for _ in range(min(60, 1 + int(seconds / 2.5)))]
        before = total
        with tempfile.TemporaryDirectory() as name:
            folder = Path(name)
            if voice.program == "festival":
                _festival(voice, texts, folder)
            elif voice.program == "flite":
                _flite(voice, texts, folder)
            else:
                _espeak(voice, texts, folder, random)
            for path in sorted(folder.glob("*.wav")):
                samples = trim(read_audio(path))
                peak = np.abs(samples).max(initial=0)
                if samples.size < RATE // 2 or peak < 1e-3:
                    continue
                utterances.append(np.rint(samples * (0.5 / peak) * 32767).astype(np.int16))
                total += samples.size
        barren = barren + 1 if total == before else 0
    return utterances

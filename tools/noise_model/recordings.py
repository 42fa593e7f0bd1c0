"""Free recordings in Debian packages: which files are whose speech or what kind of noise, and for which split.

Packages aren't installed, only unpacked beside each other in one folder. The README names the licences.
"""

import re
import subprocess
import tempfile
from pathlib import Path
from typing import NamedTuple


class Source(NamedTuple):
    package: str
    what: str  # "speech" or "noise"
    group: str  # whose speech, or what kind of noise
    pattern: str  # of the paths in the package
    split: str | None = None  # without it each noise's name decides


def _fish(language):
    return (Source(f"fillets-ng-data-{language}", "speech", f"fish_{language}_{who}", rf"/{language}/[\w-]+-{who}-[\w-]+\.ogg$",
                   "train") for who in "mv")


def _prompts(language, speaker, split):
    # Single letters and digits, which have folders of their own, are too short.
    return Source(f"asterisk-core-sounds-{language}-g722", "speech", f"prompts_{speaker}", rf"{speaker}/[^/]+\.g722$", split)


def _letters(language):
    return Source("klettres-data", "speech", f"letters_{language}", rf"/klettres/{language}/(alpha|syllab)/.+\.ogg$", "train")


SOURCES = (
    *_fish("nl"), *_fish("cs"),
    *map(_letters, "ar cs da de es fr he hu it lt ml nb nds pt_BR ru tn uk".split()),
    _prompts("en", "en_US_f_Allison", "train"), _prompts("es", "es_MX_f_Allison", "train"),
    _prompts("fr", "fr_CA_f_June", "development"),
    _prompts("it", "it_IT_m_Carlo", "test"), _prompts("ru", "ru_RU_f_IvrvoiceRU", "test"),
    Source("torcs-data", "noise", "engines", r"sound/(?!crash|backfire|boom|gear|axle|locked|out_of|skid)[\w-]+\.wav$"),
    Source("torcs-data", "noise", "impacts", r"sound/(crash|backfire|boom|gear|axle|skid)[\w-]*\.wav$"),
    Source("searchandrescue-data", "noise", "engines", r"sounds/.*(engine|overspeed)\w*\.wav$"),
    Source("searchandrescue-data", "noise", "impacts", r"sounds/.*(crash|thud|land|gear|flap|door|brake)\w*\.wav$"),
    Source("searchandrescue-data", "noise", "weather", r"sounds/(thunder|splash)\w*\.wav$"),
    Source("supertuxkart-data", "noise", "engines", r"sfx/(engine_\w+|airplane\w*|car_\w+|machine_sound|skid|spaceship)\.ogg$"),
    Source("supertuxkart-data", "noise", "weather", r"sfx/(rain|thunder|river_loop|waterfall_\w+|splash)\.ogg$"),
    Source("supertuxkart-data", "noise", "animals", r"sfx/exotic-birds\w*\.ogg$"),
    Source("supertuxkart-data", "noise", "impacts",
           r"sfx/(anvil|crash\d?|explosion|hammer|metal_clang|clock|bowling\w+|strike|wooden_bridge|fireworks\w+|break|horn)\.ogg$"),
    Source("supertuxkart-data", "noise", "music", r"data/music/[^/]+\.ogg$"),
    Source("colobot-common-sounds", "noise", "music", r"colobot/music/[^/]+\.ogg$"),
    Source("wesnoth-1.16-data", "noise", "animals",
           r"sounds/(ambient/(birds|morning|night)|wolf|horse|bat|gryphon|yeti|tusker|drake)[\w-]*\.ogg$"),
    Source("wesnoth-1.16-data", "noise", "impacts", r"sounds/(sword|axe|mace|bow|club|claws|staff|spear|flail|knife|fist)[\w-]*\.ogg$"),
    Source("wesnoth-1.16-data", "noise", "weather", r"sounds/(ambient/(campfire|ship)|lightning|rumble|cave-in)[\w-]*\.ogg$"),
    Source("wesnoth-1.16-data", "noise", "instruments", r"sounds/(horn-signals/|ambient/wardrums)[\w-]*\.ogg$"),
    Source("sonic-pi-samples", "noise", "instruments", r"samples/(ambi|guit|bass|loop|tabla|drum|perc)_\w+\.flac$"),
    Source("tuxpaint-stamps-default", "noise", "animals", r"stamps/animals/(?!.*_desc)[\w/-]+\.ogg$"),
)
INSTRUMENTS = ("fluid-soundfont-gm", "usr/share/sounds/sf2/FluidR3_GM.sf2")


def fetch(folder):
    """Downloads and unpacks what isn't there; a package that can't be had is named and left out."""
    for package in sorted({source.package for source in SOURCES} | {INSTRUMENTS[0]}):
        if (folder / package).is_dir():
            continue
        with tempfile.TemporaryDirectory() as download:
            subprocess.run(["apt-get", "download", "-q", package], cwd=download, capture_output=True, check=False)
            archives = list(Path(download).glob("*.deb"))
            if not archives:
                print(f"{package} can't be downloaded: its recordings are left out")
                continue
            unfinished = folder / f"{package}.part"
            subprocess.run(["dpkg-deb", "-x", str(archives[0]), str(unfinished)], check=True)
            unfinished.rename(folder / package)


def groups(folder):
    """(what, group, split, files) of everything that is there; a group may come more than once."""
    for source in SOURCES:
        root = folder / source.package
        paths = sorted(p for p in root.rglob("*") if p.is_file() and re.search(source.pattern, p.relative_to(root).as_posix()))
        if paths:
            yield source.what, source.group, source.split, paths

"""A second, slow implementation of the audio noise library, to compare the real one with."""

# It is written from the library's contract and not from its sources, in double precision throughout: what the
# library rounds to single precision shows as the difference that a comparison allows for. It needs numpy and, for
# rate conversion, Debian's libresample.

import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[3] / "tools/noise_model"))

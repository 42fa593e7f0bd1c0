"""The LADSPA plugin in the programs that load it: ladspa_hosts_test.py PLUGIN"""

import os
import re
import shutil
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

import numpy
import talvo_audio

PLUGIN = Path(sys.argv.pop(1)).resolve()

# The microphone as its page gives it, under names that it is found by.
PAGE = Path(__file__).resolve().parents[2] / "docs/noise_library.md"
MICROPHONE = re.search(r"^```pipewire\ncontext.modules = \[(.*)\]\n```$", PAGE.read_text(), re.MULTILINE | re.DOTALL)[1]
for side, name in (("capture", "quiet_in"), ("playback", "quiet_out")):
    MICROPHONE = MICROPHONE.replace(f"{side}.props = {{", f"{side}.props = {{ node.name = {name}")

# A daemon with the filter chain and no device; the graph runs by a clock of its own.
PIPEWIRE = """
context.properties = { core.daemon = true core.name = pipewire-0 default.clock.rate = 48000 default.clock.allowed-rates = [ 48000 ]
  support.dbus = false mem.allow-mlock = false }
context.spa-libs = { audio.convert.* = audioconvert/libspa-audioconvert support.* = support/libspa-support }
context.modules = [
  { name = libpipewire-module-protocol-native } { name = libpipewire-module-metadata }
  { name = libpipewire-module-spa-node-factory } { name = libpipewire-module-client-node }
  { name = libpipewire-module-access } { name = libpipewire-module-adapter }
  { name = libpipewire-module-link-factory }
  %s
]
context.objects = [
  { factory = spa-node-factory args = { factory.name = support.node.driver node.name = Dummy-Driver
      node.group = pipewire.dummy priority.driver = 20000 } }
]
"""

# Plays a file into the chain while what comes out of it is recorded.
SESSION = """
set -eu
pipewire -c "$1/pipewire.conf" & pids=$!
trap 'kill $pids || true' EXIT
until pw-cli info 0; do kill -0 $pids; done
wireplumber & pids="$! $pids"
linked() { until pw-link -l | grep -q "$1"; do :; done; }
pw-record --target quiet_out --rate 48000 --channels 1 --format f32 "$1/heard.wav" & record=$!
pids="$record $pids"
linked pw-record:input
pw-cat -p --target quiet_in "$1/noisy.wav"
kill -INT $record
wait $record || true
"""


def ffmpeg(*arguments):
    done = subprocess.run(["ffmpeg", "-v", "error", "-y", *map(str, arguments)], check=True, capture_output=True)
    return done.stdout


def raw(path, filters="anull"):
    return numpy.frombuffer(ffmpeg("-i", path, "-af", filters, "-f", "f32le", "-"), numpy.float32)


class Hosts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def noisy(self, rate, channels):
        path = self.folder / "noisy.wav"
        noise = f"anoisesrc=d=2:a=0.2:r={rate}:seed=5"
        layout = "stereo" if channels == 2 else "mono"
        ffmpeg("-f", "lavfi", "-i", f"{noise},aformat=channel_layouts={layout}", "-c:a", "pcm_f32le", path)
        return path

    def test_ffmpeg(self):
        for rate, channels, samples in [(16000, 1, 1), (44100, 2, 1023), (48000, 1, 4096), (96000, 2, 511)]:
            with self.subTest(rate=rate, channels=channels, samples=samples):
                path = self.noisy(rate, channels)
                plugin = f"ladspa=file={PLUGIN}:plugin=talvo_noise"
                blocks = f"asetnsamples={samples}:p=0,"
                given = raw(path)
                # Compensated by the latency that the plugin tells, it is what came in.
                untouched = raw(path, f"{blocks}{plugin}:latency=1:controls=c0=0")
                numpy.testing.assert_array_equal(untouched, given)
                cleaned = raw(path, f"{blocks}{plugin}").reshape(-1, channels)
                with talvo_audio.Cleaner(rate, channels=channels) as cleaner:
                    expected = cleaner.process(given if channels == 1 else given.reshape(-1, 2)).reshape(-1, channels)
                # ffmpeg has another library's copy of the transform's functions in its process, which round otherwise.
                numpy.testing.assert_allclose(cleaned, expected, rtol=0, atol=1e-6)

    def test_ffmpeg_by_name(self):
        path = self.noisy(48000, 1)
        os.environ["LADSPA_PATH"] = str(PLUGIN.parent)
        self.addCleanup(os.environ.pop, "LADSPA_PATH")
        quiet = raw(path, f"ladspa={PLUGIN.stem}:talvo_noise:controls=c0=0.9")
        self.assertLess(quiet[48000:].std(), 0.3 * raw(path)[48000:].std())

    def test_pipewire(self):
        programs = ["pipewire", "wireplumber", "pw-cat", "pw-link", "dbus-run-session"]
        if missing := [name for name in programs if shutil.which(name) is None]:
            self.skipTest(f"no {', '.join(missing)}")
        self.noisy(48000, 1)
        levels = {}
        for strength in (0.0, 1.0):
            microphone = MICROPHONE.replace('"Strength" = 1.0', f'"Strength" = {strength:g}')
            (self.folder / "pipewire.conf").write_text(PIPEWIRE % microphone)
            runtime = self.folder / f"run{strength:g}"
            runtime.mkdir(mode=0o700)
            environment = {
                **{key: value for key, value in os.environ.items() if not key.startswith("DBUS_")},
                **{"XDG_RUNTIME_DIR": str(runtime), "HOME": str(self.folder), "XDG_STATE_HOME": str(runtime)},
                "LADSPA_PATH": str(PLUGIN.parent),
            }
            session = ["dbus-run-session", "--", "bash", "-c", SESSION, "bash", str(self.folder)]
            with open(self.folder / "log", "wb") as log:
                subprocess.run(session, env=environment, stdout=log, stderr=log, timeout=300, check=True)
            heard = raw(self.folder / "heard.wav")
            played = heard[numpy.flatnonzero(heard)[0] :]
            levels[strength] = played[24000:72000].std()
        self.assertGreater(levels[0.0], 0.5 * raw(self.folder / "noisy.wav")[24000:72000].std())
        self.assertLess(levels[1.0], 0.3 * levels[0.0])


if __name__ == "__main__":
    unittest.main()

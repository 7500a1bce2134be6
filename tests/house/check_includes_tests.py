#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The include check finds each forbidden include, and no others."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]


def check(root):
    return subprocess.run(
        [ROOT / "tools/check-includes", root], capture_output=True, text=True, timeout=60, check=False)


class IncludeCheckTests(unittest.TestCase):
    def complaint_about(self, path, include):
        with tempfile.TemporaryDirectory() as root:
            file = Path(root) / path
            file.parent.mkdir(parents=True)
            file.write_text(f"// fine\n#include {include}\n")
            result = check(root)
            self.assertEqual(result.returncode != 0, bool(result.stdout), result)
            return result.stdout

    def test_theRepositoryFollowsItsRules(self):
        result = check(ROOT)
        self.assertEqual((result.returncode, result.stdout), (0, ""))

    def test_eachForbiddenArrowIsFound(self):
        for path, include in (
            ("engine/a.cpp", '"platform/posix/a.h"'),
            ("engine/a.h", '"control/a.h"'),
            ("engine/a.cpp", '"l10n/a.h"'),
            ("engine/a.cpp", '"engine/ports/a.h"'),
            ("engine/files/a.cpp", '"engine/recorder/a.h"'),
            ("engine/recorder/a.cpp", "<unistd.h>"),
            ("app/commands/a.cpp", '"app/window/a.h"'),
            ("engine/ports/a.h", "<QString>"),
            ("engine/a.cpp", "<pipewire/pipewire.h>"),
            ("engine/a.cpp", "<spa/utils/json.h>"),
            ("engine/a.cpp", "<libavutil/mem.h>"),
            ("engine/a.cpp", "<libswresample/swresample.h>"),
            ("engine/a.cpp", "<glib.h>"),
            ("engine/a.cpp", "<unistd.h>"),
            ("engine/a.cpp", '"a.h"'),
            ("capture/graph/a.cpp", '"platform/pipewire/a.h"'),
            ("capture/graph/a.cpp", '"capture/samples/a.h"'),
            ("capture/samples/a.cpp", '"capture/graph/a.h"'),
            ("capture/samples/a.cpp", '"control/ports/a.h"'),
            ("capture/samples/a.cpp", "<pipewire/pipewire.h>"),
            ("capture/graph/a.cpp", "<spa/utils/json.h>"),
            ("capture/graph/a.cpp", "<QString>"),
            ("capture/a.cpp", "<vector>"),
            ("l10n/a.cpp", '"control/a.h"'),
            ("l10n/a.cpp", '"update/a.h"'),
            ("update/a.cpp", '"ui/a.h"'),
            ("update/a.cpp", '"control/a.h"'),
            ("update/a.cpp", '"engine/a.h"'),
            ("control/a.cpp", '"ui/a.h"'),
            ("control/a.cpp", '"platform/desktop/a.h"'),
            ("control/a.cpp", '"update/a.h"'),
            ("ui/window/a.cpp", '"app/a.h"'),
            ("ui/window/a.cpp", '"platform/pipewire/a.h"'),
            ("ui/style/a.cpp", '"ui/window/a.h"'),
            ("ui/rows/a.cpp", '"ui/meters/a.h"'),
            ("ui/meters/a.cpp", '"ui/rows/a.h"'),
            ("ui/meters/a.cpp", '"control/a.h"'),
            ("ui/status_area/a.cpp", '"ui/style/a.h"'),
            ("ui/a.cpp", "<vector>"),
            ("media/codec/a.cpp", '"media/boxes/a.h"'),
            ("media/boxes/a.cpp", '"media/movie/a.h"'),
            ("media/movie/a.cpp", '"media/mix/a.h"'),
            ("media/m4a/a.cpp", '"media/mix/a.h"'),
            ("media/mix/a.cpp", '"media/writing/a.h"'),
            ("media/mix/a.cpp", "<libavcodec/avcodec.h>"),
            ("media/writing/a.cpp", '"platform/ffmpeg/a.h"'),
            ("media/writing/a.cpp", "<unistd.h>"),
            ("media/a.cpp", "<vector>"),
            ("platform/ffmpeg/a.cpp", '"platform/posix/a.h"'),
            ("platform/ffmpeg/a.cpp", "<QString>"),
            ("platform/pipewire/a.cpp", '"control/a.h"'),
            ("platform/pipewire/a.cpp", '"ui/ports/a.h"'),
            ("platform/desktop/a.cpp", '"l10n/a.h"'),
            ("platform/desktop/status_area/a.cpp", '"ui/status_area/a.h"'),
            ("platform/desktop/bus/a.cpp", '"platform/desktop/power/a.h"'),
            ("platform/desktop/power/a.cpp", '"platform/desktop/a.h"'),
            ("platform/desktop/power/a.cpp", '"platform/desktop/opening/a.h"'),
            ("platform/desktop/permission/a.cpp", '"platform/desktop/opening/a.h"'),
            ("platform/desktop/instance/a.cpp", '"ui/ports/a.h"'),
            ("platform/desktop/a.cpp", "<libavformat/avformat.h>"),
            ("platform/posix/a.cpp", "<systemd/sd-bus.h>"),
            ("platform/unknown/a.cpp", "<vector>"),
            ("app/a.cpp", '"tests/support/a.h"'),
            ("app/a.cpp", "<pipewire/pipewire.h>"),
        ):
            with self.subTest(path=path, include=include):
                self.assertIn(path, self.complaint_about(path, include))

    def test_whatTheArrowsAllowPasses(self):
        for path, include in (
            ("engine/ports/a.h", '"engine/a.h"'),
            ("engine/recorder/a.cpp", '"engine/files/a.h"'),
            ("engine/a.cpp", "<stop_token>"),
            ("capture/samples/a.cpp", '"engine/ports/a.h"'),
            ("capture/samples/a.cpp", "<sys/mman.h>"),
            ("platform/pipewire/a.cpp", '"capture/graph/a.h"'),
            ("l10n/a.cpp", '"engine/recording_types.h"'),
            ("update/a.cpp", '"l10n/l10n.h"'),
            ("update/a.cpp", "<QtNetwork/QNetworkReply>"),
            ("control/a.cpp", '"engine/a.h"'),
            ("ui/window/a.cpp", '"control/a.h"'),
            ("ui/window/a.cpp", '"ui/rows/a.h"'),
            ("ui/meters/a.cpp", '"ui/ports/a.h"'),
            ("ui/style/a.cpp", '"ui/style/b.h"'),
            ("platform/pipewire/a.cpp", "<pipewire/pipewire.h>"),
            ("media/boxes/a.cpp", '"media/codec/a.h"'),
            ("media/mix/a.cpp", '"media/movie/a.h"'),
            ("media/mix/a.cpp", "<sys/resource.h>"),
            ("media/writing/a.cpp", '"media/mix/a.h"'),
            ("platform/ffmpeg/a.cpp", '"media/codec/a.h"'),
            ("platform/ffmpeg/a.cpp", "<libavformat/avformat.h>"),
            ("platform/desktop/a.cpp", '"platform/desktop/bus/a.h"'),
            ("platform/desktop/power/a.cpp", '"control/ports/a.h"'),
            ("platform/desktop/status_area/a.cpp", '"ui/ports/a.h"'),
            ("platform/desktop/opening/a.cpp", "<gio/gio.h>"),
            ("platform/desktop/bus/a.cpp", "<systemd/sd-bus.h>"),
            ("platform/posix/a.cpp", "<sys/stat.h>"),
            ("app/a.cpp", '"platform/pipewire/a.h"'),
        ):
            with self.subTest(path=path, include=include):
                self.assertEqual(self.complaint_about(path, include), "")

    def test_aTreeWithoutSourcesIsNotAPass(self):
        with tempfile.TemporaryDirectory() as root:
            self.assertNotEqual(check(root).returncode, 0)


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"IncludeCheckTests.test_{name}" for name in sys.argv[1:])])

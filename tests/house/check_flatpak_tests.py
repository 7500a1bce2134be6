#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The check of the Flatpak manifest finds each fault."""

import os
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
MANIFEST = ROOT / "packaging/flatpak/com.vantoro.app.yml"
# Stands in for flatpak-builder, which shows a manifest without what it does not know.
BUILDER = """#!/usr/bin/python3
import json, sys, yaml
manifest = yaml.safe_load(open(sys.argv[2]))
manifest["id"] = manifest.pop("app-id")
manifest["add-extensions"] = {}
print(json.dumps(manifest))
"""


class FlatpakCheckTests(unittest.TestCase):
    def complaint_about(self, before, after):
        """The check's output for the manifest with this one change."""
        text = MANIFEST.read_text(encoding="utf-8")
        self.assertIn(before, text)
        with tempfile.NamedTemporaryFile("w", encoding="utf-8", suffix=".yml") as file:
            file.write(text.replace(before, after, 1))
            file.flush()
            result = subprocess.run([ROOT / "tools/check-flatpak", file.name], capture_output=True, text=True,
                                    timeout=60, check=False)
        self.assertEqual(result.returncode, 1 if result.stdout else 0, result)
        return result.stdout

    def test_theManifestAsItIsPasses(self):
        self.assertEqual(self.complaint_about("app-id", "app-id"), "")

    def test_aPermissionNeedsAReason(self):
        permission = "  - --socket=wayland\n"
        self.assertIn("--device=all has no reason", self.complaint_about(permission, permission + "  - --device=all\n"))

    def test_itIsAboutThisProgram(self):
        self.assertIn("app-id", self.complaint_about("app-id: com.vantoro.app", "app-id: com.other.app"))
        self.assertIn("command", self.complaint_about("command: vantoro", "command: other"))
        self.assertIn("runtime is missing", self.complaint_about("runtime: org", "other: org"))

    def test_whatTheBuilderIgnoresIsAFault(self):
        with tempfile.TemporaryDirectory() as folder:
            builder = Path(folder) / "flatpak-builder"
            builder.write_text(BUILDER, encoding="utf-8")
            builder.chmod(0o755)
            result = subprocess.run([ROOT / "tools/check-flatpak"], env={"PATH": f"{folder}:{os.environ['PATH']}"},
                                    capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(result.returncode, 1, result)
        self.assertIn("flatpak-builder ignores something in add-extensions", result.stdout)

    def test_itCanBeRead(self):
        self.assertIn("cannot be read", self.complaint_about("finish-args:", "finish-args: ["))


if __name__ == "__main__":
    unittest.main(argv=[sys.argv[0], *(f"FlatpakCheckTests.test_{name}" for name in sys.argv[1:])])

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""What a real journal holds of recordings, and what the doctor says of it."""

import json
import subprocess
import sys

sys.dont_write_bytecode = True

import recorder  # noqa: E402
from case import RecordingCase, main  # noqa: E402

# A journal of its own, in a mount namespace of its own; it says when it is ready.
PRIVATE_JOURNAL = """
import socket, subprocess, sys, os
for folder in "/run/systemd", "/run/log":
    os.makedirs(folder, exist_ok=True)
    subprocess.run(["mount", "-t", "tmpfs", "tmpfs", folder], check=True)
    os.mkdir(folder + "/journal")
ready = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
ready.bind("/run/systemd/ready")
ready.settimeout(30)
journal = subprocess.Popen(["/lib/systemd/systemd-journald"], stderr=subprocess.DEVNULL,
                           env=os.environ | {"NOTIFY_SOCKET": "/run/systemd/ready"})
try:
    while b"READY=1" not in ready.recv(4096):
        pass
    sys.exit(subprocess.run(sys.argv[1:]).returncode)
finally:
    journal.terminate()
    journal.wait()
"""
SCRIPT = """
"$@" || echo "status $?"
journalctl --sync --quiet
journalctl --output json --identifier vantoro --quiet
echo {}
"$1" doctor --json --folder /tmp || true
"""


class Journal(RecordingCase):
    def run_with_journal(self, *arguments):
        """What the journal holds afterwards, and what the doctor then finds that is past."""
        result = subprocess.run(
            ["unshare", "--mount", "python3", "-c", PRIVATE_JOURNAL, "bash", "-c", SCRIPT, "bash", recorder.PROGRAM,
             *map(str, arguments)],
            stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60, check=False)
        self.assertEqual(result.returncode, 0, result)
        lines = result.stdout.splitlines()
        end = lines.index("{}")
        entries = [json.loads(line) for line in lines[:end] if line.startswith("{")]
        past = [finding for finding in json.loads(lines[end + 1])["findings"] if finding["past"]]
        return entries, past

    def test_recordingIsInTheJournalUnderItsName(self):
        entries, past = self.run_with_journal("record", "--folder", self.folder, "--seconds", "1")
        began, saved = (entry for entry in entries if entry["PRIORITY"] == "6")
        self.assertEqual(began["MESSAGE"], "The recording began, of system audio and the default microphone.")
        path, = self.folder.iterdir()
        self.assertEqual(saved["MESSAGE"], f"The recording is saved as {path.name}.")
        self.assertEqual(began["VANTORO_RECORDING"], saved["VANTORO_RECORDING"])
        self.assertEqual(began["_COMM"], "vantoro")
        self.assertEqual(past, [])

    def test_faultIsInTheJournalAndInTheDoctorsReport(self):
        entries, past = self.run_with_journal("record", "--folder", self.folder, "--microphone", "no-such")
        entry, = entries
        self.assertEqual(entry["PRIORITY"], "3")
        self.assertEqual(entry["MESSAGE"],
                         'The recording did not begin. The microphone "chosen one" was not found.')
        finding, = past
        self.assertTrue(finding["ok"])
        self.assertEqual(finding["check"], "earlier-fault")
        self.assertTrue(finding["text"].endswith(entry["MESSAGE"]), finding)
        self.assertNotIn(str(self.folder), json.dumps(entries).replace(json.dumps(entry["_CMDLINE"]), ""))


if __name__ == "__main__":
    main(Journal)

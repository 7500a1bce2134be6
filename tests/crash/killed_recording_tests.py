#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The program is killed while it records real sound; and other processes leave a running recording alone."""

import signal
import subprocess
import sys
import tempfile
import threading
from pathlib import Path

sys.dont_write_bytecode = True
sys.path.insert(0, str(Path(__file__).resolve().parents[1] / "recording"))

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402
from movie_boxes import whole_frames  # noqa: E402


class KilledRecording(RecordingCase):
    def test_recordingsKilledAtAnyTimeAreSalvagedUpToTheirLastFragment(self):
        # Some seconds after the fragments are due: a busy machine writes them late.
        moments = (0.7, 1.9, 5.3, 13.6, 16.2)
        with sound.tone(440), sound.tone(300, "--into", sound.MICROPHONE):
            recordings = [recorder.Recording(self.folder / str(index)) for index in range(len(moments))]
            for recording in recordings[1:]:
                recording.wait_until_written()
            killers = [threading.Timer(moment, recording.kill) for moment, recording in zip(moments, recordings)]
            for killer in killers:
                killer.start()
            for killer in killers:
                killer.join()
        for index, moment in enumerate(moments):
            self.check_salvage(self.folder / str(index), moment)

    def check_salvage(self, folder, seconds):
        path, = recorder.temporary_files(folder)
        frames = max(whole_frames(path.read_bytes()).values(), default=0)
        self.assertGreater(frames / sound.RATE, seconds - 10)
        result = recorder.run("recover", "--folder", folder)
        if frames == 0:
            self.assertEqual((result.status, result.output), (0, ""))
            return
        path = result.saved(but_for_a_part=True)
        left, _ = sound.decoded(path)
        self.assertEqual(round(float(sound.probe(path)["streams"][0]["duration"]) * sound.RATE), frames)
        whole = frames / sound.RATE
        if whole < 2:
            return  # on a busy machine the first second passes before the player is linked
        for frequency in (440, 300):
            self.assert_decibels(sound.usual_amplitude(left, frequency, 0.2, whole - 0.1), 0.25)

    def test_folderThatTurnsReadOnlyWhileRecordingKeepsWhatWasCaptured(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            # From now on the folder's path is read-only, while the file is already open. In one step, because the mix
            # made ahead opens files there.
            with tempfile.TemporaryDirectory(prefix="vantoro-read-only-") as place:
                subprocess.run(["mount", "--bind", str(self.folder), place], check=True)
                subprocess.run(["mount", "-o", "remount,bind,ro", place], check=True)
                subprocess.run(["mount", "--bind", place, str(self.folder)], check=True)
                try:
                    result = recording.stop()
                finally:
                    subprocess.run(["umount", "-l", str(self.folder)], check=True)
                    subprocess.run(["umount", "-l", place], check=True)
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertIn("Read-only file system", result.errors)
        self.assertIn("checkpoint was kept", result.errors)
        left, _ = sound.decoded(recorder.run("recover", "--folder", self.folder).saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)

    def test_recordingOfAnotherProcessIsLeftAlone(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            result = recorder.run("recover", "--folder", self.folder)
            self.assertEqual((result.status, result.output, result.errors), (0, "", ""))
            self.assertEqual(len(recorder.temporary_files(self.folder)), 1)
            path = recording.stop(signal.SIGINT).saved()
        self.assertEqual([entry.name for entry in self.folder.iterdir()], [path.name])


if __name__ == "__main__":
    main(KilledRecording)

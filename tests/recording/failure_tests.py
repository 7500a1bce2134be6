#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Failures during a recording: what was captured is saved or kept, and the user is told."""

import contextlib
import os
import shutil
import signal
import subprocess
import sys
from pathlib import Path

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402

SAVED_AFTER_INTERRUPTION = "Audio capture was interrupted. The captured audio was saved successfully."


class Failure(RecordingCase):
    def assert_saved_with(self, result, message, seconds):
        left, _ = sound.decoded(result.saved())
        self.assertGreater(len(left) / sound.RATE, seconds)
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, seconds - 0.1), 0.2)
        self.assertEqual(result.errors.splitlines(), [f"{SAVED_AFTER_INTERRUPTION} {message}"])
        self.assertEqual(recorder.temporary_files(self.folder), [])

    def test_soundServerThatIsKilledEndsTheRecordingSaved(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            os.kill(int(os.environ["VANTORO_SESSION_PIPEWIRE_PID"]), signal.SIGKILL)
            result = recording.finish()
        self.assert_saved_with(result, "The connection to the sound server was lost.", 0.9)

    def test_microphoneThatDisappearsEndsTheRecordingSaved(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder, "--microphone", sound.MICROPHONE)
            recording.wait_until_written()
            subprocess.run(["pw-cli", "destroy", sound.MICROPHONE], check=True, stdout=subprocess.DEVNULL)
            result = recording.finish()
        self.assert_saved_with(result, "The microphone was disconnected.", 0.9)

    def mount_a_small_disk(self, megabytes):
        self.folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", f"size={megabytes}m", "tmpfs", str(self.folder)], check=True)
        self.addCleanup(subprocess.run, ["umount", "-l", str(self.folder)], check=True)

    @contextlib.contextmanager
    def noise_from_both_sources(self):
        elsewhere = self.folder.parent
        with sound.noise(elsewhere), sound.noise(elsewhere, "--into", sound.MICROPHONE):
            yield

    def leave_free(self, kilobytes):
        """Fills the disk except for this much."""
        status = os.statvfs(self.folder)
        with (self.folder / "others").open("ab") as others:
            others.write(bytes(status.f_bavail * status.f_frsize - kilobytes * 1024))

    def record_on_a_disk_that_others_fill(self, kilobytes_left, language="en"):
        """Fills the disk after the first fragment, so that no other fits."""
        self.mount_a_small_disk(64)
        with self.noise_from_both_sources():
            recording = recorder.Recording(self.folder, language=language)
            recording.wait_until_written()
            self.leave_free(kilobytes_left)
            return recording.finish()

    def test_diskThatFillsUpEndsTheRecordingSaved(self):
        result = self.record_on_a_disk_that_others_fill(100)
        self.assertRegex(result.errors, r"^About \d+ seconds of sound could not be written to the disk: .*No space left on "
                                   r"device\. Everything else was saved\.\n$")
        self.assertEqual(result.status, 1)
        path = Path(result.output.strip())
        self.assertGreater(len(sound.decoded(path)[0]) / sound.RATE, 0.9)
        self.assertEqual({entry.name for entry in self.folder.iterdir()},
                         {path.name, path.stem + ".incomplete.mov", "others"})

    def test_diskThatFillsUpIsToldInChinese(self):
        result = self.record_on_a_disk_that_others_fill(100, language="zh-Hans")
        self.assertRegex(result.errors, r"^约 \d+ 秒的声音未能写入磁盘：无法写入 \.Vantoro-[^：]+\.partial\.mov："
                                        r"磁盘空间不足。其余内容已保存。\n$")

    def test_diskWithoutRoomForTheFinalFileKeepsWhatWasCaptured(self):
        result = self.record_on_a_disk_that_others_fill(0)
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertIn("No space left on device", result.errors)
        self.assertIn("checkpoint was kept", result.errors)
        path, = recorder.temporary_files(self.folder)
        self.assertGreater(len(sound.decoded(path)[0]) / sound.RATE, 0.9)
        self.assertEqual({entry.name for entry in self.folder.iterdir()}, {path.name, "others"})

    def test_diskThatGetsFullIsToldThenEndsTheRecordingSavedInFull(self):
        self.mount_a_small_disk(64)
        with self.noise_from_both_sources():
            recording = recorder.Recording(self.folder)
            recording.watch.wait_for_fragments(1)
            self.leave_free(20 * 1024)
            recording.watch.wait_for_fragments(1)
            self.leave_free(2 * 1024)
            result = recording.finish()
        self.assertEqual(result.errors.splitlines(),
                         ["The disk is nearly full: there is room for about 3 minutes of recording.",
                          "The disk is nearly full, so the recording was ended. What was captured was saved."])
        path = result.saved()
        # The warning comes at the second fragment and the end at the third: nothing before is missing.
        seconds = float(sound.probe(path)["streams"][0]["duration"])
        self.assertGreater(seconds, 21)
        left, _ = sound.decoded(path)
        self.assertAlmostEqual(len(left) / sound.RATE, seconds, delta=0.05)
        self.assertGreater(sum(end - begin for begin, end in sound.sounding(left, 0.05)), seconds - 1.5)
        self.assertEqual({entry.name for entry in self.folder.iterdir()}, {path.name, "others"})

    def test_diskWithoutRoomForARecordingIsRefused(self):
        self.mount_a_small_disk(4)
        result = recorder.record(self.folder)
        self.assertEqual((result.status, result.output), (1, ""))
        self.assertEqual(result.errors.splitlines(), ["There is not enough room on the disk for a recording. "
                                                      "Free some space, or choose another folder."])
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_shortRoomIsToldOnceAtTheStart(self):
        self.mount_a_small_disk(12)
        with sound.tone(440):
            result = recorder.record(self.folder, "--seconds", 2)
        self.assertEqual(result.errors.splitlines(),
                         ["The disk is nearly full: there is room for about 2 minutes of recording."])
        result.saved()

    def test_folderThatIsRemovedIsMadeAgainForTheRecording(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            shutil.rmtree(self.folder)
            result = recording.stop()
        left, _ = sound.decoded(result.saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)
        self.assertEqual(recorder.temporary_files(self.folder), [])

    def test_busyMachineLosesNoFrame(self):
        # Without real-time scheduling, lower the load's priority so that the player gets its time.
        is_preferred = subprocess.run(["chrt", "-r", "20", "true"], stderr=subprocess.DEVNULL, check=False).returncode == 0
        give_way = [] if is_preferred else ["nice", "-n", "19"]
        burners = [subprocess.Popen([*give_way, sys.executable, "-c", "while True: pass"])
                   for _ in range(2 * (os.cpu_count() or 1))]
        try:
            with sound.tone(440):
                path = recorder.record(self.folder, "--seconds", 10, "--no-microphone").saved()
        finally:
            for burner in burners:
                burner.kill()
                burner.wait()
        left, _ = sound.decoded(path)
        spans = sound.sounding(left, 0.15, block=160)
        self.assertLessEqual(len(spans), 3, "the player itself may miss a cycle or two")
        self.assertGreater(sum(end - begin for begin, end in spans), 9.6)

    def test_terminationSavesTheRecording(self):
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            result = recording.stop(signal.SIGTERM)
        left, _ = sound.decoded(result.saved())
        self.assertGreater(sound.usual_amplitude(left, 440, 0.2, 0.9), 0.2)
        self.assertEqual(result.errors, "")


if __name__ == "__main__":
    main(Failure)

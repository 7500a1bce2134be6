#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The command line: output, error messages and exit status."""

import json
import os
import re
import signal
import subprocess
import sys
import time
from datetime import datetime

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402


class CommandLine(RecordingCase):
    def assert_refused(self, result, status, text):
        self.assertEqual((result.status, result.output), (status, ""), result)
        lines = result.errors.splitlines()
        self.assertEqual(len(lines), 1, result)
        self.assertIn(text, lines[0])

    def test_devicesListsTheMicrophonesWithTheDefaultMarked(self):
        result = recorder.run("devices")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(result.output, f"* {sound.MICROPHONE}\tVirtual Microphone\n")

    def test_devicesAsJsonAreForPrograms(self):
        result = recorder.run("devices", "--json")
        self.assertEqual((result.status, result.errors), (0, ""))
        self.assertEqual(json.loads(result.output),
                         [{"id": sound.MICROPHONE, "name": "Virtual Microphone", "default": True}])

    def test_devicesWithoutAMicrophoneSaysSo(self):
        subprocess.run(["pw-cli", "destroy", sound.MICROPHONE], check=True, stdout=subprocess.DEVNULL)
        result = recorder.run("devices")
        self.assertEqual((result.status, result.output, result.errors), (0, "", "没有麦克风。\n"))
        result = recorder.run("devices", "--json", "--language", "en")
        self.assertEqual((result.status, result.output, result.errors), (0, "[]\n", "There is no microphone.\n"))

    def test_devicesWithoutASoundServerFails(self):
        environment = dict(os.environ, XDG_RUNTIME_DIR=str(self.folder.parent))
        self.assert_refused(recorder.run("devices", env=environment), 1, "无法连接声音服务器。")
        self.assert_refused(recorder.run("devices", "--language", "en", env=environment), 1,
                            "The sound server cannot be reached.")

    def test_versionAndHelpAreOnStandardOutput(self):
        self.assertRegex(recorder.run("--version").output, r"^vantoro \d+\.\d+\.\d+\n$")
        self.assertIn("--microphone-volume", recorder.run("--help").output)

    def test_wrongWordsAreOneLineAndStatusTwo(self):
        for words in (["dance"], ["record", "--loud"], ["record", "--seconds", "ten"],
                      ["record", "--system-volume=-1"], ["record", "--microphone-volume", "nan"], []):
            self.assert_refused(recorder.run(*words), 2, "vantoro --help")

    def test_unknownMicrophoneIsRefusedAndLeavesNothing(self):
        self.assert_refused(recorder.record(self.folder, "--microphone", "not-there"), 1, "not-there")
        self.assertFalse(self.folder.exists() and os.listdir(self.folder))

    def test_folderThatCannotBeMadeIsRefused(self):
        self.folder.write_text("a file")
        self.assert_refused(recorder.record(self.folder / "below"), 1, "Not a directory")

    def test_folderThatCannotBeWrittenIsRefused(self):
        self.folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "ro", "tmpfs", str(self.folder)], check=True)
        self.addCleanup(subprocess.run, ["umount", str(self.folder)], check=True)
        self.assert_refused(recorder.record(self.folder), 1, "Read-only file system")
        self.assertEqual(list(self.folder.iterdir()), [])

    def test_bothSourcesOffIsRefused(self):
        self.assert_refused(recorder.record(self.folder, "--no-system-audio", "--no-microphone"), 1,
                            "Turn on System Audio or Microphone before recording.")
        self.assertFalse(self.folder.exists())

    def test_messagesAreInTheUsersLanguageUnlessThisRunsIsAnother(self):
        refused = ["record", "--folder", self.folder, "--no-system-audio", "--no-microphone"]
        chinese, english = "请先开启系统声音或麦克风", "Turn on System Audio or Microphone"
        self.assert_refused(recorder.run(*refused), 1, chinese)
        self.assert_refused(recorder.run(*refused, "--language", "en"), 1, english)
        preferences = self.folder.parent / "vantoro/vantoro.conf"
        preferences.parent.mkdir()
        preferences.write_text("[General]\nappLanguage=en\n")
        environment = dict(os.environ, XDG_CONFIG_HOME=str(self.folder.parent))
        self.assert_refused(recorder.run(*refused, env=environment), 1, english)
        self.assert_refused(recorder.run(*refused, "--language", "zh-Hans", env=environment), 1, chinese)
        self.assertEqual(preferences.read_text(), "[General]\nappLanguage=en\n")

    def assert_refused_in_chinese(self, text, folder):
        result = recorder.run("record", "--language", "zh-Hans", "--folder", folder)
        self.assertEqual((result.status, result.output, result.errors), (1, "", text + "\n"))

    def test_missingDefaultMicrophoneIsToldInChinese(self):
        subprocess.run(["pw-cli", "destroy", sound.MICROPHONE], check=True, stdout=subprocess.DEVNULL)
        self.assert_refused_in_chinese("没有默认麦克风。", self.folder)

    def test_folderThatCannotBeMadeIsToldInChinese(self):
        self.folder.write_text("a file")
        self.assert_refused_in_chinese("无法创建文件夹 below：不是文件夹。", self.folder / "below")

    def test_recordsIntoTheFolderOfThePreferences(self):
        preferences = self.folder.parent / "vantoro/vantoro.conf"
        preferences.parent.mkdir()
        preferences.write_text(f"[General]\noutputDirectory={self.folder}\n")
        environment = dict(os.environ, XDG_CONFIG_HOME=str(self.folder.parent))
        path = recorder.run("record", "--seconds", "1", env=environment).saved()
        self.assertEqual(path.parent, self.folder)

    def test_withoutASoundServerThePermissionIsMissing(self):
        environment = dict(os.environ, XDG_RUNTIME_DIR=str(self.folder.parent))
        self.assert_refused(recorder.record(self.folder, env=environment), 1,
                            "Screen & System Audio Recording permission is required.")

    def test_fileTellsWhenItWasRecordedAndItsTitle(self):
        before = int(time.time())
        titled = recorder.record(self.folder, "--seconds", 1, "--title", "访谈").saved()
        after = time.time()
        untitled = recorder.record(self.folder, "--seconds", 1).saved()
        tags = sound.probe(titled)["format"]["tags"]
        self.assertEqual(tags["title"], "访谈")
        started = datetime.fromisoformat(tags["creation_time"].replace("Z", "+00:00"))
        self.assertTrue(before <= started.timestamp() <= after, tags)
        self.assertEqual(datetime.fromisoformat(tags["date"]), started)
        self.assertEqual(sound.probe(untitled)["format"]["tags"]["title"], untitled.stem)

    def chapters_of(self, path):
        return [(float(chapter["start_time"]), chapter["tags"]["title"])
                for chapter in sound.probe(path, "-show_chapters")["chapters"]]

    def mark(self, recording):
        os.kill(recording.pid, signal.SIGUSR1)
        return time.monotonic()

    def test_signalMarksTheMomentWithAChapter(self):
        recording = recorder.Recording(self.folder)
        recording.wait_until_written()
        marked = [self.mark(recording)]
        recording.watch.wait_for_fragments(1)
        marked.append(self.mark(recording))
        stopped = time.monotonic()
        result = recording.stop()
        length = float(sound.probe(result.saved())["format"]["duration"])
        chapters = self.chapters_of(result.saved())
        self.assertEqual([title for _, title in chapters], ["Mark 1", "Mark 2"])
        for (begin, _), moment in zip(chapters, marked, strict=True):
            self.assertAlmostEqual(length - begin, stopped - moment, delta=0.5)
        self.assertRegex(result.errors, r"^Mark 1 at 00:0\d\nMark 2 at 00:1\d\n$")

    def test_markSurvivesTheDeathOfTheRecorder(self):
        recording = recorder.Recording(self.folder)
        recording.wait_until_written()
        self.mark(recording)
        recording.watch.wait_for_fragments(1)
        recording.kill()
        (begin, title), = self.chapters_of(recorder.run("recover", "--folder", self.folder).saved())
        self.assertEqual(title, "Mark 1")
        self.assertTrue(0.9 < begin < 5, begin)

    def tracks_of(self, path, names):
        return [path.with_name(f"{path.stem} ({name}).m4a") for name in names]

    def test_tracksAreKeptApartInStepWithTheMix(self):
        with sound.tone(440), sound.tone(1000, "--into", sound.MICROPHONE):
            path = recorder.record(self.folder, "--seconds", 3, "--tracks").saved()
        system, microphone = self.tracks_of(path, ("system audio", "microphone"))
        self.assertEqual(set(self.folder.iterdir()), {path, system, microphone})
        self.assertEqual([sound.probe(file)["streams"][0]["channels"] for file in (system, microphone)], [2, 1])
        mixed, computers, spoken = (sound.decoded(file)[0] for file in (path, system, microphone))
        self.assertEqual(max(len(computers), len(spoken)), len(mixed))
        for sounds, present, absent in ((computers, 440, 1000), (spoken, 1000, 440)):
            self.assertGreater(sound.usual_amplitude(sounds, present, 1, 2.5), 0.05)
            self.assertLess(sound.usual_amplitude(sounds, absent, 1, 2.5), 0.005)
        self.assert_sumsUp(mixed, computers, spoken)

    def assert_sumsUp(self, mixed, computers, spoken):
        """The mix is the sum of the tracks at its gains, frame by frame."""
        for frame in range(sound.RATE, 2 * sound.RATE):
            self.assertAlmostEqual(mixed[frame], 0.9 * computers[frame] + spoken[frame], delta=0.03)

    def test_tracksAreKeptAsThePreferencesSayAndNamedInTheLanguage(self):
        preferences = self.folder.parent / "vantoro/vantoro.conf"
        preferences.parent.mkdir()
        preferences.write_text("[General]\nkeepTracks=true\n")
        environment = dict(os.environ, XDG_CONFIG_HOME=str(self.folder.parent))
        path = recorder.run("record", "--seconds", 1, "--folder", self.folder, env=environment).saved()
        self.assertEqual(set(self.folder.iterdir()), {path, *self.tracks_of(path, ("系统声音", "麦克风"))})

    def test_missingFolderIsMadeWithItsParents(self):
        path = recorder.record(self.folder / "a/b", "--seconds", 1).saved()
        self.assertEqual(path.parent, self.folder / "a/b")

    def test_defaultFolderIsVantoroInTheUsersVideos(self):
        path = recorder.run("record", "--seconds", "1").saved()
        self.assertEqual(path.parent.name, "Vantoro")
        self.assertTrue(str(path).startswith(os.environ["HOME"] + "/"))

    def test_terminalShowsTimeAndLevels(self):
        self.folder.mkdir()
        master, slave = os.openpty()
        with sound.tone(440):
            process = subprocess.Popen([recorder.PROGRAM, *recorder.IN_ENGLISH, "--folder", str(self.folder)],
                                       stdout=subprocess.PIPE, stderr=slave, text=True)
            os.close(slave)
            shown = b""
            while b"00:02  System [#" not in shown:
                shown += os.read(master, 4096)
            process.send_signal(signal.SIGINT)
            output, _ = process.communicate(timeout=60)
            try:
                while data := os.read(master, 4096):
                    shown += data
            except OSError:
                pass  # the other end is closed
        self.assertIn(b"00:00  System [", shown)
        self.assertTrue(output.startswith(str(self.folder)))
        os.close(master)

    def test_terminalSaysOfWhichSourceNothingWillBeHeard(self):
        self.folder.mkdir()
        master, slave = os.openpty()
        subprocess.run(["pactl", "set-source-mute", "vantoro-microphone", "1"], check=True)
        process = subprocess.Popen([recorder.PROGRAM, *recorder.IN_ENGLISH, "--folder", str(self.folder)],
                                   stdout=subprocess.DEVNULL, stderr=slave)
        os.close(slave)
        shown = b""
        while b"] only silence!  Mic [--------------------] muted!" not in shown:
            shown += os.read(master, 4096)
        with sound.tone(440):
            while not re.search(rb"#-*\]  Mic \[-+\] muted!", shown):
                shown += os.read(master, 4096)
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(60), 0)
        os.close(master)
        self.assertNotIn(b"only silence!", shown.split(b"00:09", 1)[0])

    def test_recordingEndsWithTheSilenceBehindASound(self):
        recording = recorder.Recording(self.folder, "--no-microphone", "--until-silence", 1)
        recording.wait_until_written()
        with sound.tone(440, seconds=2):
            samples, _ = sound.decoded(recording.finish().saved())
        end = len(samples) / sound.RATE
        self.assertLess(sound.peak(samples, end - 0.9), 0.01)
        self.assertGreater(sound.peak(samples, end - 1.6, end - 1.1), 0.1)

    def test_twoRecordingsAtOnceAreTwoFiles(self):
        first = recorder.Recording(self.folder, "--seconds", 3)
        second = recorder.Recording(self.folder, "--seconds", 5)
        paths = {first.finish().saved(), second.finish().saved()}
        self.assertEqual(len(paths), 2)


if __name__ == "__main__":
    main(CommandLine)

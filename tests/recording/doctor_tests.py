#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""`vantoro doctor`: its findings on a desktop, in both languages, and its exit status."""

import os
import signal
import subprocess
import sys
import time

import dbus

sys.dont_write_bytecode = True

import recorder  # noqa: E402
import sound  # noqa: E402
from case import RecordingCase, main  # noqa: E402

WATCHER = "org.kde.StatusNotifierWatcher"
PORTAL = "org.freedesktop.portal.Desktop"
PORTAL_OBJECT = "/org/freedesktop/portal/desktop"
INHIBITION = "org.freedesktop.portal.Inhibit"
LOGIN = "org.freedesktop.login1"
SECONDS_FOR_ALL = 20  # its own limits are shorter; this is for a busy machine

# Missing in every private desktop.
LACKING = [
    ("!   Status area: the desktop shows none", "!   状态区：桌面没有显示"),
    ("!   Desktop portal: not there, or without a way to keep the machine awake", "!   桌面门户：没有，或无法阻止自动睡眠"),
    ("!   Login manager: not there", "!   登录管理器：没有"),
]


class Bus:
    """A message bus with independent stand-ins for services."""

    def __init__(self, address, kind):
        self._kind = kind
        self._environment = dict(os.environ, DBUS_SESSION_BUS_ADDRESS=address, DBUS_SYSTEM_BUS_ADDRESS=address)
        self._services = []
        self._bus = dbus.bus.BusConnection(address)

    def close(self):
        self._bus.close()
        for service in self._services:
            service.kill()
            service.wait()

    def offer(self, name, *words):
        """Starts the stand-in with these arguments."""
        self._services.append(subprocess.Popen(
            [sys.executable, "-m", "dbusmock", f"--{self._kind}", "--logfile", os.devnull, *words],
            env=self._environment))
        deadline = time.monotonic() + 20
        while not self._bus.name_has_owner(name):
            if time.monotonic() > deadline:
                raise AssertionError(f"{name} did not come to the bus")
            time.sleep(0.005)  # wait for the process

    def add_property(self, name, path, interface, key, value):
        mock = dbus.Interface(self._bus.get_object(name, path), "org.freedesktop.DBus.Mock")
        mock.AddProperty(interface, key, value)


class Doctor(RecordingCase):
    def setUp(self):
        super().setUp()
        self.configuration = self.folder.parent / "configuration"
        (self.configuration / "vantoro").mkdir(parents=True)
        self.environment = dict(os.environ, XDG_CONFIG_HOME=str(self.configuration))
        self.record_into(self.folder)

    def record_into(self, folder):
        (self.configuration / "vantoro/vantoro.conf").write_text(f"[General]\noutputDirectory={folder}\n")

    def offer_services(self):
        """Offers everything that a private desktop lacks."""
        session = Bus(os.environ["DBUS_SESSION_BUS_ADDRESS"], "session")
        self.addCleanup(session.close)
        session.offer(WATCHER, WATCHER, "/StatusNotifierWatcher", WATCHER)
        session.add_property(WATCHER, "/StatusNotifierWatcher", WATCHER, "IsStatusNotifierHostRegistered", True)
        session.offer(PORTAL, PORTAL, PORTAL_OBJECT, INHIBITION)
        session.add_property(PORTAL, PORTAL_OBJECT, INHIBITION, "version", dbus.UInt32(3))
        address = f"unix:path={self.folder.parent}/system-bus"
        daemon = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--nopidfile", "--print-address", f"--address={address}"],
            stdout=subprocess.PIPE, text=True)
        self.addCleanup(daemon.stdout.close)
        self.addCleanup(daemon.wait)
        self.addCleanup(daemon.kill)
        daemon.stdout.readline()
        system = Bus(address, "system")
        self.addCleanup(system.close)
        system.offer(LOGIN, "--template", "logind")
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = address

    def examine(self, language="en"):
        """The findings and the advice."""
        before = time.monotonic()
        result = recorder.run("doctor", "--language", language, env=self.environment)
        self.assertLess(time.monotonic() - before, SECONDS_FOR_ALL)
        self.assertEqual(result.errors, "")
        findings, advice = result.output.split("\n\n")
        lines = findings.splitlines()
        for line in lines:
            self.assertRegex(line, "^(ok  |!   )")
        self.assertEqual(result.status, int(any(line.startswith("!") for line in lines)), result)
        return lines, advice.splitlines()

    def problems(self):
        """The problems other than what a private desktop lacks."""
        found, _ = self.examine()
        lacking = [english for english, _ in LACKING]
        for line in lacking:
            self.assertIn(line, found)
        return [line for line in found if line.startswith("!") and line not in lacking]

    def test_doctorFindsNothingWrongOnADesktopThatHasEverything(self):
        self.offer_services()
        findings, advice = self.examine()
        self.assertRegex(findings[0], r"^ok  Sound server: PipeWire \d+\.\d+\.\d+ \(client library \d+\.\d+\.\d+\)$")
        self.assertRegex(findings[9], rf"^ok  Recording folder: {self.folder} \(created by the first recording\), "
                                       r"\d+\.\d GiB free$")
        self.assertEqual(findings[1:9] + findings[10:], [
            "ok  Session manager: running",
            "ok  Permission for system audio: granted by the sound server",
            "ok  Outputs: 2",
            "ok  Microphone: Virtual Microphone (default)",
            "ok  Permission for the microphone: no setting of the desktop forbids it",
            "ok  Status area: there",
            "ok  Desktop portal: keeps the machine awake while recording",
            "ok  Login manager: lets Vantoro put off sleep until a recording is safe",
            "ok  Interrupted recordings: none",
        ])
        self.assertEqual(advice, ["Nothing is wrong."])
        self.assertFalse(self.folder.exists())

    def test_doctorNamesWhatADesktopLacksInTheUsersLanguage(self):
        for language, column, heading in (("en", 0, "What to do:"), ("zh-Hans", 1, "处理办法：")):
            findings, advice = self.examine(language)
            self.assertEqual([line for line in findings if line.startswith("!")], [row[column] for row in LACKING])
            self.assertEqual(advice[0], heading)
            self.assertEqual(len(advice), 1 + len(LACKING))
        unasked = recorder.run("doctor", env=self.environment)
        self.assertTrue(unasked.output.startswith("ok  声音服务器：PipeWire "), unasked)
        with open(self.configuration / "vantoro/vantoro.conf", "a", encoding="utf-8") as preferences:
            preferences.write("appLanguage=en\n")
        unasked = recorder.run("doctor", env=self.environment)
        self.assertTrue(unasked.output.startswith("ok  Sound server: PipeWire "), unasked)

    def test_doctorNamesAMicrophoneThatIsMutedInTheMixer(self):
        sound.use_microphone()
        subprocess.run(["pactl", "set-source-mute", sound.MICROPHONE, "1"], check=True)
        self.assertEqual(self.problems(), ["!   Microphone: Virtual Microphone (default): muted in the mixer"])
        _, advice = self.examine()
        self.assertIn("- Unmute the microphone Virtual Microphone in the sound settings.", advice)
        subprocess.run(["pactl", "set-source-mute", sound.MICROPHONE, "0"], check=True)
        subprocess.run(["pactl", "set-source-volume", sound.MICROPHONE, "0"], check=True)
        self.assertEqual(self.problems(),
                         ["!   Microphone: Virtual Microphone (default): its volume in the mixer is zero"])
        subprocess.run(["pactl", "set-source-volume", sound.MICROPHONE, "50%"], check=True)
        self.assertEqual(self.problems(), [])

    def test_doctorMissesAMicrophone(self):
        subprocess.run(["pw-cli", "destroy", sound.MICROPHONE], check=True, stdout=subprocess.DEVNULL)
        self.assertEqual(self.problems(), ["!   Microphone: none"])

    def test_doctorMissesASoundServerThatWasKilled(self):
        os.kill(int(os.environ["VANTORO_SESSION_PIPEWIRE_PID"]), signal.SIGKILL)
        problem, = self.problems()
        self.assertRegex(problem, r"^!   Sound server: PipeWire does not answer \(client library \d+\.\d+\.\d+\)$")

    def stop_until_the_end(self, pid):
        os.kill(pid, signal.SIGSTOP)
        self.addCleanup(os.kill, pid, signal.SIGCONT)

    def test_doctorWaitsForNoSoundServerThatHangs(self):
        self.stop_until_the_end(int(os.environ["VANTORO_SESSION_PIPEWIRE_PID"]))
        self.offer_services()
        found, advice = self.examine()
        problem, = [line for line in found if line.startswith("!")]
        self.assertRegex(problem, r"^!   Sound server: PipeWire does not answer")
        self.assertEqual(len(advice), 2)

    def test_doctorWaitsForNoBusThatHangs(self):
        bus = dbus.bus.BusConnection(os.environ["DBUS_SESSION_BUS_ADDRESS"])
        self.addCleanup(bus.close)
        daemon = bus.call_blocking("org.freedesktop.DBus", "/", "org.freedesktop.DBus", "GetConnectionUnixProcessID",
                                   "s", ("org.freedesktop.DBus",))
        self.stop_until_the_end(int(daemon))
        found, advice = self.examine()
        self.assertEqual([line for line in found if line.startswith("!")], [
            "!   Permission for the microphone: the desktop does not answer",
            "!   Session bus: does not answer",
            "!   Login manager: not there",
        ])
        self.assertEqual(len(advice), 3)

    def test_doctorWaitsForNoDiskThatHangs(self):
        self.folder.mkdir()
        before = time.monotonic()
        # Delay the query of the folder's free space for a minute.
        program = subprocess.Popen(
            ["strace", "-f", "-o", os.devnull, "-P", str(self.folder), "-e", "trace=statfs",
             "-e", "inject=statfs:delay_enter=60s", recorder.PROGRAM, "doctor", "--language", "en"],
            env=self.environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        self.addCleanup(program.communicate)
        self.addCleanup(program.kill)
        findings = []
        while (line := program.stdout.readline().strip()):
            findings.append(line)
        self.assertIn(f"!   Recording folder: {self.folder}: its disk does not answer", findings)
        self.assertLess(time.monotonic() - before, SECONDS_FOR_ALL)

    def test_doctorWorksWithoutADesktopAndAHome(self):
        # No desktop variables; keep a sanitized program's options.
        self.environment = {name: value for name, value in os.environ.items()
                            if name == "PATH" or name.endswith("_OPTIONS")}
        self.environment["XDG_RUNTIME_DIR"] = str(self.folder.parent)
        found, _ = self.examine()
        self.assertRegex(found[0], r"^!   Sound server: PipeWire does not answer")
        self.assertIn("!   Session bus: there is none, so no status area and no portal", found)
        del self.environment["XDG_RUNTIME_DIR"]
        found, _ = self.examine("zh-Hans")
        self.assertIn("!   会话总线：没有，因此也没有状态区和桌面门户", found)

    def test_doctorNamesAFolderThatTakesNoFiles(self):
        self.folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "ro", "tmpfs", str(self.folder)], check=True)
        self.addCleanup(subprocess.run, ["umount", str(self.folder)], check=True)
        expected = f"!   Recording folder: {self.folder}: no file can be created (Read-only file system)"
        self.assertIn(expected, self.problems())
        self.record_into(self.folder / "below")
        self.assertIn(expected.replace(str(self.folder), f"{self.folder}/below"), self.problems())

    def test_doctorNamesAFolderThatIsAlmostFull(self):
        self.folder.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "size=300m", "tmpfs", str(self.folder)], check=True)
        self.addCleanup(subprocess.run, ["umount", str(self.folder)], check=True)
        self.assertEqual(self.problems(), [f"!   Recording folder: {self.folder}, only 300 MiB free"])
        self.assertEqual(os.listdir(self.folder), [])

    def test_doctorCountsInterruptedRecordingsAndNoneThatRuns(self):
        waiting = "!   Interrupted recordings waiting to be finished: 1"
        with sound.tone(440):
            recording = recorder.Recording(self.folder)
            recording.wait_until_written()
            self.assertEqual(self.problems(), [])
            recording.kill()
        before = recorder.temporary_files(self.folder)
        self.assertEqual(len(before), 1)
        self.assertEqual(self.problems(), [waiting])
        self.assertEqual(recorder.temporary_files(self.folder), before)
        recorder.run("recover", "--folder", self.folder).saved()
        self.assertEqual(self.problems(), [])


if __name__ == "__main__":
    main(Doctor)

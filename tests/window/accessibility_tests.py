#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Screen reader users can find, operate and follow everything in the window."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from screen import press_keys  # noqa: E402
from texts import CHINESE, ENGLISH  # noqa: E402

CONTROLS = ("refreshAudioDevices", "systemAudio", "microphone", "systemLevel", "micLevel", "change",
            "openRecordingFolder", "startRecording")


class Accessibility(WindowCase):
    def assert_all_is_there(self, window, texts):
        for key in CONTROLS:
            window.control(texts[key])
        self.assertTrue(window.labelled(texts["input"]).is_a_control)
        for text in (texts["ready"], texts["m4aAudio"], "00:00", str(self.folder),
                     f"{texts['screenAndSystemAudio']}: {texts['allowed']}",
                     f"{texts['microphone']}: {texts['allowed']}"):
            window.text(text)

    def test_everythingIsFoundByItsName(self):
        self.assert_all_is_there(self.open_window(), ENGLISH)

    def test_languageChosenInTheMenuRenamesEverythingAtOnce(self):
        self.set_preferences()
        window = self.open_window()
        self.assert_all_is_there(window, CHINESE)
        window.menu_item("English").press()
        self.assert_all_is_there(window, ENGLISH)
        window.menu_item(ENGLISH["language"])
        window.menu_item(ENGLISH["checkForUpdates"])
        for key in CONTROLS:
            self.assertFalse(window.shows(CHINESE[key]), key)
        window.menu_item("中文").press()
        self.assert_all_is_there(window, CHINESE)

    def test_sourcesAreSwitchedAndSayWhetherTheyAreOn(self):
        window = self.open_window()
        for source, level in (("systemAudio", "systemLevel"), ("microphone", "micLevel")):
            switch = window.control(ENGLISH[source])
            slider = window.control(ENGLISH[level])
            self.assertEqual((switch.is_checked, slider.is_enabled), (True, True))
            switch.act("Toggle")
            wait_for(lambda: not switch.is_checked and not slider.is_enabled, f"{source} to be off")
        self.assertFalse(window.control(ENGLISH["startRecording"]).is_enabled)
        self.assertFalse(window.shows(ENGLISH["input"]))

    def test_volumesAreSetAndSaid(self):
        window = self.open_window()
        for level in ("systemLevel", "micLevel"):
            slider = window.control(ENGLISH[level])
            slider.set_value(0.2)
            wait_for(lambda: slider.value == 0.2 and slider.description == "25%", f"{level} to be a quarter")
            slider.act("Increase")
            wait_for(lambda: slider.value > 0.2 and slider.description != "25%", f"{level} to be more")

    def test_microphoneIsPicked(self):
        self.add_microphone("second-microphone")
        window = self.open_window()
        picker = window.labelled(ENGLISH["input"])
        wait_for(lambda: picker.name == "Virtual Microphone", "the usual microphone to be picked")
        picker.act("ShowMenu")
        wait_for(lambda: picker.choice("second-microphone").is_showing, "the list of microphones")
        # The keyboard moves through it as in any popup list.
        press_keys("Down")
        wait_for(lambda: picker.choice("second-microphone").is_selected, "the second microphone to be selected")
        press_keys("Return")
        wait_for(lambda: picker.name == "second-microphone", "the second microphone to be picked")
        self.enterContext(sound.tone(1000, "--into", "second-microphone"))
        self.record(window)
        microphone = window.meter(ENGLISH["microphoneMeter"])
        wait_for(lambda: microphone.value > 0.1, "the second microphone to be heard")

    def test_recordingSaysItsStateTimeAndLevels(self):
        self.enterContext(sound.tone(440))
        self.enterContext(sound.tone(1000, "--into", sound.MICROPHONE, amplitude=0.05))
        window = self.open_window()
        self.assertFalse(window.shows(ENGLISH["systemMeter"]))
        self.record(window)
        for text in ("recording", "capturingAudio", "audioInputLevels"):
            window.text(ENGLISH[text])
        system = window.meter(ENGLISH["systemMeter"])
        microphone = window.meter(ENGLISH["microphoneMeter"])
        wait_for(lambda: system.value > microphone.value > 0.1, "the levels of a loud and a quiet tone")
        elapsed = window.elapsed_time
        wait_for(lambda: elapsed.name >= "00:02", "the elapsed time to be said")
        window.control(ENGLISH["stopRecording"]).press()
        self.saved_recording(window)
        for text in ("saved", "recordingReady"):
            window.text(ENGLISH[text])
        for key in ("playRecording", "showInFinder", "startRecording"):
            window.control(ENGLISH[key])
        self.assertFalse(window.shows(ENGLISH["systemMeter"]))


if __name__ == "__main__":
    main(Accessibility)

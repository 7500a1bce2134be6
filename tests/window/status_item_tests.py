#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The two meters in the status area, as a panel shows them."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import sound  # noqa: E402
from events import let_events_happen, wait_for  # noqa: E402
from status_area import MICROPHONE_ITEM, SYSTEM_AUDIO_ITEM, StatusArea  # noqa: E402
from texts import CHINESE, ENGLISH  # noqa: E402


class StatusItems(WindowCase):
    def setUp(self):
        super().setUp()
        self.area = StatusArea()
        self.addCleanup(self.area.close)

    def items(self):
        return self.area.item(SYSTEM_AUDIO_ITEM), self.area.item(MICROPHONE_ITEM)

    def test_eachMeterShowsTheLevelOfItsSourceWhileItIsRecorded(self):
        window = self.open_window()
        system, microphone = self.items()
        at_rest = system.picture, microphone.picture
        self.assertNotEqual(*at_rest)
        self.record(window)
        silent = system.picture, microphone.picture
        self.assertFalse(set(map(str, silent)) & set(map(str, at_rest)))  # a recording can be told from rest
        with sound.tone(440):
            wait_for(lambda: system.picture != silent[0], "the level of the system's sound to be shown")
            self.assertEqual(microphone.picture, silent[1])
        with sound.tone(1000, "--into", sound.MICROPHONE):
            wait_for(lambda: microphone.picture != silent[1], "the level of the microphone to be shown")
        window.control(ENGLISH["stopRecording"]).press()
        wait_for(lambda: (system.picture, microphone.picture) == at_rest, "the meters to be at rest")

    def test_menuMakesARecordingWhileTheWindowIsHiddenAndQuits(self):
        self.enterContext(sound.tone(440))
        window = self.open_window()
        self.wait_until_ready(window)
        item = self.items()[0]
        self.assertEqual(item.menu, ["Show Vantoro", ENGLISH["startRecording"], None, "Quit"])
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: not self.screen.is_managed(window.frame), "the window to be hidden")
        with self.until_written():
            item.choose(ENGLISH["startRecording"])
        wait_for(lambda: item.tool_tip_detail > "Recording: 00:00", "the tool tip to say the time")
        item.choose(ENGLISH["stopRecording"])
        wait_for(lambda: item.menu[1] == ENGLISH["startRecording"], "the recording to end")
        wait_for(lambda: [path.suffix for path in self.folder.iterdir()] == [".m4a"], "the recording to be saved")
        self.assert_holds(self.only_recording(), 440)
        self.assertEqual(item.tool_tip_detail, "")
        item.choose("Show Vantoro")
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window to come to the front")
        item.choose("Quit")
        self.assertEqual(window.program.finish(), 0)

    def test_panelIsToldOfNothingWhileNothingIsRecorded(self):
        window = self.open_window()
        system, microphone = self.items()
        self.wait_until_ready(window)
        for item in (system, microphone):
            item.listen()
        with sound.tone(440), sound.tone(1000, "--into", sound.MICROPHONE):
            # Once the program has reacted to a later change, it has had the time.
            self.add_microphone("second-microphone")
            window.control(ENGLISH["refreshAudioDevices"]).press()
            picker = window.labelled(ENGLISH["input"])
            wait_for(lambda: picker.choice("second-microphone"), "the second microphone")
        system.read("Id"), microphone.read("Id")
        let_events_happen()
        self.assertEqual((system.told, microphone.told), ([], []))

    def test_descriptionsFollowTheLanguageAndToolTipsKeepThatOfTheLaunch(self):
        self.enterContext(sound.tone(440))
        self.set_preferences()
        window = self.open_window()
        items = self.items()
        in_chinese = [CHINESE["systemAudio"], CHINESE["microphone"]]
        in_english = [ENGLISH["systemAudio"], ENGLISH["microphone"]]
        self.assertEqual([item.description for item in items], in_chinese)
        window.menu_item("English").press()
        self.record(window)
        wait_for(lambda: [item.description for item in items] == in_english, "the descriptions in English")
        self.assertEqual([item.tool_tip for item in items], in_chinese)


if __name__ == "__main__":
    main(StatusItems)

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
        self.enterContext(sound.tone(440))
        window = self.open_window()
        system, microphone = self.items()
        at_rest = system.picture, microphone.picture
        self.assertNotEqual(*at_rest)
        self.record(window)
        wait_for(lambda: system.picture != at_rest[0], "the level of the system's sound to be shown")
        self.assertEqual(microphone.picture, at_rest[1])
        with sound.tone(1000, "--into", sound.MICROPHONE):
            wait_for(lambda: microphone.picture != at_rest[1], "the level of the microphone to be shown")
        window.control(ENGLISH["stopRecording"]).press()
        wait_for(lambda: (system.picture, microphone.picture) == at_rest, "the meters to be at rest")

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

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Closing the window hides it within reach, and ends nothing."""

import sys

sys.dont_write_bytecode = True

from window_case import WindowCase, main  # noqa: E402
import sound  # noqa: E402
from events import wait_for  # noqa: E402
from status_area import MICROPHONE_ITEM, SYSTEM_AUDIO_ITEM, StatusArea  # noqa: E402
from texts import ENGLISH  # noqa: E402


class Closing(WindowCase):
    def status_area(self):
        area = StatusArea()
        self.addCleanup(area.close)
        return area

    def close_to_the_status_area(self, area, window):
        area.item(SYSTEM_AUDIO_ITEM).read("Id")  # by now the program has found the status area
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: not self.screen.is_managed(window.frame), "the window to be hidden")

    def assert_comes_to_the_front(self, window):
        wait_for(lambda: self.screen.is_in_front(window.frame), "the window to come to the front")

    def test_closedWindowIsHiddenUntilAnItemOfTheStatusAreaIsClicked(self):
        area = self.status_area()
        window = self.open_window()
        for identifier in (SYSTEM_AUDIO_ITEM, MICROPHONE_ITEM):
            item = area.item(identifier)
            self.close_to_the_status_area(area, window)
            self.screen.cover()
            item.click()
            self.assert_comes_to_the_front(window)
        self.assertFalse(window.program.has_ended)

    def test_itemBringsACoveredWindowToTheFront(self):
        area = self.status_area()
        window = self.open_window()
        self.screen.cover()
        area.item(SYSTEM_AUDIO_ITEM).click()
        self.assert_comes_to_the_front(window)

    def test_recordingGoesOnWhileTheWindowIsClosed(self):
        area = self.status_area()
        self.enterContext(sound.tone(440))
        window = self.open_window()
        self.record(window)
        elapsed = window.elapsed_time
        self.close_to_the_status_area(area, window)
        before = elapsed.name
        wait_for(lambda: elapsed.name > before, "the time to go on")
        area.item(MICROPHONE_ITEM).click()
        self.assert_comes_to_the_front(window)
        window.control(ENGLISH["stopRecording"]).press()
        self.assert_holds(self.saved_recording(window), 440)

    def test_closedWindowIsMinimisedWhereThereIsNoStatusArea(self):
        window = self.open_window()
        self.screen.ask_to_close(window.frame)
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.screen.pick(window.frame)
        self.assert_comes_to_the_front(window)

    def test_hiddenWindowIsMinimisedWhenTheStatusAreaGoes(self):
        area = self.status_area()
        window = self.open_window()
        self.close_to_the_status_area(area, window)
        area.close()
        wait_for(lambda: self.screen.is_minimised(window.frame), "the window to be minimised")
        self.screen.pick(window.frame)
        self.assert_comes_to_the_front(window)


if __name__ == "__main__":
    main(Closing)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""The dialog for the recording folder, on a desktop that has none of its own."""

import sys

sys.dont_write_bytecode = True

from pathlib import Path  # noqa: E402

from window_case import WindowCase, main  # noqa: E402
from events import wait_for  # noqa: E402
from screen import press_keys  # noqa: E402
from texts import CHINESE  # noqa: E402


class FolderDialog(WindowCase):
    def has_loaded_translations(self, window):
        return "qtbase_zh_CN" in Path(f"/proc/{window.program.pid}/maps").read_text()

    def stored_folder(self):
        return (self.home / ".config/vantoro/vantoro.conf").read_text()

    def test_dialogIsChineseAndOpensAboveTheFolderThatIsMissing(self):
        self.set_preferences(appLanguage="zh-Hans")
        self.folder.rmdir()
        window = self.open_window()
        window.control(CHINESE["change"])
        self.assertFalse(self.has_loaded_translations(window))
        window.control(CHINESE["change"]).press()
        window.text("取消")
        window.text(CHINESE["choose"])
        self.assertTrue(self.has_loaded_translations(window))
        wait_for(lambda: self.screen.has_a_dialog_in_front(window.frame), "the dialog in front")
        press_keys("Return")
        wait_for(lambda: "outputDirectory" in self.stored_folder(), "the folder to be stored")
        self.assertIn(f"outputDirectory={self.folder.parent}\n", self.stored_folder())
        window.text(str(self.folder.parent))


if __name__ == "__main__":
    main(FolderDialog)

# SPDX-License-Identifier: GPL-3.0-or-later
"""Browsers: a page that plays with Web Audio, and a call between two tabs, one of which has the microphone."""

import functools
import http.server
import queue
import threading
import urllib.parse
from pathlib import Path

from application import Application

PAGES = Path(__file__).resolve().parent / "pages"
SECONDS_TO_START = 60
FIREFOX_PREFERENCES = {
    "media.autoplay.default": 0,
    "media.navigator.permission.disabled": True,
    "media.peerconnection.ice.loopback": True,
    "media.peerconnection.ice.obfuscate_host_addresses": False,
    "browser.shell.checkDefaultBrowser": False,
    "browser.aboutwelcome.enabled": False,
    "datareporting.policy.dataSubmissionEnabled": False,
    "browser.sessionstore.resume_from_crash": False,
    "app.update.enabled": False,
}


class PageServer(http.server.ThreadingHTTPServer):
    """Serves the pages and the sound, and receives what the pages report."""

    def __init__(self, sound_file):
        super().__init__(("127.0.0.1", 0), Handler)
        self.sound_file = sound_file
        self._said = queue.Queue()
        threading.Thread(target=self.serve_forever, daemon=True).start()

    def url(self, page):
        return f"http://localhost:{self.server_address[1]}/{page}"

    def say(self, word):
        self._said.put(word)

    def wait_for(self, word):
        said = self._said.get(timeout=SECONDS_TO_START)
        if said != word:
            raise AssertionError(f"the page says {said}")

    def stop(self):
        self.shutdown()
        self.server_close()


class Handler(http.server.BaseHTTPRequestHandler):
    def do_GET(self):
        path = urllib.parse.unquote(self.path)
        if path.startswith("/said/"):
            self.server.say(path.removeprefix("/said/"))
            self._answer(b"", "text/plain")
        elif path == "/sound.wav":
            self._answer(Path(self.server.sound_file).read_bytes(), "audio/wav")
        elif (PAGES / path.lstrip("/")).is_file():
            self._answer((PAGES / path.lstrip("/")).read_bytes(), "text/html")
        else:
            self.send_error(404)

    def _answer(self, content, kind):
        self.send_response(200)
        self.send_header("Content-Type", kind)
        self.send_header("Content-Length", str(len(content)))
        self.end_headers()
        self.wfile.write(content)

    def log_message(self, *_):
        pass


def firefox(stage, *urls):
    profile = stage.folder / "profile"
    profile.mkdir()
    (profile / "user.js").write_text("".join(
        f'user_pref("{name}", {str(value).lower() if isinstance(value, bool) else value});\n'
        for name, value in FIREFOX_PREFERENCES.items()))
    stage.start("firefox-esr", "--no-remote", "--profile", profile, *urls)


def chromium(stage, *urls):
    stage.start("chromium", "--no-sandbox", "--no-first-run", "--disable-gpu", "--password-store=basic",
                "--autoplay-policy=no-user-gesture-required", "--use-fake-ui-for-media-stream",
                "--allow-loopback-in-peer-connection", "--disable-features=WebRtcHideLocalIpsWithMdns",
                f"--user-data-dir={stage.folder / 'profile'}", *urls)


def play_page(browser, stage):
    server = PageServer(stage.sound())
    stage.at_the_end(server.stop)
    browser(stage, server.url("player.html"))
    try:
        server.wait_for("ended")
    except queue.Empty:
        raise AssertionError(f"the page did not play: {stage.said()}") from None


def play_call(browser, stage):
    server = PageServer(stage.sound(channels=1))
    stage.at_the_end(server.stop)
    browser(stage, server.url("called.html"), server.url("caller.html"))
    try:
        server.wait_for("calling")
    except queue.Empty:
        raise AssertionError(f"the pages did not call: {stage.said()}") from None
    stage.speak()


def applications(name, package, browser):
    return (Application(f"{name}, Web Audio", package, functools.partial(play_page, browser)),
            Application(f"{name}, a call between two tabs", package, functools.partial(play_call, browser),
                        prepare=lambda stage: stage.sound(channels=1), has_one_channel=True))


HEAVY = (*applications("Firefox", "firefox-esr", firefox), *applications("Chromium", "chromium", chromium))

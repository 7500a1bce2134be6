# SPDX-License-Identifier: GPL-3.0-or-later
"""Shells with simulated keyboard input: what each completes on a command line."""

import os
import pty
import re
import select
import shutil
import subprocess
import time
from pathlib import Path

BUILD = Path(os.environ.get("VANTORO_PROGRAM", Path(__file__).resolve().parents[2] / "build/release/vantoro")).parent
COMPLETIONS = BUILD / "packaging/completions"
SECONDS_TO_ANSWER = 60
# The shell inserts all completions into the line, which is then printed.
SHOW_THE_LINE = "\x01print-line \n"
PRINT_LINE = "print-line() { printf '[line:%s:line]\\n' \"$*\"; }\n"
PROMPT = "ready> "


class Typed:
    """A shell on its own terminal, in which a key (`all_key`) inserts all completions into the line."""

    def __init__(self, command, environment, all_key):
        self._all_key = all_key
        self._pid, self._terminal = pty.fork()
        if self._pid == 0:
            os.execvpe(command[0], command, environment)
        self._read_until(re.escape(PROMPT))

    def offered(self, line):
        """The completions of the last word of a line."""
        os.write(self._terminal, (line + self._all_key + SHOW_THE_LINE).encode())
        shown = self._read_until(r"\[line:(.*):line\].*" + re.escape(PROMPT))
        return sorted(shown.split()[len(line.rsplit(" ", 1)[0].split()):])

    def close(self):
        os.close(self._terminal)
        os.waitpid(self._pid, 0)

    def _read_until(self, pattern):
        """The pattern's group, once the terminal shows all of it."""
        deadline = time.monotonic() + SECONDS_TO_ANSWER
        read = ""
        while not (match := re.search(pattern, read, re.DOTALL)):
            ready, _, _ = select.select([self._terminal], [], [], max(0, deadline - time.monotonic()))
            if not ready:
                raise AssertionError(f"the shell does not answer: {read!r}")
            read += os.read(self._terminal, 65536).decode(errors="replace")
        return match.group(match.lastindex or 0)


def bash(folder, environment):
    setup = folder / "bashrc"
    setup.write_text(
        f"{PRINT_LINE}PS1='{PROMPT}'\n"
        f". /usr/share/bash-completion/bash_completion\n. '{COMPLETIONS}/bash/vantoro'\n")
    return Typed(["bash", "--rcfile", str(setup), "--noprofile", "-i"], environment, "\x1b*")


def zsh(folder, environment):
    (folder / ".zshrc").write_text(
        f"{PRINT_LINE}fpath=('{COMPLETIONS}/zsh' $fpath)\n"
        f"autoload -Uz compinit\ncompinit -u -d '{folder}/.zcompdump'\n"
        "zstyle ':completion:*' completer _all_matches _complete\nzstyle ':completion:*' insert true\n"
        f"bindkey -e\nunset zle_bracketed_paste\nPS1='{PROMPT}'\nPROMPT_EOL_MARK=\n")
    return Typed(["zsh", "-i"], dict(environment, ZDOTDIR=str(folder)), "\t")


class Fish:
    """Fish prints its completions without a terminal."""

    def __init__(self, environment):
        self._environment = environment

    def offered(self, line):
        result = subprocess.run(
            ["fish", "--no-config", "--command", f"source '{COMPLETIONS}/fish/vantoro.fish'\n"
             f"complete --do-complete '{line}'"],
            env=self._environment, capture_output=True, text=True, check=True, timeout=SECONDS_TO_ANSWER)
        if result.stderr:
            raise AssertionError(f"fish complains: {result.stderr}")
        offers = sorted(offer.split("\t")[0] for offer in result.stdout.splitlines())
        # Version 4 also prints those that merely contain the letters; a user sees them only if no other fits.
        word = line.rpartition(" ")[2]
        return [offer for offer in offers if offer.startswith(word)] or offers

    def close(self):
        pass


def started(name, folder):
    """Starts a shell with this home folder, in which `vantoro` is a program with two microphones."""
    programs = folder / "programs"
    programs.mkdir()
    program = programs / "vantoro"
    program.write_text("#!/bin/sh\n[ \"$*\" = devices ] && printf '* front\\tFront Side\\n  rear:0\\tRear Side\\n'\n")
    program.chmod(0o755)
    environment = {"HOME": str(folder), "PATH": f"{programs}:{os.environ['PATH']}", "TERM": "dumb",
                   "LC_ALL": "C.UTF-8", "COLUMNS": "1000"}
    if shutil.which(name) is None:
        raise AssertionError(f"{name} is not installed (tools/install-dependencies --tests installs it)")
    if name == "fish":
        return Fish(environment)
    return {"bash": bash, "zsh": zsh}[name](folder, environment)

#!/usr/bin/python3
# SPDX-License-Identifier: GPL-3.0-or-later
"""Fills the commands and options of options.toml into a template of a source, a manual page or a shell's completions.
Words such as @synopsis@ in the template stand for the texts that are collected here.

Usage: option_texts.py TEMPLATE OUTPUT
"""

import re
import sys
import tomllib
from collections import defaultdict
from pathlib import Path

HEADINGS = {"en": ("Options of {}", "Options without a command", ":"), "zh": ("{} 的选项", "不带命令的选项", "：")}
ALONE = "vantoro"  # the table of the options without a command
APOSTROPHE_IN_ZSH = r"'\''"
APOSTROPHE_IN_FISH = r"\'"
LANGUAGES = "zh-Hans en"
# What can follow an option: for bash the name of the word that lists such options, and code for zsh and fish.
VALUES = {
    "N": ("bash_words", ":seconds: ", " -x"),
    "GAIN": ("bash_words", ":gain: ", " -x"),
    "FOLDER": ("bash_folders", ":folder:_files -/", " -x -a '(__fish_complete_directories)'"),
    "ID": ("bash_microphones", ":microphone:_vantoro_microphones", " -x -a '(__vantoro_microphones)'"),
    "LANGUAGE": ("bash_languages", f":language:({LANGUAGES})", f" -x -a '{LANGUAGES}'"),
    "TEXT": ("bash_words", ":text: ", " -x"),
    "": ("bash_flags", "", ""),
}


def roff(text, value):
    """Backquoted words in bold, the name of the option's value in italics."""
    text = re.sub("`([^`]*)`", r"\\fB\1\\fP", text.replace("-", r"\-"))
    return re.sub(rf"\b({value}|CHANNEL)\b", r"\\fI\1\\fP", text, flags=re.ASCII) if value else text


def in_manual(heading, entry, language, value=""):
    text = (" " if language == "en" else "").join(filter(None, entry[language]))
    return f".TP\n{roff(heading, value)}\n{roff(text, value)}"


def in_shell(entry, apostrophe):
    """The summary for use between apostrophes; `apostrophe` is how the shell writes one there."""
    return entry["en"][0].removesuffix(".").replace("'", apostrophe)


def add_option(texts, command, name, option):
    value = option.get("value", "")
    letters = option.get("letter", "")
    names = [*(f"-{letter}" for letter in letters), f"--{name}"]
    after = f" {value}" if value else ""
    bash_list, zsh_value, fish_value = VALUES[value]
    if command != ALONE:
        texts["rows"].append(f'    {{"{command}", "{name}", {"true" if value else "false"}}},')
    texts["synopsis"].append(roff(f"[`--{name}`{after}]", value))
    for language in HEADINGS:
        texts[f"help_options_{language}"].append(f"  {', '.join(names) + after:<28}{option[language][0]}")
        texts[f"options_{language}"].append(in_manual(f"`{', '.join(names)}`{after}", option, language, value))
    if f"--{name}" not in texts[bash_list]:
        texts[bash_list].append(f"--{name}")
    texts[f"bash_{command}"] += names
    for spelling in names:
        exclusion = "(- : *)" if letters else ""
        texts[f"zsh_{command}"].append(
            f"'{exclusion}{spelling}{'=' if value else ''}[{in_shell(option, APOSTROPHE_IN_ZSH)}]{zsh_value}'")
    condition = "__fish_use_subcommand" if command == ALONE else f"'__fish_seen_subcommand_from {command}'"
    texts["fish"].append(
        f"complete -c vantoro -n {condition} -l {name}{''.join(f' -s {letter}' for letter in letters)}{fish_value}"
        f" -d '{in_shell(option, APOSTROPHE_IN_FISH)}'")


def add_command(texts, name, command):
    texts["names"].append(name)
    argument = command.get("argument", "")
    texts["synopsis"].append(f".B {name}" + (f"\n{roff(argument, argument.strip('[]'))}" if argument else ""))
    for language in HEADINGS:
        texts[f"help_commands_{language}"].append(f"  {f'{name} {argument}':<28}{command[language][0]}")
        texts[f"commands_{language}"].append(in_manual(f"`{name}` {argument}".strip(), command, language))
    texts["zsh_commands"].append(f"        '{name}:{in_shell(command, APOSTROPHE_IN_ZSH)}'")
    texts["fish"].append(f"complete -c vantoro -n __fish_use_subcommand -a {name}"
                         f" -d '{in_shell(command, APOSTROPHE_IN_FISH)}'")


def collected(commands):
    texts = defaultdict(list)
    for name, command in commands.items():
        options = {key: value for key, value in command.items() if isinstance(value, dict)}
        texts["synopsis"].append(".SY vantoro")
        if name != ALONE:
            add_command(texts, name, command)
        for language, (of_command, alone, colon) in HEADINGS.items() if options else ():
            heading = alone if name == ALONE else of_command.format(name)
            texts[f"help_options_{language}"].append(f"\n{heading}{colon}")
            texts[f"options_{language}"].append(f'.SS "{heading}"')
        for key, option in options.items():
            add_option(texts, name, key, option)
        texts["synopsis"].append(".YS")
    for name in texts["names"]:
        texts["bash_commands"].append(f"        {name}) options=\"{' '.join(texts[f'bash_{name}'])}\" ;;")
        if options := texts[f"zsh_{name}"]:
            indented = [f"                {name}) _arguments", *options]
            texts["zsh_options"].append(f" \\\n{' ' * 20}".join(indented) + " ;;")
    separators = {bash_list: " | " for bash_list, _, _ in VALUES.values()} | {
        "names": " ", f"bash_{ALONE}": " ", f"zsh_{ALONE}": f" \\\n{' ' * 8}"}
    return {name: separators.get(name, "\n").join(lines) for name, lines in texts.items()}


def main():
    source = Path(__file__).with_name("options.toml").read_text(encoding="utf-8")
    texts = collected(tomllib.loads(source)) | {"languages": LANGUAGES}
    template, output = map(Path, sys.argv[1:])
    output.write_text(re.sub("@([a-z_]+)@", lambda word: texts[word[1]], template.read_text(encoding="utf-8")),
                      encoding="utf-8")


main()

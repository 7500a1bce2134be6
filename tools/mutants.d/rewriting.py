# SPDX-License-Identifier: GPL-3.0-or-later
"""Writes a source that contains all of its mutants; one is selected when the program starts.

Around a selected mutant the code is the original, so each mutant is written only once.
"""

import os
import re

MESSAGE = re.compile(r"^(?P<file>[^\s:]+):(?P<line>\d+):(?P<column>\d+):\s+(?P<what>.*)$", re.MULTILINE)
MARKED = re.compile(r"/\*<(\d+)\*/.*?/\*\1>\*/", re.DOTALL)


def rewritten(source, mutants, constants, header):
    """The source with these mutants; constants that contain one are initialised at run time."""
    groups = {}
    for mutant in mutants:
        groups.setdefault((mutant.start, mutant.end), []).append(mutant)
    for constant in constants:
        if any(constant.holds[0] <= mutant.start and mutant.end <= constant.holds[1] for mutant in mutants):
            groups[(constant.start, constant.end)] = constant
    ordered = sorted(groups.items(), key=lambda item: (item[0][0], -item[0][1]))
    return f'#include "{header}"\n' + render(source, 0, len(source), ordered)


def render(source, start, end, groups):
    parts = []
    position = start
    while groups:
        (begin, stop), group = groups[0]
        inside = [item for item in groups[1:] if item[0][0] < stop]
        groups = groups[1 + len(inside):]
        inside = [item for item in inside if item[0][1] <= stop]
        parts.append(source[position:begin])
        parts.append(choice(group, render(source, begin, stop, inside)))
        position = stop
    return "".join(parts) + source[position:end]


def choice(group, inner):
    if not isinstance(group, list):
        return group.text
    if group[0].text is None:
        return f"{{ /*<{group[0].number}*/if (!{chosen(group[0])}) /*{group[0].number}>*/{inner} }}"
    others = ""
    for mutant in group:
        others += f"/*<{mutant.number}*/{chosen(mutant)} ? ({as_asked(mutant, mutant.text)}) /*{mutant.number}>*/: "
    return f"({others}({as_asked(group[0], inner) if all(mutant.boolean for mutant in group) else inner}))"


def chosen(mutant):
    return f"::vantoroMutant{'OrConstant' if mutant.may_be_constant else ''}({mutant.number})"


def as_asked(mutant, text):
    return f"static_cast<bool>({text})" if mutant.boolean else text


def refused(messages, folder, texts):
    """The numbers of the mutants that a compiler's messages in this folder refer to; texts by path."""
    numbers = set()
    blocks = re.split(r"\n(?=\S+:\d+:\d+: (?:fatal )?error: )", "\n" + messages)
    for block in blocks:
        if " error: " not in block:
            continue
        places = [place for match in MESSAGE.finditer(block) if (place := located(match, folder, texts))]
        marked = [number for text, offset in places for number in around(text, offset)]
        numbers.update(marked[:1] or {number for text, offset in places for number in in_line(text, offset)})
    return numbers


def located(match, folder, texts):
    text = texts.get(os.path.normpath(os.path.join(folder, match["file"])))
    if text is None:
        return None
    start = 0
    for _ in range(int(match["line"]) - 1):
        start = text.index("\n", start) + 1
    return text, start + int(match["column"]) - 1


def around(text, offset):
    return [int(match[1]) for match in MARKED.finditer(text) if match.start() <= offset < match.end()]


def in_line(text, offset):
    begin = text.rfind("\n", 0, offset) + 1
    stop = text.find("\n", offset)
    return [int(number) for number in re.findall(r"/\*<(\d+)\*/", text[begin:stop])]

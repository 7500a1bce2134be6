# SPDX-License-Identifier: GPL-3.0-or-later
"""Finds what can be changed in a source, with clang's parser."""

import dataclasses
import re

from clang import cindex

Kind = cindex.CursorKind

RELATIONS = {"<": ("<=", ">="), "<=": ("<", ">"), ">": (">=", "<="), ">=": (">", "<"), "==": ("!=",), "!=": ("==",)}
CONDITIONS = RELATIONS | {"&&": ("||",), "||": ("&&",)}
OPERATORS = CONDITIONS | {
    "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",),
    "<<": (">>",), ">>": ("<<",), "&": ("|",), "|": ("&",), "^": ("&",),
    "+=": ("-=",), "-=": ("+=",), "*=": ("/=",), "/=": ("*=",), "%=": ("*=",),
    "<<=": (">>=",), ">>=": ("<<=",), "&=": ("|=",), "|=": ("&=",), "^=": ("&=",),
}
STEPS = {"++": "--", "--": "++"}
NUMBER = re.compile(r"(0[xX](?=[0-9a-fA-F]))?((?(1)[0-9a-fA-F']+|[0-9'.]+(?:[eE][-+]?\d+)?))([a-zA-Z]*)")
FUNCTIONS = {Kind.FUNCTION_DECL, Kind.CXX_METHOD, Kind.CONSTRUCTOR, Kind.DESTRUCTOR, Kind.FUNCTION_TEMPLATE,
             Kind.CONVERSION_FUNCTION}
JUMPS = {Kind.BREAK_STMT, Kind.CONTINUE_STMT, Kind.RETURN_STMT}
# Not evaluated at run time.
NEVER_RUN = {Kind.STATIC_ASSERT, Kind.ENUM_DECL, Kind.ANNOTATE_ATTR, Kind.ALIGNED_ATTR}


@dataclasses.dataclass
class Mutant:
    """One change: replaces the text from start to end, or leaves out a statement."""

    file: str
    start: int
    end: int
    text: str | None  # None leaves out the statement
    line: int
    shown: str  # the source line, with the change in it
    boolean: bool = False  # the expression is only used as a condition
    may_be_constant: bool = False  # the compiler may also evaluate the place, without any change
    function: str = ""
    number: int = 0

    @property
    def key(self):
        return f"{self.file} {self.function}\n{self.shown}"


@dataclasses.dataclass
class Constant:
    """A variable's keyword constexpr, which becomes run-time initialisation if the variable contains mutants."""

    start: int
    end: int
    text: str
    holds: tuple


class Places:
    """The mutants of one source file."""

    def __init__(self, root, file, arguments):
        self.file = file
        self.source = (root / file).read_text("latin-1")  # one character per byte, as clang counts
        self.mutants = {}
        self.constants = []
        self._function = ""
        self._may_be_constant = False
        unit = cindex.Index.create().parse(str(root / file), args=["-xc++", *arguments])
        errors = [error for error in unit.diagnostics if error.severity >= cindex.Diagnostic.Error]
        if errors:
            raise SystemExit(f"mutants: {file} cannot be read: {errors[0]}")
        for cursor in unit.cursor.get_children():
            if cursor.location.file and cursor.location.file.name == str(root / file):
                self._visit(cursor)

    def _visit(self, cursor):
        if cursor.kind in NEVER_RUN:
            return
        before = self._function, self._may_be_constant
        start, end = span(cursor)
        children = list(cursor.get_children())
        if cursor.kind in FUNCTIONS:
            declared = self.source[self.source.rfind("\n", 0, start) + 1:cursor.location.offset]
            self._function = cursor.spelling
            self._may_be_constant = "constexpr" in declared or "consteval" in declared
        elif cursor.kind in (Kind.VAR_DECL, Kind.FIELD_DECL):
            if not self._function:
                self._function = cursor.spelling
            # An object may be a constant, whose braces contain its members' initialisers.
            self._may_be_constant |= cursor.kind == Kind.FIELD_DECL
            self._note_constant(cursor, start)
        if cursor.kind in FUNCTIONS or cursor.kind in (Kind.VAR_DECL, Kind.FIELD_DECL, Kind.PARM_DECL):
            # The text before the name belongs to the type, and so does an array size after it.
            children = [child for child in children if span(child)[0] >= cursor.location.offset
                        and not self.source.endswith("[", 0, span(child)[0])]
        self._change(cursor, start, end, children)
        for child in self._running(cursor, children):
            self._visit(child)
        self._function, self._may_be_constant = before

    def _running(self, cursor, children):
        if cursor.kind == Kind.CASE_STMT or self.source.startswith("if constexpr", span(cursor)[0]):
            return children[1:]
        return children

    def _change(self, cursor, start, end, children):
        text = self.source[start:end]
        if cursor.kind in (Kind.COMPOUND_STMT, Kind.CASE_STMT, Kind.DEFAULT_STMT):
            for child in children if cursor.kind == Kind.COMPOUND_STMT else children[-1:]:
                self._leave_out(child)
        elif cursor.kind in (Kind.IF_STMT, Kind.WHILE_STMT, Kind.CONDITIONAL_OPERATOR):
            self._negate_condition(cursor, children)
        elif cursor.kind == Kind.RETURN_STMT and children and is_bool(children[0]):
            self._negate(children[0])
        elif cursor.kind == Kind.CXX_BOOL_LITERAL_EXPR and text in ("true", "false"):
            self._add(start, end, "false" if text == "true" else "true", (start, end))
        elif cursor.kind.is_expression():
            self._change_expression(start, end, text, children)

    def _change_expression(self, start, end, text, children):
        if text[:1].isdigit():
            self._change_number(start, end, text)
        elif text[:1] == "!" and children and span(children[-1])[1] == end:
            self._add(start, end, text[1:], (start, start + 1), "", boolean=True)
        elif text[:2] in STEPS:
            self._add(start, end, STEPS[text[:2]] + text[2:], (start, start + 2), STEPS[text[:2]])
        elif text[-2:] in STEPS:
            self._add(start, end, text[:-2] + STEPS[text[-2:]], (end - 2, end), STEPS[text[-2:]])
        else:
            left, operator, right = self._operation(start, end, children)
            for other in OPERATORS.get(operator, ()):
                self._add(start, end, self.source[start:left] + f" {other} " + self.source[right:end],
                          trimmed(self.source, left, right), other)

    def _operation(self, start, end, children):
        """The position of the operator between two operands, whatever the compiler calls the operation."""
        spans = [span(child) for child in children if span(child) != (start, end)]
        left = max((stop for begin, stop in spans if begin == start), default=end)
        right = min((begin for begin, stop in spans if stop == end and begin >= left), default=start)
        return left, self.source[left:right].strip(), right

    def _change_number(self, start, end, text):
        match = NUMBER.fullmatch(text)
        in_brackets = self.source[end:end + 1] == ">" and self.source[start - 1] in "<,: "
        if not match or in_brackets:
            return
        prefix, digits, suffix = match.group(1) or "", match.group(2).replace("'", ""), match.group(3)
        if not prefix and ("." in digits or "e" in digits.lower()):
            others = [f"({text} + 1)", f"({text} - 1)"]
        else:
            value = int(digits, 16 if prefix else 10)
            others = [(hex(other) if prefix else str(other)) + suffix for other in (value + 1, value - 1) if other >= 0]
        for other in others:
            self._add(start, end, other, (start, end), other)

    def _leave_out(self, cursor):
        start, end = span(cursor)
        text = self.source[start:end]
        jump = cursor.kind in JUMPS and text in ("break", "continue", "return")
        if not jump and not cursor.kind.is_expression() or text.startswith(("static_cast<void>", "assert")):
            return
        end = self.source.index(";", end) + 1
        self._add(start, end, None, (start, end), "")

    def _negate_condition(self, cursor, children):
        """Negates a condition without an operator that is changed anyway."""
        conditions = children[:1]
        if cursor.kind == Kind.IF_STMT:
            conditions = []
            for child in children:
                if not child.kind.is_expression():
                    if child.kind not in (Kind.DECL_STMT, Kind.VAR_DECL):
                        break
                    conditions = []
                    continue
                conditions = [child]
        declared = [span(child) for child in children if child.kind in (Kind.DECL_STMT, Kind.VAR_DECL)]
        for condition in conditions:
            start, end = span(condition)
            constant = self.source.startswith("if constexpr", span(cursor)[0])
            if not constant and not any(begin <= start < stop for begin, stop in declared):
                self._negate(condition)

    def _negate(self, cursor):
        start, end = span(cursor)
        text = self.source[start:end]
        children = list(cursor.get_children())
        while len(children) == 1 and span(children[0]) == (start, end):  # implicit conversions
            children = list(children[0].get_children())
        changed_anyway = self._operation(start, end, children)[1] in CONDITIONS
        if not changed_anyway and text[:1] != "!" and text not in ("true", "false"):
            self._add(start, end, f"!({text})", (start, end), f"!({' '.join(text.split())})", boolean=True)

    def _add(self, start, end, text, place, becomes=None, boolean=False):
        begin = self.source.rfind("\n", 0, place[0]) + 1
        stop = self.source.find("\n", place[1])
        if self.source[begin:stop].lstrip().startswith("#"):
            return
        was = self.source[place[0]:place[1]]
        change = f"[{was} => {text if becomes is None else becomes}]"
        shown = self.source[begin:place[0]] + change + self.source[place[1]:stop]
        shown = " ".join(shown.split()).encode("latin-1").decode("utf-8")
        self.mutants[(start, end, text)] = Mutant(
            self.file, start, end, text, self.source.count("\n", 0, place[0]) + 1, shown, boolean,
            self._may_be_constant, self._function)

    def _note_constant(self, cursor, start):
        begin = self.source.rfind("\n", 0, start) + 1
        word = re.search(r"\b(inline )?constexpr\b", self.source[begin:cursor.location.offset])
        if not word:
            return
        of_class = cursor.semantic_parent.kind in (Kind.CLASS_DECL, Kind.STRUCT_DECL)
        shared = word.group(1) or of_class
        self.constants.append(Constant(
            begin + word.start(), begin + word.end(), "inline const" if shared else "const", span(cursor)))


def is_bool(cursor):
    return cursor.type.get_canonical().kind == cindex.TypeKind.BOOL


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def trimmed(text, start, end):
    """The same place without surrounding white space."""
    inside = text[start:end]
    return start + len(inside) - len(inside.lstrip()), end - len(inside) + len(inside.rstrip())

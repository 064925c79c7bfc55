"""Finds the mutations that can be applied to a source file, from its syntax tree."""

import json
import re
import shlex
import subprocess
from dataclasses import dataclass
from pathlib import Path

from clang import cindex
from clang.cindex import CursorKind, TypeKind

COMPARISONS = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">"],
    "<=": ["<", ">"],
    ">": [">=", "<"],
    ">=": [">", "<"],
}
ARITHMETIC = {"+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"]}
BITWISE = {"&": ["|"], "|": ["&"], "^": ["|"], "<<": [">>"], ">>": ["<<"]}
LOGIC = {"&&": ["||"], "||": ["&&"]}

OPERATORS = [
    (COMPARISONS, "comparison"),
    (LOGIC, "logic"),
    (ARITHMETIC, "arithmetic"),
    (BITWISE, "arithmetic"),
]
# Of what can be overloaded, only this has a counterpart that compiles.
OVERLOADED_OPERATORS = OPERATORS[:1]

CONDITIONAL_STATEMENTS = (CursorKind.IF_STMT, CursorKind.WHILE_STMT)


# `// NOMUTATE(KIND, ...): why` leaves out mutants of these kinds that touch the line, or the
# next one where it has a line of its own, because nothing that can be observed would change.
EXEMPT = re.compile(r"// NOMUTATE\(([a-z ,]+)\): \S")


@dataclass(frozen=True)
class Mutant:
    """One mutation: the bytes from `start` to `end` of `file` read `text` instead."""

    file: str
    start: int
    end: int
    text: str
    kind: str

    def line(self, source):
        return source.count("\n", 0, self.start) + 1

    def is_exempt(self, source):
        lines = source.split("\n")
        first, last = self.line(source) - 1, source.count("\n", 0, self.end)
        if lines[first - 1].lstrip().startswith("//"):
            first -= 1
        marks = (EXEMPT.search(line) for line in lines[first : last + 1])
        return any(self.kind in mark.group(1).split(", ") for mark in marks if mark)

    def applied_to(self, source):
        return source[: self.start] + self.text + source[self.end :]


def kind_of(expression):
    """What an expression may be exchanged for: another of the same kind."""
    type_ = expression.type.get_canonical()
    if type_.kind in (TypeKind.CONSTANTARRAY, TypeKind.POINTER):
        return "pointer"
    if type_.kind in (TypeKind.RECORD, TypeKind.ENUM, TypeKind.UNEXPOSED):
        return type_.spelling.replace("const ", "")
    return "number"


class Finder:
    """Walks one file's syntax tree and gathers its mutants."""

    def __init__(self, file, source):
        self.file = file
        self.source = source
        self.found = {}

    def add(self, start, end, text, kind):
        if self.source[start:end] != text:
            mutant = Mutant(self.file, start, end, text, kind)
            self.found.setdefault((start, end, text), mutant)

    def text_of(self, cursor):
        return self.source[cursor.extent.start.offset : cursor.extent.end.offset]

    def replace(self, cursor, text, kind):
        self.add(cursor.extent.start.offset, cursor.extent.end.offset, text, kind)

    def visit(self, cursor):
        # What a macro made has no place of its own in the source.
        if cursor.extent.end.offset > cursor.extent.start.offset:
            self.operators(cursor)
            self.literals(cursor)
            self.conditions(cursor)
            self.calls(cursor)
            self.returns(cursor)
            self.statements(cursor)
            self.handlers(cursor)
        for child in cursor.get_children():
            self.visit(child)

    # What stands between the two sides of an operator, built in or overloaded.
    def operators(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            sides, tables = children, OPERATORS
        elif cursor.kind == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator"):
            sides, tables = list(cursor.get_arguments()), OVERLOADED_OPERATORS
        else:
            self.unary_operator(cursor, children)
            return
        if len(sides) != 2 or not all(sides):
            return
        start, end = sides[0].extent.end.offset, sides[1].extent.start.offset
        written = self.source[start:end].strip()
        self.dropped_output(cursor, sides, written)
        for table, kind in tables:
            for other in table.get(written, []):
                at = self.source.index(written, start)
                self.add(at, at + len(written), other, kind)

    # One piece less of a chain of output.
    def dropped_output(self, cursor, sides, written):
        if written == "<<" and cursor.kind == CursorKind.CALL_EXPR:
            self.replace(cursor, self.text_of(sides[0]), "removed output")

    def unary_operator(self, cursor, children):
        text = self.text_of(cursor)
        if cursor.kind != CursorKind.UNARY_OPERATOR or not children:
            return
        if text.startswith("!"):
            self.replace(cursor, self.text_of(children[0]), "negation")
        for written, other in (("++", "--"), ("--", "++")):
            if text.startswith(written):
                self.replace(cursor, other + text[2:], "arithmetic")

    def literals(self, cursor):
        text = self.text_of(cursor)
        if cursor.kind == CursorKind.INTEGER_LITERAL:
            self.integer(cursor, text)
        elif cursor.kind == CursorKind.CXX_BOOL_LITERAL_EXPR:
            self.replace(cursor, "false" if text == "true" else "true", "constant")
        elif cursor.kind == CursorKind.STRING_LITERAL and re.fullmatch(r'"[^\n]*"', text):
            self.replace(cursor, '"x' + text[1:], "text")
        elif cursor.kind == CursorKind.CHARACTER_LITERAL:
            self.replace(cursor, "'x'", "text")

    def integer(self, cursor, text):
        match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|[0-9]+)([uUlL]*)", text)
        if match:
            digits = match.group(1)
            value = int(digits, 8 if re.fullmatch("0[0-7]+", digits) else 0)
            self.replace(cursor, f"{value + 1}{match.group(2)}", "boundary")
            if value > 0:
                self.replace(cursor, f"{value - 1}{match.group(2)}", "boundary")

    def conditions(self, cursor):
        children = list(cursor.get_children())
        if cursor.kind in CONDITIONAL_STATEMENTS and children[0].kind.is_expression():
            condition = self.text_of(children[0])
            self.replace(children[0], f"!({condition})", "condition")
            self.replace(children[0], "false", "condition")
            if cursor.kind == CursorKind.IF_STMT:
                self.replace(children[0], "true", "condition")
        elif cursor.kind == CursorKind.CONDITIONAL_OPERATOR and len(children) == 3:
            self.replace(cursor, self.text_of(children[1]), "condition")
            self.replace(cursor, self.text_of(children[2]), "condition")

    # Neighbours of one type can change places without a compiler's word.
    def calls(self, cursor):
        if cursor.kind != CursorKind.CALL_EXPR or cursor.spelling.startswith("operator"):
            return
        arguments = [a for a in cursor.get_arguments() if a and self.text_of(a)]
        for one, next_one in zip(arguments, arguments[1:]):
            between = self.source[one.extent.end.offset : next_one.extent.start.offset]
            if between.strip() == "," and kind_of(one) == kind_of(next_one):
                self.add(
                    one.extent.start.offset,
                    next_one.extent.end.offset,
                    self.text_of(next_one) + between + self.text_of(one),
                    "swapped arguments",
                )

    def returns(self, cursor):
        if cursor.kind != CursorKind.RETURN_STMT:
            return
        for value in cursor.get_children():
            if value.type.get_canonical().kind == TypeKind.BOOL:
                self.replace(value, "true", "return value")
                self.replace(value, "false", "return value")
            elif self.text_of(value) not in ("{}", "nullptr"):
                self.replace(value, "{}", "return value")

    def statements(self, cursor):
        if cursor.kind != CursorKind.COMPOUND_STMT:
            return
        statements = list(cursor.get_children())
        for statement in statements:
            if self.can_go(statement):
                self.replace(statement, "", "removed statement")
        for one, next_one in zip(statements, statements[1:]):
            if self.can_move(one) and self.can_move(next_one):
                self.swap(one, next_one)

    # A declaration can go only where nothing refers to it: a guard.
    @staticmethod
    def can_go(statement):
        if statement.kind == CursorKind.DECL_STMT:
            variable = next(statement.get_children(), None)
            return variable is not None and variable.type.get_canonical().kind == TypeKind.RECORD
        return statement.kind.is_expression() or statement.kind in (
            CursorKind.CONTINUE_STMT,
            CursorKind.BREAK_STMT,
            CursorKind.IF_STMT,
            CursorKind.FOR_STMT,
            CursorKind.CXX_FOR_RANGE_STMT,
        )

    # Where a variable is made hardly matters as long as it is made before its use.
    @staticmethod
    def can_move(statement):
        fixed = (CursorKind.RETURN_STMT, CursorKind.CONTINUE_STMT, CursorKind.DECL_STMT)
        return statement.kind not in fixed

    def swap(self, one, next_one):
        first, second = self.whole(one), self.whole(next_one)
        if first[1] <= second[0]:
            between = self.source[first[1] : second[0]]
            text = self.source[slice(*second)] + between + self.source[slice(*first)]
            self.add(first[0], second[1], text, "order")

    def whole(self, statement):
        """A statement with its semicolon, which the tree leaves out of expressions."""
        start, end = statement.extent.start.offset, statement.extent.end.offset
        return start, end + 1 if self.source[end : end + 1] == ";" else end

    # A handler that lets everything through.
    def handlers(self, cursor):
        if cursor.kind == CursorKind.CXX_CATCH_STMT:
            brace = self.source.index("{", cursor.extent.start.offset)
            self.add(brace + 1, brace + 1, " throw;", "handler")


def arguments_for(database, source):
    """How the compiler is called for a file, as far as the syntax tree depends on it."""
    entries = json.loads(Path(database).read_text(encoding="utf-8"))
    command = next((e for e in entries if e["file"].endswith(f"/{source}")), None)
    if command is None:
        return ["-x", "c++", "-std=c++17"] + [
            word
            for entry in entries[:1]
            for word in shlex.split(entry["command"])
            if word.startswith(("-I", "-D"))
        ]
    return [w for w in shlex.split(command["command"]) if w.startswith(("-I", "-D", "-std"))]


def mutants_of(tree, database, file):
    """All mutants of one file, in the order of their places."""
    resources = subprocess.run(
        ["clang", "-print-resource-dir"], check=True, capture_output=True, text=True
    ).stdout.strip()
    path = Path(tree) / file
    # Offsets count bytes; one character is one byte then.
    source = path.read_text(encoding="latin-1")
    unit = cindex.Index.create().parse(
        str(path), ["-xc++", *arguments_for(database, file), "-resource-dir", resources]
    )
    errors = [str(d) for d in unit.diagnostics if d.severity >= cindex.Diagnostic.Error]
    if errors:
        raise RuntimeError(f"{file} was not understood: {errors[0]}")
    finder = Finder(file, source)
    for cursor in unit.cursor.get_children():
        if cursor.location.file and cursor.location.file.name == str(path):
            finder.visit(cursor)
    found = [m for m in finder.found.values() if not m.is_exempt(source)]
    return sorted(found, key=lambda m: (m.start, m.end, m.text))

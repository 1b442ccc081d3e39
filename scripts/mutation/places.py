"""Finds where a source can be mistaken, and what would stand there instead."""

import re
import sysconfig
from dataclasses import dataclass
from pathlib import Path

from clang.cindex import CursorKind as Kind
from clang.cindex import Index, TokenKind, TypeKind

from places_in_python import changes_in_python

# What an operator is mistaken for; `-` and `!` before an operand are left out.
PAIRS = "< <= > >= == != && || + - << >> & | += -= *= /= <<= >>= &= |=".split()
BINARY = dict(zip(PAIRS[::2], PAIRS[1::2])) | dict(zip(PAIRS[1::2], PAIRS[::2])) | {
    "*": "+", "/": "*", "%": "/", "^": "&", "%=": "/="}
UNARY = {"++": "--", "--": "++", "-": "", "!": ""}
OPERATIONS = (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR, Kind.CALL_EXPR,
              Kind.DECL_REF_EXPR)
INTEGER = re.compile(r"(0[xX])?([0-9a-fA-F']+?)([uUlLzZ]*)")
# Calls that give the same either way, and operators, which have mistakes of their own.
SYMMETRIC = re.compile(r"operator\W|((__g|)mpz_((add|sub)?mul|add|gcd)|cached_gcd|min|max)$")
BEFORE_STATEMENT = re.compile(r"([{}:;)]|\belse)(\s|//[^\n]*\n)*\Z")
# A command of CMake, and those that only hold others or say how to go on.
COMMAND = re.compile(r'^ *(\w+)\((?:"[^"]*"|[^()"]|\([^()]*\))*\)', re.M)
STRUCTURE = re.compile(r"(end)?(if|foreach|function|macro|while)|else(if)?|return")


@dataclass(frozen=True)
class Mutant:
    path: str
    line: int
    change: str  # in words
    old: str  # the lines concerned, before and after
    new: str
    text: bytes  # the whole source, mistaken

    @property
    def folder(self):
        """What it counts under: numbers, containers and so on."""
        top, *below = Path(self.path).parts
        if not is_code(self.path) and not is_python(self.path):
            return "packaging"
        return below[0] if top == "zelk" and len(below) > 1 else top


def is_code(path):
    return path.endswith((".h", ".cpp"))


def is_python(path):
    """Modules, and the scripts among the sources."""
    return Path(path).suffix in (".py", "")


def mutants_of(root, path):
    """All mutants of a source, in the order of its text."""
    # A character a byte, as offsets count.
    text = (root / path).read_text("latin-1")
    changes = (in_code(root, path, text) if is_code(path) else
               changes_in_python(text) if is_python(path) else in_lines(path, text))
    mutants = {}
    for begin, end, new, change in sorted(changes, key=lambda change: change[:2]):
        first, last = text.rfind("\n", 0, begin) + 1, text.find("\n", end)
        mistaken = text[:begin] + new + text[end:]
        mutants.setdefault(mistaken, Mutant(
            path, text.count("\n", 0, begin) + 1, change or f"{text[begin:end]} -> {new}".strip(),
            text[first:last], text[first:begin] + new + text[end:last], mistaken.encode("latin-1")))
    return list(mutants.values())


# The functions below yield changes: two offsets, what stands there instead, and, unless that and
# what stood there say enough, the mistake in words.


def in_code(root, path, text):
    unit = Index.create().parse(str(root / path), args=[
        "-x", "c++", "-std=c++20", "-DNDEBUG", f"-I{root}",
        "-isystem", sysconfig.get_path("include")])
    if errors := [str(message) for message in unit.diagnostics if message.severity >= 3]:
        raise SystemExit("\n".join(errors))
    skipped = []  # what makes no code

    def below(parent):
        for node in parent.get_children():
            file, (begin, end) = node.location.file, span(node)
            if file is None or file.name != unit.spelling:
                continue
            if node.kind == Kind.STATIC_ASSERT or text.startswith("assert", begin):
                skipped.append(range(begin, end))
                continue
            yield from in_node(node, parent, text)
            yield from below(node)

    yield from below(unit.cursor)
    for token in unit.get_tokens(extent=unit.cursor.extent):
        if not any(token.extent.start.offset in place for place in skipped):
            for new in instead_of(token):
                yield *span(token), new, ""


def span(node):
    return node.extent.start.offset, node.extent.end.offset


def instead_of(token):
    """The operators and constants that a token is mistaken for."""
    word, cursor = token.spelling, token.cursor
    if token.kind == TokenKind.PUNCTUATION:
        # There is no difference of two texts.
        is_text = "basic_string" in cursor.type.get_canonical().spelling
        if word in BINARY and cursor.kind in OPERATIONS and not is_text:
            yield BINARY[word]
        elif word in UNARY and cursor.kind == Kind.UNARY_OPERATOR:
            yield UNARY[word]
    elif cursor.kind == Kind.CXX_BOOL_LITERAL_EXPR:
        yield "false" if word == "true" else "true"
    elif cursor.kind == Kind.INTEGER_LITERAL and (parts := INTEGER.fullmatch(word)):
        prefix, digits, suffix = parts.groups("")
        value = int(digits.replace("'", ""), 16 if prefix else 10)
        for other in sorted({value + 1, abs(value - 1)}):
            yield (f"{other:#x}" if prefix else str(other)) + suffix


def in_node(node, parent, text):
    """Conditions, results, arguments, bounds and statements."""
    begin, end = span(node)
    children = list(node.get_children())
    follows = text[end:].lstrip()[:1]
    if parent.kind in (Kind.IF_STMT, Kind.WHILE_STMT) and follows == ")" or \
            parent.kind == Kind.CONDITIONAL_OPERATOR and follows == "?":
        yield begin, end, f"!({text[begin:end]})", "condition negated"
    elif parent.kind == Kind.RETURN_STMT and node.kind != Kind.CXX_BOOL_LITERAL_EXPR:
        kind = node.type.get_canonical().kind
        if kind == TypeKind.BOOL:
            yield begin, end, f"!({text[begin:end]})", "result negated"
        elif is_number(kind):
            yield begin, end, f"({text[begin:end]}) + 1", "result + 1"
        else:
            yield begin, end, "{}", "empty result"
    if node.kind == Kind.CALL_EXPR and not SYMMETRIC.match(node.spelling):
        last = list(node.get_arguments())[-2:]
        if len(last) == 2 and are_kindred(*last):
            (a, b), (c, d) = map(span, last)
            if a < b <= c < d:
                yield a, d, text[c:d] + text[b:c] + text[a:b], "arguments swapped"
    if node.kind == Kind.BINARY_OPERATOR and len(children) == 2:
        (_, left), (right, _) = map(span, children)
        if text[left:right].strip() in ("<", "<=", ">", ">=") and \
                children[1].kind not in (Kind.INTEGER_LITERAL, Kind.FLOATING_LITERAL):
            yield end, end, " - 1", "bound - 1"
    is_whole = BEFORE_STATEMENT.search(text[:begin]) and follows == ";" and (
        parent.kind != Kind.FOR_STMT or end == span(parent)[1])
    if is_whole and parent.kind.is_statement() and (
            node.kind.is_expression() or node.kind in (Kind.BREAK_STMT, Kind.CONTINUE_STMT)):
        yield begin, end, "", "statement dropped"


def is_number(kind):
    return TypeKind.BOOL.value <= kind.value <= TypeKind.INT128.value


def are_kindred(*nodes):
    """Whether two expressions can stand for one another."""
    types = [node.type.get_canonical() for node in nodes]
    one, other = (re.sub(r"\bconst\b|[& ]", "", kind.spelling) for kind in types)
    return one == other or all(is_number(kind.kind) for kind in types)


def in_lines(path, text):
    """Commands of CMake and the further lines of long ones; of other templates, every line."""
    if path.endswith(".pc.in"):
        for line in re.finditer(r"^(?!#).+$", text, re.M):
            yield *line.span(), "", "line dropped"
    for call in COMMAND.finditer(text):
        if not STRUCTURE.fullmatch(call[1]):
            yield *call.span(), "", "command dropped"
            for line in re.finditer(r"(?<=\n).*?(?=\n|\)\Z)", call[0]):
                yield *(call.start() + at for at in line.span()), "", "line dropped"

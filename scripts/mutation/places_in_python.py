"""The mistakes of places.py in a source of Python: as changes, which are told there."""

import ast

# What an operator is mistaken for.
OPERATORS = {
    ast.Lt: ("<", "<="), ast.LtE: ("<=", "<"), ast.Gt: (">", ">="), ast.GtE: (">=", ">"),
    ast.Eq: ("==", "!="), ast.NotEq: ("!=", "=="), ast.Is: ("is", "is not"),
    ast.IsNot: ("is not", "is"), ast.In: ("in", "not in"), ast.NotIn: ("not in", "in"),
    ast.And: ("and", "or"), ast.Or: ("or", "and"), ast.Add: ("+", "-"), ast.Sub: ("-", "+"),
    ast.Mult: ("*", "+"), ast.Div: ("/", "*"), ast.FloorDiv: ("//", "*"), ast.Mod: ("%", "//"),
    ast.Pow: ("**", "*"), ast.LShift: ("<<", ">>"), ast.RShift: (">>", "<<"),
    ast.BitAnd: ("&", "|"), ast.BitOr: ("|", "&"), ast.BitXor: ("^", "&")}
ORDER = (ast.Lt, ast.LtE, ast.Gt, ast.GtE)
LOGICAL = (ast.Compare, ast.BoolOp)
KEPT = {"min", "max", "gcd", "isinstance"}  # calls that give the same either way, or nothing


def is_text(node):
    return isinstance(node, ast.JoinedStr) or \
        isinstance(node, ast.Constant) and isinstance(node.value, str)


def is_logical(node):
    return isinstance(node, LOGICAL) or \
        isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.Not)


def below(node):
    """Nodes that do something: no annotations and no documents; of texts to format no places are known."""
    if isinstance(node, ast.JoinedStr):
        return
    yield node
    for name, value in ast.iter_fields(node):
        if name in ("annotation", "returns"):
            continue
        for child in value if isinstance(value, list) else [value]:
            if isinstance(child, ast.AST) and not (isinstance(child, ast.Expr) and is_text(child.value)):
                yield from below(child)


def changes_in_python(text):
    """Of a text whose characters are bytes, in which places are counted."""
    starts = [0]
    for line in text.split("\n"):
        starts.append(starts[-1] + len(line) + 1)

    def span(node):
        return (starts[node.lineno - 1] + node.col_offset,
                starts[node.end_lineno - 1] + node.end_col_offset)

    def between(operator, left, right):
        """Exchanges what stands between two operands."""
        (_, begin), (end, _) = span(left), span(right)
        old, new = OPERATORS[type(operator)]
        at = text.index(old, begin, end)
        return at, at + len(old), new, ""

    def around(node, before, after, change):
        begin, end = span(node)
        return begin, end, before + text[begin:end] + after, change

    for node in below(ast.parse(text.encode("latin-1"))):
        match node:
            case ast.BinOp() if not is_text(node.left) and not is_text(node.right):
                yield between(node.op, node.left, node.right)
            case ast.AugAssign():
                old, new = OPERATORS[type(node.op)]
                at = text.index(old + "=", span(node.target)[1])
                yield at, at + len(old), new, ""
            case ast.BoolOp():
                for left, right in zip(node.values, node.values[1:]):
                    yield between(node.op, left, right)
            case ast.Compare():
                for left, operator, right in zip([node.left, *node.comparators], node.ops,
                                                 node.comparators):
                    yield between(operator, left, right)
                    if isinstance(operator, ORDER) and not isinstance(right, ast.Constant):
                        yield around(right, "", " - 1", "bound - 1")
            case ast.UnaryOp(op=ast.Not() | ast.USub()):
                begin, end = span(node)
                yield begin, span(node.operand)[0], "", ""
            case ast.Constant(value=bool()):
                yield *span(node), str(not node.value), ""
            case ast.Constant(value=int()):
                for other in sorted({node.value + 1, abs(node.value - 1)}):
                    yield *span(node), str(other), ""
            case ast.If() | ast.While() | ast.IfExp():
                yield around(node.test, "not (", ")", "condition negated")
            case ast.comprehension():
                for condition in node.ifs:
                    yield around(condition, "not (", ")", "condition negated")
            case ast.Return(value=ast.expr() as result) | ast.Lambda(body=result):
                if is_logical(result):
                    yield around(result, "not (", ")", "result negated")
                elif not isinstance(result, ast.Constant):
                    yield *span(result), "None", "empty result"
            case ast.Call(args=[*_, first, second]) if not any(
                    isinstance(argument, ast.Starred) for argument in (first, second)):
                if getattr(node.func, "id", getattr(node.func, "attr", "")) not in KEPT:
                    (a, b), (c, d) = span(first), span(second)
                    yield a, d, text[c:d] + text[b:c] + text[a:b], "arguments swapped"
        # A name that is assigned to is a declaration too.
        if isinstance(node, (ast.Expr, ast.AugAssign, ast.Raise, ast.Assert, ast.Break, ast.Continue)) or \
                isinstance(node, ast.Assign) and not isinstance(node.targets[0], (ast.Name, ast.Tuple)):
            yield *span(node), "pass", "statement dropped"

"""Where a source file can be mutated: operators, constants, conditions and statements.

Offsets are those of bytes, as libclang counts them; sources are read as latin-1, so that a byte is a
character. An edit is a list of pieces: text, in which NUMBER stands for the mutant's number, or a
range of the source, which may hold further edits.
"""

import re
import zlib
from dataclasses import dataclass, field

from clang.cindex import CursorKind, Index, TranslationUnit, TypeKind

NUMBER = "\0"
KINDS = ("operator", "constant", "condition", "statement")

SWAPS = {
    "<": ("<=", ">"), "<=": ("<", ">="), ">": (">=", "<"), ">=": (">", "<="), "==": ("!=",), "!=": ("==",),
    "&&": ("||",), "||": ("&&",), "+": ("-",), "-": ("+",), "*": ("/",), "/": ("*",), "%": ("*",),
    "&": ("|",), "|": ("&",), "^": ("&",), "<<": (">>",), ">>": ("<<",), "+=": ("-=",), "-=": ("+=",),
    "*=": ("/=",), "/=": ("*=",), "|=": ("&=",), "&=": ("|=",),
}
UNARY_SWAPS = {"!": "", "-": "", "++": "--", "--": "++"}

LITERAL = re.compile(r"(?P<digits>0[xX][0-9a-fA-F']+|[0-9][0-9']*(?:\.[0-9']*)?(?:[eE][-+]?[0-9]+)?"
                     r"|\.[0-9]+)(?P<suffix>[uUlLzZfF]*)\Z")
MASKED = re.compile(r'//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<![0-9a-fA-F])\'(?:\\.|[^\'\\\n])+\'', re.S)
BODIES = {CursorKind.FUNCTION_DECL, CursorKind.CXX_METHOD, CursorKind.CONSTRUCTOR, CursorKind.DESTRUCTOR,
          CursorKind.CONVERSION_FUNCTION, CursorKind.FUNCTION_TEMPLATE}
CLASSES = {CursorKind.CLASS_DECL, CursorKind.STRUCT_DECL, CursorKind.CLASS_TEMPLATE}
SKIPPED = {CursorKind.STATIC_ASSERT, CursorKind.PARM_DECL, CursorKind.ENUM_DECL, CursorKind.TYPEDEF_DECL,
           CursorKind.TYPE_ALIAS_DECL, CursorKind.USING_DECLARATION, CursorKind.TEMPLATE_TYPE_PARAMETER,
           CursorKind.TEMPLATE_NON_TYPE_PARAMETER}
NUMBERS = {TypeKind.INT, TypeKind.UINT, TypeKind.LONG, TypeKind.ULONG, TypeKind.LONGLONG, TypeKind.ULONGLONG,
           TypeKind.FLOAT, TypeKind.DOUBLE, TypeKind.SHORT, TypeKind.USHORT, TypeKind.UCHAR, TypeKind.SCHAR,
           TypeKind.BOOL}


@dataclass
class Edit:
    """Replaces the source from start to end by pieces."""
    start: int
    end: int
    pieces: list


@dataclass
class Point:
    """One possible mutant: what is changed at which place."""
    file: str
    start: int
    kind: str
    change: str
    function: str
    edits: list = field(default_factory=list)
    line: int = 0
    column: int = 0
    text: str = ""
    ordinal: int = 0
    number: int = 0

    def key(self):
        """What tells this mutant from others, wherever its lines move to."""
        return (self.function, self.text, self.kind, self.change, self.ordinal)


class Finder:
    """Walks one translation unit and collects the points of its main file."""

    def __init__(self, name, path, flags):
        self.name, self.points = name, []
        with open(path, encoding="latin-1", newline="") as source:
            self.source = source.read()
        # The same length, but without comments and strings.
        self.masked = MASKED.sub(lambda hit: re.sub(r"[^\n]", " ", hit.group()), self.source)
        unit = Index.create().parse(path, flags,
                                    options=TranslationUnit.PARSE_DETAILED_PROCESSING_RECORD)
        self.macros, self.constants, self.uses, self.taken = [], {}, {}, set()
        own = [cursor for cursor in unit.cursor.get_children()
               if cursor.location.file and cursor.location.file.name == path]
        for cursor in own:
            if cursor.kind == CursorKind.MACRO_INSTANTIATION:
                self.macros.append(self.range(cursor))
        for cursor in own:
            if not cursor.kind.is_preprocessing():
                self.declaration(cursor, "")
        self.add_constants()
        self.place()

    @staticmethod
    def range(cursor):
        return cursor.extent.start.offset, cursor.extent.end.offset

    def in_macro(self, start, end):
        return any(start < last and first < end for first, last in self.macros
                   if first <= start and end <= last)

    def add(self, cursor, kind, change, function, edits):
        """Notes a point, unless a macro or a line comment is in the way of rewriting it."""
        start, end = edits[0].start, edits[0].end
        for edit in edits:
            text = self.source[edit.start:edit.end]
            if self.in_macro(edit.start, edit.end) or "//" in text and "\n" in text and kind == "operator":
                return
        if (start, end, kind) in self.taken or start >= end:
            return
        self.taken.add((start, end, kind))
        self.points.append(Point(self.name, cursor.extent.start.offset, kind, change, function, edits))

    # Declarations.

    def declaration(self, cursor, outer):
        """Everything outside of function bodies."""
        if cursor.kind in SKIPPED:
            return
        if cursor.kind == CursorKind.VAR_DECL:
            self.variable(cursor, outer, True)
        elif cursor.kind in BODIES:
            self.function(cursor, outer)
        elif cursor.kind in CLASSES or cursor.kind in (CursorKind.NAMESPACE, CursorKind.LINKAGE_SPEC,
                                                       CursorKind.UNEXPOSED_DECL):
            inner = f"{outer}{cursor.spelling}::" if cursor.kind in CLASSES else outer
            for child in cursor.get_children():
                self.declaration(child, inner)
        elif cursor.kind == CursorKind.FIELD_DECL:
            for child in cursor.get_children():
                if child.kind.is_expression():
                    self.expression(child, cursor, outer + cursor.spelling)

    def function(self, cursor, outer):
        children = list(cursor.get_children())
        if not cursor.is_definition() or not children:
            return
        parent = cursor.semantic_parent
        if not outer and parent is not None and parent.kind in CLASSES:
            outer = f"{parent.spelling}::"
        name = outer + cursor.spelling.split("<")[0]
        body = next((child for child in children if child.kind == CursorKind.COMPOUND_STMT), None)
        if body is None:
            return
        head = self.masked[cursor.extent.start.offset:body.extent.start.offset]
        if re.search(r"\b(constexpr|consteval)\b", head):
            return
        for child in children:
            # Besides the body these are what a constructor's fields begin with.
            if child.kind.is_expression() or child == body:
                self.statement(child, cursor, name)

    def variable(self, cursor, function, outside):
        """A constant is mutated where it is used, what else has a beginning is there itself."""
        start, end = self.range(cursor)
        head = self.masked[start:cursor.location.offset]
        children = [child for child in cursor.get_children() if child.kind.is_expression()]
        if cursor.type.kind == TypeKind.CONSTANTARRAY:
            children = [child for child in children
                        if not self.masked[start:child.extent.start.offset].rstrip().endswith("[")]
        is_fixed = re.search(r"\b(constexpr|constinit)\b", head)
        if is_fixed or outside or "static" in head:
            number = cursor.type.get_canonical().kind in NUMBERS
            if number and children and re.search(r"\bconst(expr)?\b", head):
                self.constants[cursor.location.offset] = (cursor, children[-1], function)
            elif children and is_fixed and "constexpr" in head:
                self.relaxed(cursor, children, function, start + head.index("constexpr"))
            return
        for child in children:
            self.expression(child, cursor, function)

    def relaxed(self, cursor, children, function, place):
        """The numbers of a constant table; it is made at run time then."""
        relax = Edit(place, place + len("constexpr"), ["const"])
        name = f"{function}{cursor.spelling}"
        for child in children:
            for literal in [child, *child.walk_preorder()]:
                if literal.kind in (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL):
                    self.literal(literal, name, [relax])

    def add_constants(self):
        """A named constant is another number at all its uses."""
        for place, (cursor, initial, function) in self.constants.items():
            uses = self.uses.get(place)
            literals = [each for each in [initial, *initial.walk_preorder()]
                        if each.kind in (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL,
                                         CursorKind.CXX_BOOL_LITERAL_EXPR)]
            if not uses or not literals:
                continue
            first, last = self.range(initial)
            for literal in {self.range(each): each for each in literals}.values():
                start, end = self.range(literal)
                changed = self.other_number(start, end)
                if not changed or not first <= start < end <= last or self.in_macro(start, end):
                    continue
                value = self.source[first:start] + changed + self.source[end:last]
                if "//" in value:
                    continue
                name = cursor.spelling
                pieces = [f"(kalimMutant({NUMBER}) ? static_cast<decltype({name})>("
                          f"{' '.join(value.split())}) : {name})"]
                edits = [Edit(*use, pieces) for use in uses]
                change = f"'{self.source[start:end]}' -> '{changed}'"
                self.add(literal, "constant", change, f"{function}{name}", edits)
                # One a constant: two could not be told apart where it is used.
                break

    # Bodies.

    def statement(self, cursor, parent, function):
        kind = cursor.kind
        if kind in SKIPPED or kind in CLASSES:
            return self.declaration(cursor, function + "::") if kind in CLASSES else None
        if kind.is_expression():
            return self.expression(cursor, parent, function)
        if kind == CursorKind.VAR_DECL:
            return self.variable(cursor, function, False)
        children = list(cursor.get_children())
        if kind == CursorKind.CASE_STMT:
            children = children[1:]
        elif kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT):
            if re.match(r"if\s+(constexpr|consteval)\b", self.masked[self.range(cursor)[0]:]):
                children = children[1:]
            else:
                self.condition(self.condition_of(cursor, children), function)
        for child in children:
            if kind != CursorKind.RETURN_STMT and kind != CursorKind.DECL_STMT:
                self.dropped(child, cursor, function)
            self.statement(child, cursor, function)
        return None

    def condition_of(self, cursor, children):
        """The expression that ends at the parenthesis of an if or while."""
        start, end = self.range(cursor)
        depth = 0
        for place in range(self.masked.index("(", start), end):
            depth += {"(": 1, ")": -1}.get(self.masked[place], 0)
            if depth == 0:
                ends = [child for child in children if child.kind.is_expression()
                        and child.extent.end.offset <= place
                        and not self.masked[child.extent.end.offset:place].strip()]
                return ends[-1] if ends else None
        return None

    def condition(self, cursor, function):
        if cursor is None:
            return
        start, end = self.range(cursor)
        pieces = [f"(kalimMutant({NUMBER}) != static_cast<bool>(", (start, end), "))"]
        text = " ".join(self.source[start:end].split())
        self.add(cursor, "condition", f"'{text}' negated", function, [Edit(start, end, pieces)])

    def dropped(self, cursor, parent, function):
        """Statements that can be left out: calls, assignments, and a return without a value."""
        start, end = self.range(cursor)
        is_return = cursor.kind == CursorKind.RETURN_STMT and self.source[start:end].rstrip(";") == "return"
        if not is_return and (not cursor.kind.is_expression() or cursor.kind == CursorKind.LAMBDA_EXPR):
            return
        if parent.kind in (CursorKind.IF_STMT, CursorKind.WHILE_STMT, CursorKind.FOR_STMT,
                           CursorKind.CXX_FOR_RANGE_STMT, CursorKind.SWITCH_STMT, CursorKind.DO_STMT):
            before = self.masked[:start].rstrip()
            # Only what is a branch of its own; a condition stands behind an open parenthesis.
            if not (before.endswith(")") or before.endswith("else")):
                return
        stop = re.compile(r"\s*;").match(self.masked, end)
        if not stop:
            return
        pieces = [f"{{ if (!kalimMutant({NUMBER})) ", (start, stop.end()), " }"]
        text = " ".join(self.source[start:end].split())
        self.add(cursor, "statement", f"'{text}' dropped", function, [Edit(start, stop.end(), pieces)])

    def expression(self, cursor, parent, function):
        kind, children = cursor.kind, list(cursor.get_children())
        if kind in (CursorKind.INTEGER_LITERAL, CursorKind.FLOATING_LITERAL, CursorKind.CXX_BOOL_LITERAL_EXPR):
            # Below the name of a template it is one of its arguments.
            if parent.kind not in (CursorKind.DECL_REF_EXPR, CursorKind.MEMBER_REF_EXPR):
                self.literal(cursor, function, [])
        elif kind in (CursorKind.BINARY_OPERATOR, CursorKind.COMPOUND_ASSIGNMENT_OPERATOR):
            self.operator(cursor, children, function)
        elif kind == CursorKind.CALL_EXPR and cursor.spelling.startswith("operator"):
            self.operator(cursor, list(cursor.get_arguments()), function)
        elif kind == CursorKind.UNARY_OPERATOR and children:
            self.unary(cursor, children[0], function)
        elif kind == CursorKind.CONDITIONAL_OPERATOR and children:
            self.condition(children[0], function)
        elif kind == CursorKind.DECL_REF_EXPR and cursor.referenced is not None:
            target = cursor.referenced
            if target.kind == CursorKind.VAR_DECL and target.location.file \
                    and target.location.file.name == cursor.location.file.name:
                self.uses.setdefault(target.location.offset, []).append(self.range(cursor))
        for child in children:
            self.statement(child, cursor, function)

    def operator(self, cursor, operands, function):
        if len(operands) != 2:
            return
        (left, middle), (behind, right) = self.range(operands[0]), self.range(operands[1])
        sign = self.masked[middle:behind].strip()
        if sign not in SWAPS or self.range(cursor) != (left, right):
            return
        if sign in ("+", "-", "+=") and "string" in operands[0].type.get_canonical().spelling:
            return
        other = self.pick(left, SWAPS[sign])
        # A class that can be added to need not know how to be subtracted from.
        is_class = cursor.kind == CursorKind.CALL_EXPR and sign in ("+=", "-=")
        joined = [" = ", (left, middle), f" {other[0]} "] if is_class else [f" {other} "]
        pieces = [f"(kalimMutant({NUMBER}) ? (", "flat", (left, middle), *joined, (behind, right),
                  "unflat", ") : (", (left, right), "))"]
        self.add(cursor, "operator", f"'{sign}' -> '{other}'", function, [Edit(left, right, pieces)])

    def unary(self, cursor, operand, function):
        (start, end), (first, last) = self.range(cursor), self.range(operand)
        sign = self.masked[start:first].strip() or self.masked[last:end].strip()
        if sign not in UNARY_SWAPS:
            return
        other = UNARY_SWAPS[sign]
        before, behind = (other, "") if first > start else ("", other)
        if sign == "!":
            before, behind = "static_cast<bool>(", ")"
        pieces = [f"(kalimMutant({NUMBER}) ? ({before}", "flat", (first, last), "unflat", f"{behind}) : (",
                  (start, end), "))"]
        self.add(cursor, "operator", f"'{sign}' -> '{other}'", function, [Edit(start, end, pieces)])

    def literal(self, cursor, function, further):
        start, end = self.range(cursor)
        text = self.source[start:end]
        other = self.other_number(start, end)
        if other:
            edit = Edit(start, end, [f"(kalimMutant({NUMBER}) ? {other} : {text})"])
            self.add(cursor, "constant", f"'{text}' -> '{other}'", function, [edit, *further])

    def pick(self, start, choices):
        """One that depends on the line alone, so that the mutant is the same in a later state of the file."""
        begin = self.source.rfind("\n", 0, start) + 1
        line = self.source[begin:self.source.find("\n", start)].strip()
        return choices[zlib.crc32(line.encode("latin-1")) % len(choices)]

    def other_number(self, start, end):
        """Another constant of the same type, or nothing for what is no number."""
        text = self.source[start:end]
        if text in ("true", "false"):
            return "false" if text == "true" else "true"
        number = LITERAL.match(text)
        if not number:
            return None
        digits, suffix = number.group("digits").replace("'", ""), number.group("suffix")
        is_hexadecimal = digits[:2] in ("0x", "0X")
        if is_hexadecimal and digits[-1] in "fF" and not suffix:
            return f"0x{int(digits, 16) - 1:x}"
        if not is_hexadecimal and re.search(r"[.eE]", digits):
            value = float(digits)
            return f"{repr(value + self.pick(start, (1, value / 4)) if value else 1.0)}{suffix}"
        value = int(digits, 16 if is_hexadecimal else 8 if re.match(r"0[0-7]", digits) else 10)
        return f"{value + self.pick(start, (1, -1)) if value > 0 else 1}{suffix}"

    def place(self):
        """Gives every point its line, and its turn among those that look like it."""
        turns = {}
        for point in sorted(self.points, key=lambda each: (each.start, each.kind)):
            begin = self.source.rfind("\n", 0, point.start) + 1
            stop = self.source.find("\n", point.start)
            point.line = self.source.count("\n", 0, point.start) + 1
            point.column = point.start - begin + 1
            point.text = self.source[begin:stop].strip().encode("latin-1").decode("utf-8", "replace")
            # How often this very mutant has been possible before within the same function and line text.
            same = (point.function, point.text, point.kind, point.change)
            point.ordinal = turns[same] = turns.get(same, -1) + 1

"""Finds the places of a C++ source where one constant, comparison or table row can be changed.

Works on the text alone. Left alone are comments, preprocessor lines, static assertions, alignments and whatever
stands in the parentheses of a call of Trace itself; what VARDEL_TRACE writes is compared by tests and changed. A
change never moves a line, so that line numbers stay what they are.
"""

import dataclasses
import re

TOKEN = re.compile(r"""
    (?P<comment>//[^\n]*|/\*.*?\*/)
  | (?P<directive>(?<![^\n])[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<raw>R"(?P<fence>[^()\\\s]{0,16})\(.*?\)(?P=fence)")
  | (?P<string>(?:u8|u|U|L)?"(?:\\.|[^"\\\n])*")
  | (?P<char>(?:u8|u|U|L)?'(?:\\.|[^'\\\n])+')
  | (?P<number>(?:0[xX][0-9a-fA-F']+|0[bB][01']+|\d[\d']*(?:\.\d+)?(?:[eE][+-]?\d+)?)[uUlLzZfF]*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<space>\s+)
  | (?P<sign><=>|<<=|>>=|->\*|->|::|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|\.\.\.|[-+*/%&|^]=|.)
""", re.VERBOSE | re.DOTALL)

COMPARISONS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&"}
SILENT_CALLS = re.compile(r"^(static_assert|alignas|.*Trace|TRACE\w*)$")


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int

    @property
    def end(self):
        return self.start + len(self.text)


@dataclasses.dataclass(frozen=True)
class Mutation:
    """One change: the characters from `start` to `end` of the file become `replacement`."""

    file: str
    start: int
    end: int
    replacement: str
    kind: str  # "constant", "comparison" or "row"

    def apply(self, text):
        return text[:self.start] + self.replacement + text[self.end:]

    def line(self, text):
        """The number of the first changed line, from 1."""
        return text.count("\n", 0, self.start) + 1


def tokens_of(text):
    return [Token(match.lastgroup if match.lastgroup != "fence" else "raw", match.group(), match.start())
            for match in TOKEN.finditer(text)]


def significant(tokens):
    return [token for token in tokens if token.kind not in ("space", "comment", "directive")]


def closing(tokens, at):
    """The index of the bracket that closes the one at `at`, or of the last token."""
    pairs = {"(": ")", "[": "]", "{": "}"}
    depth = 0
    for index in range(at, len(tokens)):
        depth += tokens[index].text in pairs
        depth -= tokens[index].text in pairs.values()
        if depth == 0:
            return index
    return len(tokens) - 1


def silent_indexes(tokens):
    """The indexes of the tokens that nothing may change."""
    silent = set()
    for at, token in enumerate(tokens[:-1]):
        if token.kind == "word" and SILENT_CALLS.match(token.text) and tokens[at + 1].text == "(":
            silent.update(range(at, closing(tokens, at + 1) + 1))
        if token.text == "extern" and tokens[at + 1].kind == "string":
            silent.add(at + 1)
    return silent


def changed_numbers(text):
    """The neighbours of a number, in its own notation."""
    body = text.rstrip("uUlLzZ")
    suffix = text[len(body):]
    digits = body.replace("'", "")
    if digits[:2].lower() == "0x":
        digits = text.replace("'", "")
        body = re.match(r"0[xX][0-9a-fA-F]+", digits).group()
        suffix, value = digits[len(body):], int(body, 16)
        neighbours = [value + 1] + ([value - 1] if value else [])
        return [f"{body[:2]}{neighbour:0{len(body) - 2}x}{suffix}" for neighbour in neighbours]
    if digits[:2].lower() == "0b":
        return [f"{bin(int(digits, 2) ^ 1)}{suffix}"]
    if re.search(r"[.eEfF]", digits):
        number = digits.rstrip("fF")
        return [f"{float(number) + 1}{digits[len(number):]}"]
    value = int(digits, 8) if len(digits) > 1 and digits[0] == "0" else int(digits)
    return [f"{value + 1}{suffix}"] + ([f"{value - 1}{suffix}"] if value else [])


def changed_character(text):
    """Another character for a character constant; None where none is at hand."""
    prefix, body = text[:text.index("'")], text[text.index("'") + 1:-1]
    if body == r"\0":
        return prefix + r"'\1'"
    if body.startswith("\\"):
        return prefix + ("'/'" if body == r"\\" else f"'{body[1]}'") if len(body) == 2 and body[1] not in "'" else None
    if len(body) != 1 or not " " <= body <= "~":
        return None
    other = chr(ord(body) + 1) if body != "~" else "}"
    return prefix + (f"'{other}'" if other not in "'\\" else f"'{chr(ord(body) - 1)}'")


def is_pure_virtual(tokens, at):
    """`= 0` behind a function's head is no constant."""
    return (tokens[at].text == "0" and at >= 2 and tokens[at - 1].text == "=" and
            tokens[at - 2].text in (")", "const", "noexcept", "override"))


def constant_replacements(tokens, at):
    token = tokens[at]
    if token.kind == "number":
        return [] if is_pure_virtual(tokens, at) else changed_numbers(token.text)
    if token.kind == "char":
        other = changed_character(token.text)
        return [other] if other else []
    if token.kind == "string":
        return [token.text.replace('"', '"~', 1)]
    if token.text in ("true", "false"):
        return ["false" if token.text == "true" else "true"]
    return []


def is_comparison(text, tokens, at):
    """Signs with a space on both sides: those of templates and references have none on one of them."""
    token = tokens[at]
    if token.kind != "sign" or token.text not in COMPARISONS or tokens[at - 1].text == "operator":
        return False
    return text[token.start - 1:token.start].isspace() and text[token.end:token.end + 1].isspace()


def blank(text):
    """White space with the same line ends."""
    return "".join(c if c == "\n" else " " for c in text)


def elements_of(tokens, opening):
    """[(first, last)] token indexes of the elements between a brace and its partner."""
    end = closing(tokens, opening)
    elements, first, at = [], opening + 1, opening + 1
    while at < end:
        if tokens[at].text in "([{":
            at = closing(tokens, at)
        elif tokens[at].text == ",":
            elements.append((first, at - 1))
            first = at + 1
        at += 1
    if first < end:
        elements.append((first, end - 1))
    return elements


def is_table(tokens, opening):
    """A brace behind `... [...] =` or `constexpr ... =` opens the rows of a table."""
    if opening < 2 or tokens[opening].text != "{" or tokens[opening - 1].text != "=":
        return False
    at = opening - 2
    words = []
    while at >= 0 and tokens[at].text not in (";", "}", "{"):
        words.append(tokens[at].text)
        at -= 1
    return words[:1] == ["]"] or "constexpr" in words


def table_rows(text, tokens, opening):
    """Removals, each of one row with its comma."""
    elements = elements_of(tokens, opening)
    # std::array may have an inner pair of braces; behind [] a pair is a row.
    if len(elements) == 1 and tokens[elements[0][0]].text == "{" and tokens[opening - 2].text != "]":
        return table_rows(text, tokens, elements[0][0])
    removals = []
    for first, last in elements if len(elements) > 1 else []:
        if first == last and tokens[first].kind == "number":
            continue  # changed as a constant
        start, end = tokens[first].start, tokens[last].end
        if tokens[last + 1].text == ",":
            end = tokens[last + 1].end
        else:
            start = tokens[first - 1].start
        removals.append((start, end, blank(text[start:end])))
    return removals


def mutations_of(file, text):
    """All changes of a source, in the order of their places."""
    tokens = significant(tokens_of(text))
    silent = silent_indexes(tokens)
    found = []
    for at, token in enumerate(tokens):
        if at in silent:
            continue
        for replacement in constant_replacements(tokens, at):
            found.append(Mutation(file, token.start, token.end, replacement, "constant"))
        if is_comparison(text, tokens, at):
            found.append(Mutation(file, token.start, token.end, COMPARISONS[token.text], "comparison"))
        if is_table(tokens, at):
            for start, end, replacement in table_rows(text, tokens, at):
                found.append(Mutation(file, start, end, replacement, "row"))
    return sorted(set(found), key=lambda mutation: (mutation.start, mutation.end, mutation.replacement))

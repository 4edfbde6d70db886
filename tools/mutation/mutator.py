"""Mutants of a C++ source: every small change of one operator, constant, condition or statement that the text allows.

Relies on the project's format: a binary operator stands between blanks, a template's "<" and a reference's "&" do not.
"""
import re
from typing import NamedTuple

TOKEN = re.compile(r"""
    (?P<skip>  //[^\n]* | /\*.*?\*/ | ^[ \t]*\#(?:\\\n|[^\n])* | \[\[.*?\]\] | \bstatic_assert\s*\(.*?\); | \boperator\W+ )
  | (?P<space> \s+ )
  | (?P<text>  R"\(.*?\)" | "(?:\\.|[^"\\])*" | '(?:\\.|[^'\\])*' )
  | (?P<number> \d[\w'.]* )
  | (?P<word>  [A-Za-z_]\w* )
  | (?P<mark>  <<=|>>=|<=>|->|::|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|. )
""", re.VERBOSE | re.MULTILINE | re.DOTALL)

BETWEEN_BLANKS = {
    "<": ["<="], "<=": ["<"], ">": [">="], ">=": [">"], "==": ["!="], "!=": ["=="],
    "&&": ["||"], "||": ["&&"],
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "&": ["|"], "|": ["&"], "^": ["&"], "<<": [">>"], ">>": ["<<"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "|=": ["&="], "&=": ["|="], "^=": ["&="],
    "<<=": [">>="], ">>=": ["<<="],
}
ANYWHERE = {"++": ["--"], "--": ["++"], "true": ["false"], "false": ["true"], "break": ["continue"], "continue": ["break"]}
NO_STATEMENT = set("""if else for while do switch case default break continue return const constexpr static static_cast using
    namespace struct class enum extern template typedef auto public private goto explicit virtual inline friend throw
    va_end""".split())  # va_end does nothing on the library's processors
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
EMPTY_VALUES = {"", "0", "nullptr", "false", "true", "{}", '""', "'\\0'", "1", "-1"}  # true and numbers change by themselves
ONE_COMPARISON = re.compile(r"[^&|?]* [=!]= [^&|?]*|![^&|?=]*")  # changing its operator negates it already
DECLARED = re.compile(r"(?:const )?[\w:]+(?:<.*?>)?[*&]* (?:const )?(\w+) = ")


class Token(NamedTuple):
    kind: str
    text: str
    start: int
    end: int


class Mutant(NamedTuple):
    start: int
    end: int
    after: str

    def apply(self, source):
        return source[:self.start] + self.after + source[self.end:]


def tokenize(source):
    return [Token(match.lastgroup, match.group(), match.start(), match.end()) for match in TOKEN.finditer(source)]


def closing(tokens, opening):
    """The place of the bracket that closes the one at `opening`."""
    depth = 0
    for place in range(opening, len(tokens)):
        if tokens[place].kind == "mark":
            depth += (tokens[place].text in "([{") - (tokens[place].text in ")]}")
        if depth == 0:
            return place
    return len(tokens) - 1


def template_arguments(tokens):
    """The places of all tokens between the "<" and ">" of templates; a "<" of one stands right behind its name."""
    places, stack = set(), []
    for place, token in enumerate(tokens):
        behind_name = place > 0 and (tokens[place - 1].kind == "word" or tokens[place - 2].text == "template")
        if token.text == "<" and behind_name:
            stack.append(place)
        elif stack and token.text in (">", ">>"):
            for _ in token.text:
                places.update(range(stack.pop(), place + 1) if stack else ())
        elif stack and token.text in ";{":
            stack.clear()
    return places


def numbers_beside(text):
    match = re.fullmatch(r"(0[xX][0-9a-fA-F']+|[\d']+)([uUlL]*)", text)
    if match is None:  # not an integer
        return []
    digits, suffix = match.groups()
    value = int(digits.replace("'", ""), 16 if digits[:2] in ("0x", "0X") else 10)
    write = hex if digits[:2] in ("0x", "0X") else str
    return [write(value + 1) + suffix, write(value - 1) + suffix]


def operators_and_constants(tokens, keep_extents):
    in_template = template_arguments(tokens)
    for place, token in enumerate(tokens):
        if place in in_template:
            continue
        around = tokens[place - 1].kind, tokens[place + 1].kind if place + 1 < len(tokens) else ""
        replacements = ANYWHERE.get(token.text, []) if token.kind != "text" else []
        if token.kind == "mark" and around == ("space", "space"):
            replacements = BETWEEN_BLANKS.get(token.text, replacements)
        if token.kind == "number" and not (keep_extents and tokens[place - 1].text == "["):
            replacements = numbers_beside(token.text)
        if token.text == "!":
            replacements = [""]
        for after in replacements:
            yield Mutant(token.start, token.end, after)


def negated(source, start, end):
    """A condition's negation; of `T name = value` it is the name that is negated."""
    condition = source[start:end]
    if ONE_COMPARISON.fullmatch(condition):
        return
    if declared := DECLARED.match(condition):
        yield Mutant(start, end, f"{condition}; !{declared.group(1)}")
    else:
        yield Mutant(start, end, f"!({condition})")


def conditions(source, tokens):
    for place, token in enumerate(tokens):
        if token.text in ("if", "while", "for") and tokens[place + 2].text == "(":
            last = closing(tokens, place + 2)
            parts = [place + 2, *(i for i in range(place + 3, last) if tokens[i].text == ";"), last]
            if token.text != "for":
                yield from negated(source, tokens[parts[-2]].end, tokens[last].start)
            elif len(parts) == 4 and parts[2] > parts[1] + 1:
                yield from negated(source, tokens[parts[1]].end + 1, tokens[parts[2]].start)
        if token.text == "?":
            yield from negated(source, tokens[choice_start(tokens, place)].start, tokens[place - 1].start)


def choice_start(tokens, place):
    """Where the condition in front of a "?" begins."""
    depth = 0
    while depth >= 0 and place > 0:
        place -= 1
        text = tokens[place].text
        if depth == 0 and (text in (";", "{", ",", "?", ":", "return", "=>") or text in ASSIGNMENTS):
            break
        depth += (text in (")", "]")) - (text in ("(", "["))
    place += 1
    while tokens[place].kind in ("space", "skip"):
        place += 1
    return place


def is_statement(tokens):
    """Whether these tokens, without blanks, are a call, an assignment or a step, and declare nothing."""
    if tokens[0].text in NO_STATEMENT or not (tokens[0].kind == "word" or tokens[0].text in ("*", "++", "--")):
        return False
    depth = 0
    kinds = set()
    for before, token in zip(tokens, tokens[1:]):
        depth += (before.text in "([{" and before.kind == "mark") - (before.text in ")]}" and before.kind == "mark")
        if depth > 0:
            continue
        if token.kind == "word" and before.end < token.start and before.text not in ASSIGNMENTS and not kinds:
            return False  # two names in a row: a declaration
        kinds.add(token.text if token.text in ASSIGNMENTS or token.text in ("++", "--") else None)
        kinds.discard(None)
    return bool(kinds) or tokens[0].text in ("++", "--") or tokens[-1].text == ")"


def statements(tokens):
    solid = [token for token in tokens if token.kind not in ("space", "skip")]
    for place, token in enumerate(solid[1:], 1):
        before = solid[place - 1].text
        if before in (";", "{", "}", ")", "else"):
            last = place
            while last < len(solid) and solid[last].text not in (";", "{", "}"):
                last = closing(solid, last) + 1 if solid[last].text in ("(", "[") else last + 1
            if last < len(solid) and last > place and solid[last].text == ";" and is_statement(solid[place:last]):
                yield Mutant(token.start, solid[last - 1].end, "")
        if token.text == "return":
            last = next(i for i in range(place, len(solid)) if solid[i].text == ";")
            value = "".join(part.text for part in solid[place + 1:last])
            if value not in EMPTY_VALUES:
                yield Mutant(token.end, solid[last].start, " {}")


def mutants(source, is_header=False):
    """All mutants of a source, in the order of their places. The extents of a header's arrays stay: programs that are
    already compiled share them."""
    tokens = tokenize(source)
    found = [*operators_and_constants(tokens, is_header), *conditions(source, tokens), *statements(tokens)]
    return sorted(set(found))

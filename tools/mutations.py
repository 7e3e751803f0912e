"""Changes of one operator or constant in C++ sources, and those known to change nothing."""
import dataclasses
import re

# Tables of data, in which a change is another table.
TABLES = {
    "src/engine/catalogue/knot_table.cpp",
    "src/recognition/knot_table.cpp",
}

# What is no code, and what no run reaches.
BLANKED = re.compile(
    r"""//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"|(?<!\w)'(?:\\.|[^'\\\n])+'|^\s*\#(?:\\\n|[^\n])*"""
    r"""|^\s*(?:static_assert|template <)[^\n]*""",
    re.DOTALL | re.MULTILINE,
)

# clang-format writes blanks around binary operators and around nothing else that looks like them.
BINARY = {
    "<": ["<=", ">="],
    ">": [">=", "<="],
    "<=": ["<", ">"],
    ">=": [">", "<"],
    "==": ["!="],
    "!=": ["=="],
    "&&": ["||"],
    "||": ["&&"],
    "+": ["-"],
    "-": ["+"],
    "*": ["/"],
    "/": ["*"],
    "%": ["/"],
    "+=": ["-="],
    "-=": ["+="],
    "*=": ["/="],
    "&": ["|"],
    "|": ["&"],
    "<<": [">>"],
    ">>": ["<<"],
}
WORDS = {"true": ["false"], "false": ["true"], "++": ["--"], "--": ["++"]}

TOKEN = re.compile(
    r"(?<= )(?P<binary>[<>=!]=|[-+*]=|&&|\|\||<<|>>|[-+*/%&|<>])(?=[ \n])"
    r"|\b(?P<word>true|false)\b|(?P<step>\+\+|--)(?=[\w*(])"
    r"|(?P<not>(?<![\w)])!(?=[\w(]))"
    r"|(?<![\w.'])(?P<real>\d[\d']*\.\d*(?:[eE][-+]?\d+)?|\d+[eE][-+]?\d+)(?P<single>[fF]?)\b"
    r"|(?<![\w.'])(?P<whole>0[xX][\da-fA-F']+|\d[\d']*)(?P<suffix>[uUlL]*)(?![\w.'])"
)


@dataclasses.dataclass(frozen=True)
class Mutation:
    path: str
    line: int  # from 1
    before: str  # the whole line
    after: str

    def __str__(self):
        return f"{self.path}:{self.line}\n  - {self.before.strip()}\n  + {self.after.strip()}"

    @property
    def key(self):
        return self.path, self.before.strip(), self.after.strip()

    def applied(self, text):
        lines = text.split("\n")
        assert lines[self.line - 1] == self.before
        lines[self.line - 1] = self.after
        return "\n".join(lines)


def replacements(token):
    """What may stand in the place of a token."""
    if token["binary"]:
        return BINARY[token["binary"]]
    if token["word"] or token["step"]:
        return WORDS[token["word"] or token["step"]]
    if token["not"]:
        return [""]
    if token["real"]:
        value = float(token["real"].replace("'", ""))
        return [repr(changed) + token["single"] for changed in ([2 * value, value / 2] if value else [1.0])]
    value = int(token["whole"].replace("'", ""), 0 if token["whole"][:2] in ("0x", "0X") else 10)
    return [str(changed) + token["suffix"] for changed in (value + 1, value - 1) if changed >= 0]


def mutations_of(path, text):
    """All of a source, in the order of its text."""
    code = BLANKED.sub(lambda found: re.sub(r"[^\n]", " ", found[0]), text)
    found = []
    for number, (line, written) in enumerate(zip(code.split("\n"), text.split("\n")), 1):
        for token in TOKEN.finditer(line + "\n"):
            for replacement in replacements(token):
                after = written[: token.start()] + replacement + written[token.end() :]
                found.append(Mutation(path, number, written, after))
    return found


def read_equivalents(text):
    """The list's reasons by key: of each change the file, the line before and after, and the reason,
    each in a line of its own, with an empty line behind."""
    reasons = {}
    for block in re.split(r"\n\s*\n", text):
        lines = [line for line in block.strip().split("\n") if line and not line.startswith("#")]
        if not lines:
            continue
        marks = [line[:2] for line in lines[1:]]
        if marks != ["- ", "+ ", "= "]:
            raise ValueError(f"not a file and three lines with -, + and =: {block.strip()!r}")
        reasons[lines[0].strip(), lines[1][2:].strip(), lines[2][2:].strip()] = lines[3][2:].strip()
    return reasons

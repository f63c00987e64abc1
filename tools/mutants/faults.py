"""Generates the faults that can be inserted into one line of C++."""

import re

SWAPS = {
    " < ": " <= ", " <= ": " < ", " > ": " >= ", " >= ": " > ", " == ": " != ", " != ": " == ",
    " && ": " || ", " || ": " && ", " + ": " - ", " - ": " + ", " * ": " / ", " / ": " * ",
    " += ": " -= ", " -= ": " += ", "++": "--", "--": "++",
    "true": "false", "false": "true", "std::min": "std::max", "std::max": "std::min",
}  # fmt: skip
# clang-format puts spaces around operators, so that brackets of templates and references do not match.
SWAP = re.compile("|".join(rf"\b{text}\b" if text[0].isalpha() else re.escape(text) for text in SWAPS))
NUMBER = re.compile(r"(?<![\w.])\d+(?:\.\d+)?(?=f?\b)(?!\.)")

# A complete statement: an assignment to an existing object, or a call whose result is not used.
ASSIGNMENT = re.compile(r"\*?[a-z][\w.\[\]]*(?:(?:->|\.|::)\w[\w\[\]]*)*(?:\(\))? [-+*/|&]?= .*;")
CALL = re.compile(r"(?!return\b|throw\b|delete\b)[A-Za-z]\w*(?:<[\w: ]+>)?(?:(?:->|\.|::)~?\w+|\[\w+\]|\(\))*\(.*\);")
STEP = re.compile(r"(?:\+\+|--)[\w.>\[\]-]+;|break;|continue;|return;")
CONDITION = re.compile(r"((?:\} else )?if |while )\((?!.*;)(.*)\) ?(\{?)")
RESULT = re.compile(r"return (?!true;|false;|\{\};|nullptr;|0;|\*this;)(.*);")

# Messages, and code whose effect is visible only to the compiler or the test tools.
SKIPPED = re.compile(
    r"#|//|/\*|\*|static_assert|assert\(|using |namespace |template|friend |public:|private:|protected:|case |"
    r".*\b(?:Report\w*|Write|Explain\w*|Print\w*|Describe\w*|Warn\w*|Note|ToolError)\(|.*MessageLevel|.*operator|.*HARMONET_")
# A row of a table.
DATA = re.compile(r"[\s{}\d.,;eEfFuUlLxX+-]*")


def blank_texts(line):
    """Returns the line with strings, characters and comments blanked out; positions do not change."""
    hidden = re.sub(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])*\'', lambda match: "_" * len(match.group()), line)
    comment = hidden.find("//")
    return hidden if comment < 0 else hidden[:comment].rstrip()


def is_balanced(text):
    depth = 0
    for character in text:
        depth += (character in "([{") - (character in ")]}")
        if depth < 0:
            return False
    return depth == 0


def of_text(text):
    """Yields each line that can be mutated, without its indentation, and its mutations."""
    raw_end = None
    for line in map(str.strip, text.splitlines()):
        if raw_end is None:
            changes = of_line(line)
            if changes:
                yield line, changes
            begin = re.search(r'R"(\w*)\(', line)
            raw_end = ")" + begin.group(1) + '"' if begin else None
        if raw_end is not None and raw_end in line:
            raw_end = None


def of_line(line):
    code = blank_texts(line)
    if not code or SKIPPED.match(code) or DATA.fullmatch(code):
        return []
    changes = []

    def replace(begin, end, text):
        changes.append(line[:begin] + text + line[end:])

    for match in SWAP.finditer(code):
        replace(*match.span(), SWAPS[match.group()])
    for match in NUMBER.finditer(code):
        for step in (1, -1):
            number = match.group()
            value = float(number) + step if "." in number else int(number) + step
            if value >= 0:
                replace(*match.span(), str(value))
    if is_balanced(code):
        if ASSIGNMENT.fullmatch(code) or CALL.fullmatch(code) or STEP.fullmatch(code):
            changes.append(";")
        condition = CONDITION.fullmatch(code)
        if condition and is_balanced(condition.group(2)):
            replace(*condition.span(2), "!(" + line[slice(*condition.span(2))] + ")")
    result = RESULT.fullmatch(code)
    if result and is_balanced(code):
        replace(*result.span(1), "{}")
    return changes

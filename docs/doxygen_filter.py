"""Doxygen's input filter: prints one header in a form in which Doxygen reads the comments as intended.

A comment describes all declarations that follow it without a blank line in between, so the filter repeats its first
paragraph before each of them. Members that are `= default` or `= delete` need no comment; the filter omits them. Line
numbers do not change, so that the warnings of Doxygen name the right line.
"""
import re
import sys

OPENS_SCOPE = re.compile(r"^(template<.*> ?)?(class|struct|enum|union|namespace|extern \"C\")\b[^;]*$")
LABEL = re.compile(r"^(public|protected|private|signals)\s*:$")
DEFAULTED = re.compile(r"= (default|delete);$")


def first_paragraph(comment):
    text = []
    for line in comment:
        if not line:
            break
        text.append(line)
    return " ".join(text).replace("*/", "")


class Filter:
    def __init__(self):
        self.comment = []        # The comment of the current declarations, line by line.
        self.is_own = False      # Whether the comment is directly above.
        self.statement = ""      # The part of an incomplete declaration read so far.
        self.depth = 0           # Of braces within that declaration: a body.

    def end_run(self):
        self.comment = []
        self.is_own = False

    def filter(self, line):
        code = line.strip()
        if not self.statement:
            if code.startswith("///"):
                if not self.is_own:
                    self.comment = []
                self.comment.append(code[3:].strip())
                self.is_own = True
                return line
            if code.startswith("//") or code.startswith("#"):
                return line
            if not code or code in ("{", "}", "};") or LABEL.match(code) or code.startswith("} //"):
                self.end_run()
                return line
        return self.declaration(line, code)

    def declaration(self, line, code):
        begins = not self.statement
        if self.depth == 0 and code in ("}", "};"):
            # After an enumerator without a comma.
            self.statement = ""
            self.end_run()
            return line
        documented = self.is_own or "///<" in line or not self.comment
        bare = re.sub(r'"(\\.|[^"\\])*"|//.*', "", code).strip()
        self.statement += bare + " "
        if OPENS_SCOPE.match(self.statement.strip()) and "(" not in self.statement.split("{")[0].replace("alignas(", ""):
            if bare.endswith("{") or not bare.endswith((";", "}")):
                # The members, from the brace on, are separate declarations.
                self.statement = ""
                self.end_run()
                return line
        self.depth += bare.count("{") - bare.count("}")
        if self.depth == 0 and self.statement.rstrip().endswith((";", "}", "};")):
            self.statement = ""
            self.is_own = False
        if begins and DEFAULTED.search(bare):
            return ""
        if begins and not documented:
            indent = line[: len(line) - len(line.lstrip())]
            return f"{indent}/** {first_paragraph(self.comment)} */ {line.lstrip()}"
        return line


def main():
    reader = Filter()
    with open(sys.argv[1], encoding="utf-8") as header:
        for line in header:
            print(reader.filter(line.rstrip("\n")))


main()

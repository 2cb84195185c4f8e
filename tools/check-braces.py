#!/usr/bin/env python3
"""tools/check-braces.py FILE...: fails where braces stand around one statement on one line, which clang-format cannot see.

A condition of several lines keeps its braces, so does a chain of if and else of which one branch needs them, and a macro,
which may be more than it seems. The layout must be clang-format's: the check goes by lines and their indentation.
"""
import pathlib
import re
import sys

HEAD = re.compile(r"( *)(if|for|while)\b.* \{$")
NEXT = re.compile(r"( *)\} else( if\b.*)? \{$")
STATEMENT = re.compile(r"(?!if\b|for\b|while\b|do\b|switch\b|else\b|case\b|[A-Z][A-Z0-9_]+\(|//|#)\S.*;$")


def superfluous(lines, start):
    """Whether all branches of what begins there are one statement on one line."""
    match = HEAD.match(lines[start])
    while match and start + 2 < len(lines):
        indent = match[1]
        body = lines[start + 1]
        if not (body.startswith(indent + "    ") and STATEMENT.match(body[len(indent) + 4:])):
            return False
        start += 2
        if lines[start] == indent + "}":
            return True
        match = NEXT.match(lines[start])
        if match and match[1] != indent:
            return False
    return False


def main():
    status = 0
    for name in sys.argv[1:]:
        lines = pathlib.Path(name).read_text().splitlines()
        for number in range(len(lines)):
            if HEAD.match(lines[number]) and superfluous(lines, number):
                print(f"{name}:{number + 1}: braces around one statement: {lines[number].strip()}", file=sys.stderr)
                status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())

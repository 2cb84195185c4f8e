"""What the built program says of itself."""

import re
import subprocess

OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


def help_text(program):
    return subprocess.run([program, "--help"], check=True, capture_output=True, text=True).stdout


def options(program):
    """All long options."""
    found = set(OPTION.findall(help_text(program)))
    assert len(found) >= 8, found
    return found


def options_below(program, command):
    """The options that are listed below a command, as indented lines: "" is the window, without a command."""
    found = set()
    current = None
    for line in help_text(program).splitlines():
        heading = re.match(r"  vornic(?: ([a-z]+))?(?= )", line)
        if heading:
            current = heading.group(1) or ""
        elif current == command and re.match(r" +--", line):
            found.add(OPTION.search(line).group())
    assert found, command
    return found

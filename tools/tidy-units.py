#!/usr/bin/env python3
"""tools/tidy-units.py BUILD OUT: writes units for clang-tidy into OUT, and their names to the standard output.

Most of clang-tidy's time goes into the toolkit's headers, so a unit includes all sources of one target, as
build/*/compile_commands.json lists them. Sources that define the same name for themselves come into units apart: the
compiler is asked, and what it refuses goes into the next unit.
"""
import concurrent.futures
import json
import os
import pathlib
import re
import shlex
import subprocess
import sys

root = pathlib.Path(__file__).resolve().parent.parent
build, out = (pathlib.Path(argument).resolve() for argument in sys.argv[1:])
clang = os.environ.get("CLANG", "clang++")


def arguments_of(entry):
    """The compiler's arguments without what names files or asks for what clang-tidy has no use for."""
    words = shlex.split(entry["command"])
    first = next(i for i, word in enumerate(words) if re.search(r"(\+\+|cc|clang)(-\d+)?$", word) and "ccache" not in word)
    kept, skip = [], False
    for word in words[first + 1:]:
        if skip or word in {"-c", "-Werror", entry["file"]}:
            skip = False
        elif word in {"-o", "-MF", "-MT", "-MQ"}:
            skip = True
        elif not word.startswith(("-W", "-MD", "-O")):
            kept.append(word)
    return kept


def refused(unit, sources, arguments):
    """The sources that the compiler does not take behind those before them."""
    said = subprocess.run([clang, *arguments, "-w", "-fsyntax-only", "-ferror-limit=0", "-fno-caret-diagnostics", unit],
                          capture_output=True, text=True, check=False).stderr
    found, current = set(), None
    for line in said.splitlines():
        if match := re.match(rf"In file included from {re.escape(str(unit))}:(\d+):", line):
            current = sources[int(match[1]) - 1]
        elif re.search(r": (fatal )?error: ", line) and current:
            found.add(current)
    return found


def units_of(target, sources, arguments):
    """Yields a compilation database entry for each unit that takes all its sources."""
    number = 0
    while sources:
        unit = out / f"{target}_{number}.cpp"
        unit.write_text("".join(f'#include "{source}" // NOLINT\n' for source in sources))
        later = refused(unit, sources, arguments) if len(sources) > 1 else set()
        if len(later) == len(sources):
            later = set(sources[1:])
        if later:
            sources = [source for source in sources if source not in later]
            unit.write_text("".join(f'#include "{source}" // NOLINT\n' for source in sources))
        yield {"directory": str(out), "file": str(unit), "arguments": [clang, *arguments, "-c", str(unit)]}
        sources = sorted(later)
        number += 1


out.mkdir(parents=True, exist_ok=True)
for old in out.glob("*.cpp"):
    old.unlink()
targets = {}
for entry in json.loads((build / "compile_commands.json").read_text()):
    source = pathlib.Path(entry["file"])
    if source.is_relative_to(root / "src") and source.suffix == ".cpp":
        target = re.search(r"CMakeFiles/(\w+)\.dir/", entry["command"])[1]
        targets.setdefault(target, []).append(entry)
with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
    jobs = [pool.submit(lambda item: list(units_of(item[0], sorted(e["file"] for e in item[1]), arguments_of(item[1][0]))), item)
            for item in targets.items()]
    entries = [entry for job in jobs for entry in job.result()]
(out / "compile_commands.json").write_text(json.dumps(entries, indent=1))
for entry in sorted(entries, key=lambda entry: -pathlib.Path(entry["file"]).stat().st_size):
    print(entry["file"])

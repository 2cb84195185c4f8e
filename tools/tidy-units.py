#!/usr/bin/env python3
"""tools/tidy-units.py BUILD OUT: writes units for clang-tidy into OUT, and their names to the standard output.

Most of clang-tidy's time goes into the toolkit's headers, so a unit includes all sources of one target, as
build/*/compile_commands.json lists them. Sources that define the same name for themselves cannot share a unit: the
compiler is asked, and what it refuses is put together with the sources of the small targets.
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
small_target = 8  # sources; such a unit would take longer for its headers than for them


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
        elif kept and kept[-1] == "-isystem":
            kept[-1] = f"-isystem{word}"
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


def unit_of(name, sources, arguments):
    """A compilation database entry for a unit of the sources, and those that it does not take."""
    unit = out / f"{name}.cpp"
    unit.write_text("".join(f'#include "{source}" // NOLINT\n' for source in sources))
    later = refused(unit, sources, arguments) if len(sources) > 1 else set()
    if len(later) == len(sources):
        later = set(sources[1:])
    if later:
        unit.write_text("".join(f'#include "{source}" // NOLINT\n' for source in sources if source not in later))
    return {"directory": str(out), "file": str(unit), "arguments": [clang, *arguments, "-c", str(unit)]}, later


out.mkdir(parents=True, exist_ok=True)
for old in out.glob("*.cpp"):
    old.unlink()
targets = {}
for entry in json.loads((build / "compile_commands.json").read_text()):
    source = pathlib.Path(entry["file"])
    if source.is_relative_to(root / "src") and source.suffix == ".cpp":
        target = re.search(r"CMakeFiles/(\w+)\.dir/", entry["command"])[1]
        targets.setdefault(target, []).append(entry)
arguments = {target: arguments_of(entries[0]) for target, entries in targets.items()}
sources = {target: sorted(entry["file"] for entry in entries) for target, entries in targets.items()}
large = [target for target in targets if len(sources[target]) > small_target]
with concurrent.futures.ThreadPoolExecutor(len(os.sched_getaffinity(0))) as pool:
    taken = list(pool.map(lambda target: unit_of(target, sources[target], arguments[target]), large))
entries = [entry for entry, later in taken]
rest = {source for target in targets if target not in large for source in sources[target]}
rest = rest.union(*(later for entry, later in taken))
of_all_targets = list(dict.fromkeys(word for words in arguments.values() for word in words))
while rest:
    entry, rest = unit_of(f"rest_{len(entries)}", sorted(rest), of_all_targets)
    entries.append(entry)
(out / "compile_commands.json").write_text(json.dumps(entries, indent=1))
for entry in sorted(entries, key=lambda entry: -pathlib.Path(entry["file"]).stat().st_size):
    print(entry["file"])

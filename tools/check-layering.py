#!/usr/bin/env python3
"""Fails where a file under src/ includes a folder its own target does not link.

The allowed edges are read from the vornic_module() calls, so there is no second list to keep.
"""
import pathlib
import re
import sys

root = pathlib.Path(__file__).resolve().parent.parent / "src"
edges = {}
for lists in root.rglob("CMakeLists.txt"):
    text = lists.read_text()
    here = lists.parent.relative_to(root).as_posix()
    edges[here] = {dep.replace("::", "/") for dep in re.findall(r"vornic::([\w:]+)", text)} | {here}

bad = 0
for file in sorted(root.rglob("*")):
    if file.suffix not in {".h", ".cpp"}:
        continue
    owner = next(p.relative_to(root).as_posix() for p in file.parents
                 if p.relative_to(root).as_posix() in edges)
    for number, line in enumerate(file.read_text().splitlines(), 1):
        match = re.match(r'\s*#\s*include "([^"]+)"', line)
        if not match:
            continue
        folder = max((e for e in edges if match[1].startswith(e + "/")), key=len, default=None)
        if folder is None or folder not in edges[owner]:
            print(f"{file.relative_to(root)}:{number}: {owner} may not include {match[1]}")
            bad += 1
sys.exit(bool(bad))

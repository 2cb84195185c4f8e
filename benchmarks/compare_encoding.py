#!/usr/bin/env python3
"""How long the movie of a recording is waited for, beside another build and the ffmpeg program.

    compare_encoding.py ENCODE_BENCHMARK OTHER_ENCODE_BENCHMARK [turns] [frames] [scene...]

Lets the encode_benchmark of two builds write the movies of the same scenes in turns, and prints a table of medians:
each figure of this build, then the other build's, then that of ffmpeg, which runs in every turn. benchmarks/run calls
it where it is told which commit the other build is made of.
"""
import re
import statistics
import subprocess
import sys

SCENES = {
    "static": "a page that never changes",
    "desktop": "a desktop: one frame in six changes",
    "typing": "typing: a few rows change in every frame",
    "colours": "smooth colours move",
    "text": "a page of text scrolls",
}
FIGURES = ["wait, of the length", "ms of CPU a frame", "luma, dB", "Mbit/s", "MiB at the peak"]
DIGITS = [3, 1, 2, 2, 0]
LINE = re.compile(r"^ +(vornic|ffmpeg) +([\d.]+) of the length, +([\d.]+) ms of CPU a frame, +([\d.]+) dB, "
                  r"+([\d.]+) Mbit/s, +([\d.]+) MiB$", re.MULTILINE)


def measure(benchmark, scene, frames):
    """{who: figures} of one turn."""
    text = subprocess.run([benchmark, scene, str(frames), "1"], capture_output=True, text=True, check=True).stdout
    told = {match[1]: [float(figure) for figure in match.groups()[1:]] for match in LINE.finditer(text)}
    if sorted(told) != ["ffmpeg", "vornic"]:
        sys.exit(f"{benchmark} says something else than was expected:\n{text}")
    return told


def compare(scene, builds, turns, frames):
    """Rows of figures: this build's, the other's, ffmpeg's."""
    told = {build: [] for build in builds}
    for turn in range(turns):
        for build in builds if turn % 2 == 0 else reversed(builds):
            told[build].append(measure(build, scene, frames))
    rows = [[turn["vornic"] for turn in told[build]] for build in builds]
    rows.append([turn["ffmpeg"] for build in builds for turn in told[build]])
    return [[statistics.median(column) for column in zip(*row)] for row in rows]


def main():
    builds = sys.argv[1:3]
    turns = int(sys.argv[3]) if len(sys.argv) > 3 else 3
    frames = int(sys.argv[4]) if len(sys.argv) > 4 else 300
    print(f"| the screen; now, before, ffmpeg | {' | '.join(FIGURES)} |")
    print("|---" * (len(FIGURES) + 1) + "|")
    for scene in sys.argv[5:] or SCENES:
        rows = compare(scene, builds, turns, frames)
        cells = [", ".join(f"{figure:.{digits}f}" for figure in column) for column, digits in zip(zip(*rows), DIGITS)]
        print(f"| {SCENES[scene]} | {' | '.join(cells)} |", flush=True)


if __name__ == "__main__":
    main()

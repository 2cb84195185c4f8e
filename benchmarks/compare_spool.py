#!/usr/bin/env python3
"""What a recording spools and what it costs, beside another build of the program, such as that of the commit before.

    compare_spool.py PROGRAM OTHER_PROGRAM SHOW_SCENE [seconds] [turns] [scene...]

Starts a private virtual display of 1920 x 1080, shows a scene on it, and lets both builds record it at the high
quality, in turns. Bytes are those of the spool's files when the capture has ended; processor time is that of the whole
process while the screen is recorded, after a second to settle; frames are those of the movie. Each figure is the
median of the turns. A build whose passes are shorter keeps more frames, so processor time is told by the frame, too.
"""
import pathlib
import signal
import statistics
import subprocess
import sys
import tempfile
import time

from compare_recording import cpu_seconds, movie_facts, start_server

SCENES = {
    "counter": "a still page with a 12-character counter",
    "desktop": "a desktop: a region changes five times a second",
    "typing": "typing in a terminal",
    "scroll": "a full screen of small text scrolls",
    "video": "moving colours",
}


def spooled_bytes(cache):
    """Of all files of the spool, wherever they lie beneath the cache folder; some may go while they are counted."""
    total = 0
    for file in (cache / "com.kavlor.vornic").rglob("*"):
        try:
            total += file.stat().st_size if file.is_file() else 0
        except FileNotFoundError:
            pass
    return total


def record(program, folder, environment, seconds):
    """MB spooled a second, cores used while recording, milliseconds of them a frame, frames kept a second."""
    movie = f"{folder}/movie.mp4"
    process = subprocess.Popen([program, "record", "--overwrite", "--ignore-low-space", "--quality", "high", movie],
                               env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                               stderr=subprocess.DEVNULL)
    time.sleep(1.5)
    start, began = cpu_seconds(process.pid), time.monotonic()
    time.sleep(seconds)
    used, passed = cpu_seconds(process.pid) - start, time.monotonic() - began
    process.send_signal(signal.SIGINT)
    # What waited in memory is written at the end of the capture; the files go when the movie is complete.
    spooled = 0
    while process.poll() is None:
        spooled = max(spooled, spooled_bytes(pathlib.Path(environment["XDG_CACHE_HOME"])))
        time.sleep(0.002)
    if process.returncode != 0:
        sys.exit(f"{program} failed with {process.returncode}")
    duration, packets = movie_facts(movie)
    cores, rate = used / passed, packets / duration
    return spooled / duration / 1e6, cores, cores / rate * 1000, rate


def compare(scene, programs, show_scene, seconds, turns):
    with tempfile.TemporaryDirectory() as folder:
        server, environment = start_server(folder)
        shown = subprocess.Popen([show_scene, scene, "--fps", "30", "--seconds", "100000"], env=environment,
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        shown.stdout.readline()  # "ready"
        figures = {program: [] for program in programs}
        try:
            for turn in range(turns):
                for program in programs if turn % 2 == 0 else reversed(programs):
                    figures[program].append(record(program, folder, environment, seconds))
        finally:
            for process in (shown, server):
                process.kill()
                process.wait()
    return [[statistics.median(column) for column in zip(*figures[program])] for program in programs]


def main():
    programs, show_scene = sys.argv[1:3], sys.argv[3]
    seconds = float(sys.argv[4]) if len(sys.argv) > 4 else 10
    turns = int(sys.argv[5]) if len(sys.argv) > 5 else 3
    print("| the screen; each figure beside the other build's | MB/s spooled | cores | ms a frame | frames a second |")
    print("|---|---|---|---|---|")
    for scene in sys.argv[6:] or SCENES:
        ours, others = compare(scene, programs, show_scene, seconds, turns)
        cells = [f"{our:.{digits}f}, {other:.{digits}f}" for our, other, digits in zip(ours, others, [2, 3, 2, 1])]
        print(f"| {SCENES[scene]} | {' | '.join(cells)} |", flush=True)


if __name__ == "__main__":
    main()

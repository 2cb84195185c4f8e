#!/usr/bin/env python3
"""CPU time and memory of a whole recording, beside the ffmpeg program encoding the same screen live.

    compare_recording.py PROGRAM SHOW_SCENE [seconds] [turns]

Starts a private virtual display of 1920 x 1080, shows a scene on it, and lets both record it in turns. What
is measured is the processor time of the whole process while the screen is recorded, sampled over the same
number of seconds, after a second to settle; ratios are of medians. For vornic the frames kept a second come
from the movie's own packets.
"""
import os
import pathlib
import signal
import statistics
import subprocess
import sys
import tempfile
import time

TICKS = os.sysconf("SC_CLK_TCK")


def cpu_seconds(pid):
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / TICKS


def resident_mib(pid):
    pages = int(pathlib.Path(f"/proc/{pid}/statm").read_text().split()[1])
    return pages * os.sysconf("SC_PAGE_SIZE") / 2**20


def measure(command, environment, seconds):
    """Cores used, and memory after the first and the last second."""
    process = subprocess.Popen(command, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(1.5)
    start, began, first = cpu_seconds(process.pid), time.monotonic(), resident_mib(process.pid)
    time.sleep(seconds)
    used, passed, last = cpu_seconds(process.pid) - start, time.monotonic() - began, resident_mib(process.pid)
    process.send_signal(signal.SIGINT)
    stopped = time.monotonic()
    process.wait()
    return used / passed, first, last, time.monotonic() - stopped


def movie_facts(movie):
    text = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v", "-count_packets", "-show_entries",
                           "stream=duration,nb_read_packets", "-of", "csv=p=0", movie],
                          capture_output=True, text=True, check=True).stdout
    duration, packets = text.strip().split(",")
    return float(duration), int(packets)


def start_server(folder):
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", "1920x1080x24", "-nolisten", "tcp", "-noreset"],
                              pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    number = os.read(read, 16).decode().strip()
    environment = dict(os.environ, DISPLAY=f":{number}", XDG_CACHE_HOME=folder)
    return server, environment


def compare(scene, program, show_scene, seconds, turns):
    with tempfile.TemporaryDirectory() as folder:
        server, environment = start_server(folder)
        shown = subprocess.Popen([show_scene, scene, "--fps", "30", "--seconds", "100000"], env=environment,
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        shown.stdout.readline()  # "ready"
        ours_movie, theirs_movie = f"{folder}/ours.mp4", f"{folder}/theirs.mp4"
        ours, theirs, rates, waits, growth = [], [], [], [], []
        for _ in range(turns):
            cores, first, last, wait = measure(
                [program, "record", "--overwrite", "--ignore-low-space", ours_movie], environment, seconds)
            duration, packets = movie_facts(ours_movie)
            ours.append(cores)
            rates.append(packets / duration)
            waits.append(wait / duration)
            growth.append(last - first)
            theirs.append(measure(
                ["ffmpeg", "-v", "error", "-y", "-f", "x11grab", "-framerate", "30", "-video_size", "1920x1080",
                 "-i", environment["DISPLAY"], "-c:v", "libx264", "-preset", "ultrafast", theirs_movie],
                environment, seconds)[0])
        shown.kill()
        server.kill()
        server.wait()
    ours_cores, theirs_cores = statistics.median(ours), statistics.median(theirs)
    print(f"{scene}: vornic {ours_cores:.3f} cores while recording, ffmpeg ultrafast {theirs_cores:.3f}: "
          f"ratio {ours_cores / theirs_cores:.2f}; {statistics.median(rates):.1f} frames a second kept, "
          f"wait {statistics.median(waits):.2f} of the length, memory {statistics.median(growth):+.1f} MiB in "
          f"{seconds:g} s", flush=True)


def main():
    program, show_scene = sys.argv[1:3]
    seconds = float(sys.argv[3]) if len(sys.argv) > 3 else 10
    turns = int(sys.argv[4]) if len(sys.argv) > 4 else 3
    for scene in ["scroll", "video", "desktop", "text"]:
        compare(scene, program, show_scene, seconds, turns)


if __name__ == "__main__":
    main()

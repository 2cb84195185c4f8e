#!/usr/bin/python3
"""check_pause.py PROGRAM bar|tray: a person pauses a recording and goes on with it, with the bar or the icon in the
tray, the key, the command line and a signal, and finds nothing of the pauses in the movie."""
import os
import signal
import subprocess
import sys
import time

from check_workflow import tray_icon
from desktop_session import Program, end, key, run_inside, wait, xdotool

FOLDER = os.environ.get("VORNIC_TEST_SESSION", "")
MOVIE = FOLDER + "/movie.mp4"
PAUSE, RESUME = "Pause the recording", "Go on with the recording"
PAUSED_SECONDS = 2.0


class Bar:
    """Where no tray is."""

    def __init__(self, program):
        self.program = program

    def is_paused(self, paused):
        return self.program.find(RESUME if paused else PAUSE, "push button")

    def press(self, paused):
        self.program.click(RESUME if paused else PAUSE, "push button")


class Tray:
    """Its menu, opened with the right button, which no screen reader is told of, and its picture."""

    def __init__(self, _):
        wait(tray_icon)

    def is_paused(self, paused):
        x, y = wait(tray_icon)  # the panel moves it until it has settled
        pixel = subprocess.run(["ffmpeg", "-v", "error", "-f", "x11grab", "-draw_mouse", "0", "-video_size", "2x2", "-i",
                                f"{os.environ['DISPLAY']}+{x - 6},{y}", "-frames:v", "1", "-f", "rawvideo", "-pix_fmt",
                                "rgb24", "-"], capture_output=True, check=True).stdout[:3]
        return pixel[0] > pixel[1] + 60 if not paused else max(pixel) - min(pixel) < 10 and pixel[0] > 80

    def press(self, _):
        xdotool("mousemove", *wait(tray_icon), "click", 3)
        time.sleep(0.5)  # until the menu has the keyboard
        key("Down", "Return")
        xdotool("mousemove", 640, 300)


def ways(program, shown):
    """What a person can do, and what it is called."""
    return (
        ("the " + shown.__class__.__name__.lower(), shown.press),
        ("the key", lambda _: key("ctrl+alt+p")),
        ("the command line", lambda _: subprocess.run([sys.argv[1], "--pause"], check=True, timeout=20)),
        ("a signal", lambda _: program.process.send_signal(signal.SIGUSR1)),
    )


def movie_seconds():
    return float(subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of",
                                 "default=nokey=1:noprint_wrappers=1", MOVIE], capture_output=True, text=True,
                                check=True).stdout)


def main():
    way = sys.argv[2]
    run_inside(services=("openbox",) + (("tint2",) if way == "tray" else ()))
    refused = subprocess.run([sys.argv[1], "--pause"], capture_output=True, text=True, check=False, timeout=20)
    assert refused.returncode == 1 and "not recording" in refused.stderr, refused
    if way == "tray":
        wait(lambda: xdotool("search", "--onlyvisible", "--class", "tint2"))
    program = Program(sys.argv[1])
    subprocess.run([sys.argv[1], "--record=rectangle", MOVIE], check=True, timeout=20)
    begun = time.monotonic()
    shown = Tray(program) if way == "tray" else Bar(program)
    wait(lambda: shown.is_paused(False))
    # Before the first picture there is nothing to pause.
    wait(lambda: subprocess.run([sys.argv[1], "--pause"], check=False, timeout=20, stderr=subprocess.DEVNULL).returncode == 0)
    paused = 0.0
    shortest = 0.0  # seconds that were surely paused
    for name, use in ways(program, shown):
        print("ended by", name, flush=True)
        wait(lambda: shown.is_paused(True))
        since = time.monotonic()
        time.sleep(PAUSED_SECONDS)
        shortest += time.monotonic() - since
        use(True)
        wait(lambda: shown.is_paused(False))
        print("begun by", name, flush=True)
        use(False)
        wait(lambda: shown.is_paused(True))
    shown.press(True)
    wait(lambda: shown.is_paused(False))
    subprocess.run([sys.argv[1], "--stop"], check=True, timeout=20)
    wait(lambda: os.path.exists(MOVIE), 60)
    ended = time.monotonic()
    seconds = movie_seconds()
    assert 0.1 < seconds < ended - begun - shortest, (seconds, ended - begun, shortest)
    end(program.process)


if __name__ == "__main__":
    main()

#!/usr/bin/python3
"""tools/take-pictures.py BUILD: photographs the program on a private desktop, for the help and to look at.

Makes docs/pictures/help-window.png, help-overlay.png, and tray.png (a panel with the icon that stops a recording,
and its menu). BUILD is a build folder with the program.
"""
import os
import pathlib
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
sys.path.insert(0, str(ROOT / "tests" / "workflow"))

from check_workflow import tray_icon  # noqa: E402
from desktop_session import Program, end, key, run_inside, wait, xdotool  # noqa: E402

PICTURES = ROOT / "docs" / "pictures"


def shoot(name, x, y, width, height):
    time.sleep(0.5)
    subprocess.run(["ffmpeg", "-v", "error", "-f", "x11grab", "-draw_mouse", "0", "-video_size", f"{width}x{height}",
                    "-i", f"{os.environ['DISPLAY']}+{x},{y}", "-frames:v", "1", "-y", str(PICTURES / name)], check=True)


def geometry(window):
    words = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", window).splitlines())
    return [int(words[name]) for name in ("X", "Y", "WIDTH", "HEIGHT")]


def main():
    run_inside(size="1440x900", services=("openbox", "tint2", "sound"))
    started = []
    try:
        xdotool("search", "--name", ".")  # the server answers
        subprocess.run(["xsetroot", "-solid", "#3b5a75"], check=True)
        manager = subprocess.Popen(["picom", "--backend", "xrender", "--config", "/dev/null"],
                                   stderr=subprocess.DEVNULL)
        started.append(manager)
        terminal = subprocess.Popen(["xterm", "-fa", "DejaVu Sans Mono", "-fs", "11", "-geometry", "84x24+330+210", "-e",
                                     "sh", "-c", f"fold -s -w 82 '{ROOT}/README.md' | head -20; sleep 1000"])
        started.append(terminal)
        time.sleep(1.5)
        program = Program(str(pathlib.Path(sys.argv[1]) / "src/app/vornic"))
        started.append(program.process)
        window = xdotool("search", "--onlyvisible", "--name", "^Vornic$").split()[-1]
        xdotool("windowmove", "--sync", window, 300, 150)
        time.sleep(0.5)
        x, y, width, height = geometry(window)
        # What is told of a window under a window manager counts its decoration twice.
        shoot("help-window.png", x - 2, y - 41, width + 2, height + 22)
        key("alt+s", "alt+l")
        xdotool("windowmove", "--sync", window, 700, 850)
        shoot("help-overlay.png", 280, 110, 900, 690)
        key("alt+r")
        program.wait_for("Save the recording as", "dialog", "file chooser")
        time.sleep(0.5)
        key("Return")
        program.wait_for("Start recording", "push button")
        time.sleep(0.5)
        key("Return")
        icon = wait(tray_icon)
        xdotool("mousemove", *icon)
        time.sleep(2.5)
        xdotool("click", 3)
        shoot("tray.png", 1040, 660, 400, 240)
        key("Escape")
        xdotool("mousemove", *icon, "click", 1)
        time.sleep(3)
    finally:
        for process in reversed(started):
            end(process)


if __name__ == "__main__":
    main()

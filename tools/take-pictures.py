#!/usr/bin/python3
"""tools/take-pictures.py BUILD [meter]: photographs the program on a private desktop, for the help and to look at.

Makes docs/pictures/help-window.png, help-overlay.png, help-meter.png (the level meter: silent, speaking, loud and
clipping), and tray.png (a panel with the icon that stops a recording, and its menu); with "meter" only that of the
meter. BUILD is a build folder with the program and vornic_play_sound.
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


def add_microphone():
    """What is played into the output "feed" is what it hears."""
    for module in [("module-null-sink", "sink_name=feed", "rate=48000"),
                   ("module-remap-source", "source_name=microphone", "master=feed.monitor",
                    "source_properties=device.description=Microphone")]:
        subprocess.run(["pactl", "load-module", *module], check=True, stdout=subprocess.DEVNULL)
    subprocess.run(["pactl", "set-default-source", "microphone"], check=True)


def shoot_meter(program, build):
    """Four states, one beneath the other; Sound is switched off again behind it."""
    program.click("Sound", "check box")
    meter = program.wait_for("Level of the audio input", "progress bar")
    box = meter.get_extents(program.atspi.CoordType.SCREEN)
    states = []
    for amplitude in [None, 0.12, 0.5, 1.0]:
        player = None
        if amplitude:
            player = subprocess.Popen([build / "tests/support/vornic_play_sound", "tone", "60", "440", str(amplitude)],
                                      env=dict(os.environ, PULSE_SINK="feed"), stdout=subprocess.PIPE)
            player.stdout.readline()
            time.sleep(2)  # the number is of the last second and a half
        states.append(f"help-meter-{len(states)}.png")
        shoot(states[-1], box.x - 96, box.y - 40, 320, 60)
        if player:
            end(player)
    inputs = [word for name in states for word in ("-i", str(PICTURES / name))]
    subprocess.run(["ffmpeg", "-v", "error", *inputs, "-filter_complex", f"vstack={len(states)}", "-y",
                    str(PICTURES / "help-meter.png")], check=True)
    for name in states:
        (PICTURES / name).unlink()
    program.click("Sound", "check box")


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
        add_microphone()
        build = pathlib.Path(sys.argv[1]).resolve()
        program = Program(str(build / "src/app/vornic"))
        started.append(program.process)
        window = xdotool("search", "--onlyvisible", "--name", "^Vornic$").split()[-1]
        xdotool("windowmove", "--sync", window, 300, 150)
        time.sleep(0.5)
        if sys.argv[2:] == ["meter"]:
            shoot_meter(program, build)
            return
        x, y, width, height = geometry(window)
        # What is told of a window under a window manager counts its decoration twice.
        shoot("help-window.png", x - 2, y - 41, width + 2, height + 22)
        shoot_meter(program, build)
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

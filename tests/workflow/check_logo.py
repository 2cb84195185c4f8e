#!/usr/bin/python3
"""check_logo.py PROGRAM: a picture at Left 0 and Bottom 0 stands in the corner of the movie, and nothing of it is lost."""
import glob
import os
import subprocess
import sys
import time

from desktop_session import Program, accept_panel, active_window_but, key, run_inside, type_text, wait, xdotool

FOLDER = os.environ.get("VORNIC_TEST_SESSION", "")
LOGO = FOLDER + "/logo.png"
WIDTH, HEIGHT = 800, 600  # of the rectangle of a first start
LOGO_WIDTH, LOGO_HEIGHT = 64, 48
SHORTCUT = "ctrl+alt+r"


def ffmpeg(*arguments):
    return subprocess.run(["ffmpeg", "-v", "error", *arguments], capture_output=True, check=True).stdout


def choose_picture(program):
    """On a screen that is black."""
    ffmpeg("-f", "lavfi", "-i", f"color=white:s={LOGO_WIDTH}x{LOGO_HEIGHT}", "-frames:v", "1", LOGO)
    window = active_window_but()
    program.click("Selected rectangle", "radio button")
    program.click("Logo", "check box")
    program.click("Picture", "radio button")
    program.click("Choose a picture…", "push button")
    program.wait_for("Choose the logo's picture", "dialog", "file chooser")
    panel = active_window_but(window)
    type_text(LOGO)
    accept_panel(panel)


def enter(program, field, number):
    program.click(field, "spin button")
    key("ctrl+a")
    type_text(str(number))
    key("Return")
    wait(lambda: program.value(field) == number)


def record(program):
    xdotool("mousemove", 5, 5, "key", SHORTCUT)
    program.wait_for("Stop the recording", "push button")
    time.sleep(0.5)  # what is recorded
    xdotool("key", SHORTCUT)
    return wait(lambda: glob.glob(os.environ["HOME"] + "/*.mp4"), 40)[0]


def white_box(movie):
    """Left, top, right, bottom of what is white in the first frame."""
    grey = ffmpeg("-i", movie, "-frames:v", "1", "-f", "rawvideo", "-pix_fmt", "gray", "-")
    white = [divmod(index, WIDTH) for index, level in enumerate(grey) if level > 128]
    rows, columns = [row for row, _ in white], [column for _, column in white]
    return min(columns), min(rows), max(columns) + 1, max(rows) + 1


def main():
    run_inside(services=("openbox",))
    program = Program(sys.argv[1])
    try:
        wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
        choose_picture(program)
        for field in ("Left edge of the logo, in pixels", "Bottom edge of the logo, in pixels"):
            enter(program, field, 0)
        box = white_box(record(program))
        assert box == (0, HEIGHT - LOGO_HEIGHT, LOGO_WIDTH, HEIGHT), box
        print("the logo is whole in the movie")
    finally:
        program.kill()


if __name__ == "__main__":
    main()

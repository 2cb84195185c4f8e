#!/usr/bin/python3
"""check_workflow.py PROGRAM PLAY_SOUND mouse|keyboard|tray: a person's whole way, from the first start to the movie
and to the settings that are back at the second start."""
import json
import os
import subprocess
import sys
import time

from desktop_session import Program, accept_panel, active_window_but, end, key, run_inside, type_text, wait, xdotool

FOLDER = os.environ.get("VORNIC_TEST_SESSION", "")
REGION = (340, 160, 700, 540)  # pixels from the upper left; the screen has 1280 x 800
MOVIE = FOLDER + "/Untitled.mp4"


def choose_with_mouse(program):
    program.click("Selected rectangle", "radio button")
    # Beside the upper left of the rectangle, wherever the window has gone to make room for it.
    xdotool("windowmove", "--sync", xdotool("search", "--onlyvisible", "--name", "^Vornic$").split()[-1], 420, 40)
    wait(lambda: program.place(program.find("Record", "push button"))[0] > 590)
    # The rectangle of a first start is 800 x 600 in the middle; its upper left handle is 4 pixels outside.
    xdotool("mousemove", 236, 96, "mousedown", 1)
    for step in range(1, 11):
        xdotool("mousemove", 236 + 10 * step, 96 + 6 * step)
        time.sleep(0.02)
    xdotool("mouseup", 1)
    program.click("Logo", "check box")
    program.click("Quality", "combo box")
    x, y = program.place(program.find("Quality", "combo box"))
    xdotool("mousemove", x, y + 14 + 33, "click", 1)  # the second of items 22 high, below the list
    wait(lambda: program.text("Quality", "combo box") == "Medium")
    program.click("Sound", "check box")
    xdotool("mousemove", 700, 300)
    assert program.value("Width of the rectangle, in pixels") == REGION[2], program.value("Width of the rectangle, in pixels")
    program.click("Record", "push button")
    program.click("Save", "push button")
    program.click("Start recording", "push button")


def choose_with_keyboard(program):
    key("alt+s")
    for mnemonic, number in (("alt+e", 340), ("alt+b", 100), ("alt+w", 700), ("alt+g", 540)):
        key(mnemonic, "ctrl+a")
        type_text(str(number))
        key("Return")
    window = active_window_but()
    key("alt+l", "alt+q", "Down", "alt+u", "alt+r")
    program.wait_for("Save the recording as", "dialog", "file chooser")
    panel = active_window_but(window)
    accept_panel(panel)
    program.wait_for("Start recording", "push button")
    active_window_but(window, panel)
    key("Return")


def stop_with_mouse(program):
    xdotool("mousemove", 100, 100)
    program.click("Stop the recording", "push button")


def stop_with_keyboard(program):
    program.wait_for("Stop the recording", "push button")

    def is_reached():
        key("alt+Tab")
        return "Stop" in xdotool("getactivewindow", "getwindowname")
    wait(is_reached)
    time.sleep(0.6)  # keys that are typed on while the focus comes to it do not count
    key("space")


def tray_icon():
    """The icon that the panel has taken in."""
    tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=True).stdout
    for line in tree.splitlines():
        if "vornic" in line and "+" in line and " 1x1" not in line:
            size = line.split(")")[-1].split()[0].split("+")[0].split("x")
            if 8 <= int(size[0]) <= 48 and 8 <= int(size[1]) <= 48:
                corner = line.split()[-1].split("+")
                return int(corner[1]) + int(size[0]) // 2, int(corner[2]) + int(size[1]) // 2
    return None


def stop_with_tray(program):
    assert not program.find("Stop the recording", "push button")  # no bar beside it
    x, y = wait(tray_icon)
    xdotool("mousemove", x, y, "click", 1)


def probe(*arguments):
    return json.loads(subprocess.run(["ffprobe", "-v", "error", "-of", "json", *arguments, MOVIE], capture_output=True,
                                     text=True, check=True).stdout)


def check_movie():
    streams = {stream["codec_type"]: stream for stream in probe("-show_streams")["streams"]}
    video, audio = streams["video"], streams["audio"]
    assert (video["width"], video["height"]) == REGION[2:], (video["width"], video["height"])
    seconds = float(video["duration"])
    assert 0.5 < seconds < 20, seconds  # on a busy machine the recording begins late, and is stopped all the same
    rate = int(video["nb_frames"]) / seconds
    assert 1 < rate <= 20.5, rate  # "Medium" takes at most 20; of those that are equal, two are stored
    assert abs(float(audio["duration"]) - seconds) < 0.25
    picture = subprocess.run(["ffmpeg", "-v", "error", "-ss", str(seconds / 2), "-i", MOVIE, "-frames:v", "1", "-f", "rawvideo",
                              "-pix_fmt", "rgb24", "-"], capture_output=True, check=True).stdout
    green = 0
    for y in range(REGION[3] - 130, REGION[3] - 85):  # the text's line, 100 above the lower edge of the overlay
        for x in range(130, 500):
            red, greenness, blue = picture[3 * (y * REGION[2] + x):][:3]
            green += red < 100 and (greenness > 120 or blue > 120)  # filled with green, outlined in blue
    assert green > 50, green
    level = subprocess.run(["ffmpeg", "-v", "info", "-i", MOVIE, "-af", "volumedetect", "-vn", "-f", "null", "-"],
                           capture_output=True, text=True, check=True).stderr
    loudest = float(level.split("max_volume:")[1].split()[0])
    assert loudest > -20, loudest


def check_settings(program):
    assert program.is_checked("Selected rectangle", "radio button")
    assert program.is_checked("Logo", "check box")
    assert program.is_checked("Sound", "check box")
    assert program.text("Quality", "combo box") == "Medium", program.text("Quality", "combo box")
    values = [program.value(name) for name in ("Left edge of the rectangle, in pixels",
                                               "Bottom edge of the rectangle, in pixels from the bottom of the display",
                                               "Width of the rectangle, in pixels", "Height of the rectangle, in pixels")]
    assert values == [REGION[0], 800 - REGION[1] - REGION[3], REGION[2], REGION[3]], values


def main():
    way = sys.argv[3]
    run_inside(services=("openbox", "sound") + (("tint2",) if way == "tray" else ()))
    player = subprocess.Popen([sys.argv[2], "tone", "100000", "440", "0.3"], stdout=subprocess.PIPE)
    programs = []
    try:
        assert player.stdout.readline() == b"playing\n"
        program = Program(sys.argv[1])
        programs.append(program)
        wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
        {"keyboard": choose_with_keyboard}.get(way, choose_with_mouse)(program)
        time.sleep(2.5)  # what is recorded
        {"keyboard": stop_with_keyboard, "mouse": stop_with_mouse, "tray": stop_with_tray}[way](program)
        wait(lambda: os.path.exists(MOVIE), 40)
        check_movie()
        program.wait_for("Record", "push button")
        wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
        if way == "keyboard":
            key("ctrl+q")
        else:
            program.click("Vornic", "menu item", "menu")
            program.click("Quit Vornic", "menu item")
        assert program.wait_for_end() == 0
        second = Program(sys.argv[1])
        programs.append(second)
        check_settings(second)
        print("recorded, and all settings are back")
    except AssertionError:
        subprocess.run(["ffmpeg", "-v", "error", "-f", "x11grab", "-video_size", "1280x800", "-i", os.environ["DISPLAY"],
                        "-frames:v", "1", "-y", os.environ.get("VORNIC_TEST_SHOT", "/dev/null") or "/dev/null"],
                       check=False)
        raise
    finally:
        for program in programs:
            program.kill()
        end(player)


if __name__ == "__main__":
    main()

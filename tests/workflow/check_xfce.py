#!/usr/bin/python3
"""check_xfce.py PROGRAM panel|bar|folder|question: the program under xfwm4, which composites, with a panel at the lower
edge that lists the windows. Nothing of ours is in the way of another program, and what a person needs next is in front.
"""
import glob
import os
import pathlib
import subprocess
import sys
import time

from desktop_session import Program, active_window_but, end, key, run_inside, type_text, wait, xdotool

FOLDER = os.environ.get("VORNIC_TEST_SESSION", "")
TYPED = FOLDER + "/typed"
PANEL_TOP = 769
SHORTCUT = "ctrl+alt+r"
OVERLAY = "^Recorded rectangle$"
BAR = "^Stop recording$"


class Stage:
    """The program, and terminals that stand for other programs."""

    def __init__(self):
        self.terminals = []
        self.program = Program(sys.argv[1])
        self.window = wait_for_window("^Vornic$")

    def open_terminal(self, title, *options, command="exec sleep 1000"):
        """Its window, once the window manager has given it the keyboard."""
        self.terminals.append(subprocess.Popen(["xterm", "-T", title, *options, "-e", "sh", "-c", command],
                                               stderr=subprocess.DEVNULL))
        window = wait_for_window(f"^{title}$")
        wait(lambda: xdotool("getactivewindow") == window)
        return window

    def click_in_panel(self, title):
        x, y = self.program.place(self.program.wait_for(title, "toggle button"))
        assert y > PANEL_TOP, "that is not in the panel"
        click(x, y)

    def close(self):
        self.program.kill()
        for terminal in self.terminals:
            end(terminal)


def windows(title):
    return xdotool("search", "--onlyvisible", "--name", title).split()


def wait_for_window(title):
    def there():
        return windows(title)
    there.what = "the window " + title
    return wait(there)[-1]


def wait_until_active(window):
    def is_active():
        return xdotool("getactivewindow") == window
    is_active.what = "the keyboard in " + xdotool("getwindowname", window)
    wait(is_active)


def box(window):
    """Left, top, right, bottom."""
    told = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", window).splitlines())
    left, top, width, height = (int(told[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
    return left, top, left + width, top + height


def middle(window):
    left, top, right, bottom = box(window)
    return (left + right) // 2, (top + bottom) // 2


def overlap(one, other):
    return one[0] < other[2] and other[0] < one[2] and one[1] < other[3] and other[1] < one[3]


def click(x, y):
    xdotool("mousemove", x, y, "click", 1)


def wait_until_in_front(window):
    """A click in its middle would be its own."""
    def is_in_front():
        xdotool("mousemove", *middle(window))
        told = dict(line.split("=") for line in xdotool("getmouselocation", "--shell").splitlines())
        return told["WINDOW"] == window
    is_in_front.what = xdotool("getwindowname", window) + " in front"
    wait(is_in_front)


def is_above(window, other):
    """In the stack of all windows, those that no window manager knows included."""
    tree = subprocess.run(["xwininfo", "-root", "-tree"], capture_output=True, text=True, check=True).stdout
    return tree.index(hex(int(window)) + " ") < tree.index(hex(int(other)) + " ")


def movies():
    return glob.glob(os.environ["HOME"] + "/*.mp4")


def wait_for_movies(number):
    wait(lambda: len(movies()) == number, 40)


def check_panel(stage):
    """The overlay covers the screen while a logo is on and the whole display is recorded."""
    other = stage.open_terminal("other")
    stage.program.click("Logo", "check box")
    wait_for_window(OVERLAY)
    stage.click_in_panel("other")
    wait_until_active(other)
    xdotool("windowminimize", stage.window)
    wait(lambda: not windows(OVERLAY))
    stage.click_in_panel("Vornic")
    wait_until_active(stage.window)
    wait_for_window(OVERLAY)


def check_bar(stage):
    """Who works keeps the keyboard when a recording starts; who sees only a full-screen program can stop it."""
    stage.program.click("Selected rectangle", "radio button")
    writer = stage.open_terminal("writer", command=f"exec cat >{TYPED}")
    xdotool("key", SHORTCUT)
    wait_for_window(BAR)
    wait_until_active(writer)
    xdotool("type", "on and on\n")
    wait(lambda: pathlib.Path(TYPED).read_text(encoding="ascii") == "on and on\n")
    assert windows(BAR) and not movies(), "the keys have stopped it"
    player = stage.open_terminal("player", "-fullscreen")
    wait(lambda: box(player) == (0, 0, 1280, 800))
    wait(lambda: is_above(wait_for_window(BAR), player))
    xdotool("windowraise", player)
    wait(lambda: is_above(wait_for_window(BAR), player))
    click(*middle(wait_for_window(BAR)))
    wait_for_movies(1)


def check_folder(stage):
    """What shows the movie comes where window and overlay stood."""
    stage.program.click("Selected rectangle", "radio button")
    wait_for_window(OVERLAY)
    with open(FOLDER + "/bin/xdg-open", "w", encoding="ascii") as file:
        file.write("#!/bin/sh\nxterm -T folder -geometry 60x20+250+150 -e sleep 1000 &\n")
    xdotool("key", SHORTCUT)
    wait_for_window(BAR)
    time.sleep(0.5)  # what is recorded
    xdotool("key", SHORTCUT)
    wait_for_movies(1)
    folder = wait_for_window("^folder$")
    wait_until_active(folder)
    wait_until_in_front(folder)
    assert not windows(OVERLAY)
    stage.click_in_panel("Vornic")
    wait_until_active(stage.window)
    stage.program.click("Selected rectangle", "radio button")
    wait_for_window(OVERLAY)


def check_question(stage):
    """Whether to quit is asked beside what is recorded, its frame included, where there is room."""
    stage.program.click("Selected rectangle", "radio button")
    for mnemonic, number in (("alt+e", 640), ("alt+w", 500)):
        key(mnemonic, "ctrl+a")
        type_text(str(number))
        key("Return")
    xdotool("key", SHORTCUT)
    wait_for_window(BAR)
    time.sleep(0.5)  # what is recorded
    stage.click_in_panel("Vornic")
    wait_until_active(stage.window)
    xdotool("key", "alt+F4")
    question = active_window_but(stage.window)
    wait_until_in_front(question)
    asked, recorded = box(question), box(wait_for_window(OVERLAY))
    assert not overlap(asked, recorded), (asked, recorded)
    stage.program.click("Yes", "push button")
    assert stage.program.wait_for_end() == 0
    wait_for_movies(1)


def main():
    run_inside(services=("xfwm4", "xfce4-panel"))
    stage = Stage()
    try:
        wait_until_active(stage.window)
        checks = {"panel": check_panel, "bar": check_bar, "folder": check_folder, "question": check_question}
        checks[sys.argv[2]](stage)
        print("all was where it belongs")
    except AssertionError:
        subprocess.run(["ffmpeg", "-v", "error", "-f", "x11grab", "-video_size", "1280x800", "-i", os.environ["DISPLAY"],
                        "-frames:v", "1", "-y", os.environ.get("VORNIC_TEST_SHOT", "/dev/null")], check=False)
        raise
    finally:
        stage.close()


if __name__ == "__main__":
    main()

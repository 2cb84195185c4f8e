#!/usr/bin/python3
"""check_placement.py PROGRAM: the window gets out of the way of the rectangle that it switches on, where there is room,
tells where there is none, and does so at the next start, too."""
import sys

from desktop_session import Program, key, run_inside, type_text, wait, xdotool

OVERLAY_MARGIN = 8
FIELDS = ("Left edge of the rectangle, in pixels",
          "Top edge of the rectangle, in pixels from the top of the display",
          "Width of the rectangle, in pixels", "Height of the rectangle, in pixels")


def window_box():
    """The window with its frame: left, top, right, bottom."""
    window = xdotool("search", "--onlyvisible", "--name", "^Vornic$").split()[-1]
    lines = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", window).split("\n"))
    left, top, width, height = (int(lines[name]) for name in ("X", "Y", "WIDTH", "HEIGHT"))
    return left, top - 20, left + width, top + height  # a title bar at least


def rectangle(program):
    left, top, width, height = (program.value(field) for field in FIELDS)
    return (left - OVERLAY_MARGIN, top - OVERLAY_MARGIN, left + width + OVERLAY_MARGIN, top + height + OVERLAY_MARGIN)


def overlap(one, other):
    return one[0] < other[2] and other[0] < one[2] and one[1] < other[3] and other[1] < one[3]


def covers_rectangle(program):
    return overlap(window_box(), rectangle(program))


def enter(mnemonic, number):
    key(mnemonic, "ctrl+a")
    type_text(str(number))
    key("Return")


def says_that_it_covers(program):
    return program.find("This window covers part of the rectangle; minimise it to see all of it.", "label")


def main():
    run_inside(size="1920x1080", services=("openbox",))
    program = Program(sys.argv[1])
    try:
        wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
        # 800 x 600 in the middle: the window has nowhere to go.
        program.click("Selected rectangle", "radio button")
        wait(lambda: says_that_it_covers(program))
        for mnemonic, number in (("alt+e", 0), ("alt+w", 700), ("alt+b", 200)):
            enter(mnemonic, number)
        program.click("Full display", "radio button")
        wait(lambda: not says_that_it_covers(program))
        xdotool("windowmove", "--sync", xdotool("search", "--onlyvisible", "--name", "^Vornic$").split()[-1], 100, 100)
        wait(lambda: covers_rectangle(program))
        program.click("Selected rectangle", "radio button")
        wait(lambda: not covers_rectangle(program))
        assert not says_that_it_covers(program)
        key("ctrl+q")
        assert program.wait_for_end() == 0
        # The window manager places it over the rectangle, in the corner of an empty desktop.
        program = Program(sys.argv[1])
        assert program.is_checked("Selected rectangle", "radio button")
        wait(lambda: not covers_rectangle(program))
        assert not says_that_it_covers(program)
        print("the window was not in the way")
    finally:
        program.kill()


if __name__ == "__main__":
    main()

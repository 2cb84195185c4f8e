#!/usr/bin/env python3
"""second_start.py: somebody starts the program again while it records. Its window must not come into the movie; what stops
the recording is shown instead.

Needs what lost_display.py needs, and xdotool. Exit status: 0 all was as it must be, 1 something was not.
"""
import os
import signal
import sys

from fault_stage import Told, expect, run_all, wait_until


def a_second_start_while_recording(stage):
    stage.run()
    stage.main_window = stage.wait_for_window("^Vornic$")
    stage.hand_over("--record=full", stage.movie)
    stage.wait_for_pictures()
    bar = stage.wait_for_window("^Stop recording$")
    wait_until(lambda: bar not in stage.windows(), "the bar hid itself", poll=0.05)
    stage.xdotool("mousemove", "160", "90")  # where it calls no bar
    stage.hand_over()
    # It is shown because of the second start: whatever that does to the main window is done before.
    stage.wait_for_window("^Stop recording$")
    expect(stage.main_window not in stage.windows(), "the main window is in the movie")
    stage.hand_over("--stop")
    wait_until(lambda: os.path.exists(stage.movie) and not stage.unfinished(), "the movie was made")
    wait_until(lambda: stage.main_window in stage.windows(), "the main window came back", poll=0.05)
    return Told("where it is stopped", "movie")


def a_stop_from_where_no_display_is(stage):
    """As by way of a terminal of another machine. What waits for no display cannot hang with one."""
    stage.record("--record=full", kilobytes=1)
    stage.environment.pop("DISPLAY")
    stage.hand_over("--pause")
    stage.hand_over("--pause")
    stage.hand_over("--stop")
    wait_until(lambda: os.path.exists(stage.movie) and not stage.unfinished(), "the movie was made")
    return Told("nothing", "movie")


def a_stop_while_the_program_hangs(stage):
    stage.record("--record=full", kilobytes=1)
    stage.program.send_signal(signal.SIGSTOP)
    for action in ("--stop", "--pause"):
        done = stage.second_start(action)
        expect(done.returncode == 1, f"{action} ended with {done.returncode}")
        expect("does not answer" in done.stdout.decode(), f"{action} said: {done.stdout.decode()}")
    stage.program.send_signal(signal.SIGCONT)
    # What was asked for before comes late, and is done.
    wait_until(lambda: os.path.exists(stage.movie) and not stage.unfinished(), "the movie was made")
    return Told("The Vornic that runs does not answer", "movie")


if __name__ == "__main__":
    sys.exit(run_all([a_second_start_while_recording, a_stop_from_where_no_display_is, a_stop_while_the_program_hangs],
                     __doc__))

#!/usr/bin/env python3
"""frozen_server.py: the X server, or the session bus, is stopped while it is recorded: it is there, and answers nothing.
The recording must end and become a movie by itself, or on a signal; none of it may be lost.

Needs what lost_display.py needs, and xdotool. Exit status: 0 all was as it must be, 1 something was not.
"""
import glob
import os
import signal
import sys
import time

from fault_stage import Told, crash, expect, run_all, wait_until

SOON = 15  # seconds: two until the server is given up, the rest for a busy machine


def freeze(process):
    process.send_signal(signal.SIGSTOP)
    return time.monotonic()


def wait_for_movie(stage, seconds=SOON):
    wait_until(lambda: os.path.exists(stage.movie) and not stage.unfinished(), "the movie was made", seconds)


def check_command(stage, moment, statuses=(0,)):
    status = stage.wait_for_end(SOON)
    expect(status in statuses, f"the program ended with {status}")
    return Told(stage.sentences(), stage.check_movie(moment, is_frozen=True))


def record_command(stage, *options):
    stage.record("record", "--ignore-low-space", *options)


def a_frozen_server_under_the_command(stage):
    record_command(stage)
    moment = freeze(stage.server)
    told = check_command(stage, moment, (0, 1))
    expect("The X server has not answered" in told.told, "nothing was said")
    return told


def a_frozen_server_and_a_signal(stage):
    record_command(stage)
    moment = freeze(stage.server)
    stage.program.send_signal(signal.SIGINT)
    return check_command(stage, moment, (0, 1))


def a_frozen_server_and_a_duration(stage):
    record_command(stage, "--duration", "3")
    moment = freeze(stage.server)
    return check_command(stage, moment, (0, 1, 3))  # 0 where a busy machine took the three seconds for the beginning


def a_server_that_freezes_for_a_while(stage):
    """The window lives on, and records again. Where the next picture is asked for only when the server answers again, the
    recording goes on until it is stopped."""
    stage.run()
    stage.main_window = stage.wait_for_window("^Vornic$")
    stage.hand_over("--record=full", stage.movie)
    stage.wait_for_pictures(200_000)
    freeze(stage.server)
    wait_until(lambda: "The X server has not answered" in stage.said(), "the server was given up", SOON)
    stage.server.send_signal(signal.SIGCONT)
    stage.stop_if_recording()
    wait_for_movie(stage)
    kept = f"movie of {len(crash.Movie(stage.movie).numbers)} frames"
    wait_until(lambda: stage.main_window in stage.windows(), "the main window came back", poll=0.05)
    first, stage.movie = stage.movie, stage.folder + "/second.mp4"
    stage.hand_over("--record=full", stage.movie)
    stage.wait_for_pictures(200_000)
    stage.hand_over("--stop")
    wait_for_movie(stage)
    stage.program.terminate()
    expect(stage.wait_for_end() == 0, "the program did not end well")
    return Told(stage.sentences(), f"{kept} ({os.path.basename(first)}), and a second movie")


def a_frozen_server_under_the_window(stage):
    """For good, and somebody asks the program to end."""
    stage.record()
    moment = freeze(stage.server)
    stage.program.terminate()
    status = stage.wait_for_end(SOON + 15)
    expect(status in (0, 1), f"the program ended with {status}")
    wait_for_movie(stage)
    expect(stage.options_are_stored(), "the options are not stored")
    return Told(stage.sentences(), stage.check_movie(moment, is_frozen=True))


def rests(pid):
    """The main thread has done nothing for a third of a second."""
    def times_waited():
        with open(f"/proc/{pid}/task/{pid}/status", encoding="ascii") as file:
            return next(line for line in file if line.startswith("voluntary_ctxt_switches"))
    before = times_waited()
    time.sleep(0.3)
    return times_waited() == before


def a_frozen_server_under_a_window_that_does_nothing(stage):
    stage.run()
    stage.wait_for_window("^Vornic$")
    wait_until(lambda: rests(stage.program.pid), "the window is at rest")
    freeze(stage.server)
    stage.program.terminate()
    expect(stage.wait_for_end(SOON) == 0, "the program did not end well")
    expect(stage.options_are_stored(), "the options are not stored")
    expect("ten seconds" not in stage.said(), "the server was waited for")
    return Told(stage.sentences(), "options")


def waits_for_server(pid):
    """The main thread is in a system call that waits for one descriptor, or for another thread that does. In its own loop
    it waits for more."""
    with open(f"/proc/{pid}/syscall", encoding="ascii") as file:
        number, *arguments = file.read().split()
    return number == "202" or (number == "7" and int(arguments[1], 16) == 1)


def a_frozen_server_under_a_window_that_waits_for_it(stage):
    """It is told to come to the front first, for which the toolkit wants an answer."""
    stage.run()
    stage.wait_for_window("^Vornic$")
    freeze(stage.server)
    stage.start(["gdbus", "call", "--session", "--dest", "com.kavlor.vornic", "--object-path", "/com/kavlor/vornic",
                 "--method", "org.freedesktop.Application.Activate", "{}"])
    wait_until(lambda: waits_for_server(stage.program.pid), "the window waited for the server")
    stage.program.terminate()
    expect(stage.wait_for_end(SOON + 15) in (0, 1), "the program did not end well")
    expect(stage.options_are_stored(), "the options are not stored")
    return Told(stage.sentences(), "options")


def a_server_that_is_frozen_before(stage, *arguments):
    freeze(stage.server)
    stage.run(*arguments, stage.movie)
    expect(stage.wait_for_end(SOON) == 1, "the program did not end as one without a display")
    expect("Cannot connect to the X11 display" in stage.said(), "nothing was said")
    return Told(stage.sentences(), "nothing was begun")


def a_server_that_is_frozen_before_the_command(stage):
    return a_server_that_is_frozen_before(stage, "record", "--ignore-low-space")


def a_server_that_is_frozen_before_the_window(stage):
    return a_server_that_is_frozen_before(stage, "--record=full")


def end_with_frozen_bus(stage, signal_number):
    moment = time.monotonic()
    stage.program.send_signal(signal_number)
    status = stage.wait_for_end(SOON)
    expect(status == 0, f"the program ended with {status}")
    return Told(stage.sentences(), stage.check_movie(moment, is_frozen=True))


def a_frozen_bus_under_the_window(stage):
    stage.record()
    freeze(stage.bus)
    return end_with_frozen_bus(stage, signal.SIGTERM)


def a_bus_that_freezes_before_the_recording(stage):
    stage.run()
    stage.main_window = stage.wait_for_window("^Vornic$")
    freeze(stage.bus)
    stage.xdotool("key", "ctrl+alt+r")
    stage.wait_for_pictures(200_000)
    stage.program.send_signal(signal.SIGTERM)
    moment = time.monotonic()
    expect(stage.wait_for_end(SOON) == 0, "the program did not end well")
    stage.movie = glob.glob(stage.folder + "/Recording *.mp4")[0]
    return Told(stage.sentences(), stage.check_movie(moment))


def a_bus_that_is_frozen_before_the_command(stage):
    freeze(stage.bus)
    record_command(stage)
    return end_with_frozen_bus(stage, signal.SIGINT)


def a_bus_that_is_frozen_before_the_window(stage):
    freeze(stage.bus)
    stage.record()
    return end_with_frozen_bus(stage, signal.SIGTERM)


if __name__ == "__main__":
    # Those that wait longest begin first.
    sys.exit(run_all([a_frozen_server_under_a_window_that_waits_for_it, a_frozen_server_under_the_window,
                      a_server_that_freezes_for_a_while, a_frozen_server_under_a_window_that_does_nothing,
                      a_frozen_server_under_the_command, a_frozen_server_and_a_signal, a_frozen_server_and_a_duration,
                      a_server_that_is_frozen_before_the_command, a_server_that_is_frozen_before_the_window,
                      a_frozen_bus_under_the_window, a_bus_that_freezes_before_the_recording,
                      a_bus_that_is_frozen_before_the_command, a_bus_that_is_frozen_before_the_window],
                     __doc__, jobs=3))

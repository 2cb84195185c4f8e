#!/usr/bin/env python3
"""lost_display.py: the X server dies under the window. Whatever the window was doing, it must not crash, its options must
be stored, and what was recorded must become a movie.

Needs the built tree, Xvfb, openbox, dbus-daemon, ffmpeg. Exit status: 0 nothing was lost, 1 something was.
"""
import os
import sys
import time

from fault_stage import Told, expect, run_all, wait_until


def kill_server(stage):
    moment = time.monotonic()
    stage.server.kill()
    stage.server.wait()
    return moment


def check_end(stage, statuses=(1,)):
    status = stage.wait_for_end()
    expect(status in statuses, f"the program ended with {status}")
    expect(stage.options_are_stored(), "the options are not stored")


def check_recording(stage, end):
    """The window has gone, and the recording has become a movie all the same."""
    wait_until(lambda: os.path.exists(stage.movie) and not stage.unfinished(), "the movie was made")
    kept = stage.check_movie(end)
    expect(not stage.parts(), "half a movie is left: " + ", ".join(stage.parts()))
    return Told(stage.sentences(), kept)


def a_window_that_does_nothing(stage):
    stage.run()
    stage.wait_for_window("^Vornic$")
    kill_server(stage)
    check_end(stage)
    expect("The display is gone" in stage.said(), "nothing was said")
    return Told(stage.sentences(), "options")


def a_recording(stage):
    stage.record()
    end = kill_server(stage)
    check_end(stage)
    expect("The display is gone. The recording is kept" in stage.said(), "nothing was said")
    wait_until(lambda: "The display is gone" in stage.calls(), "a notification was sent")
    return check_recording(stage, end)


def stopped_recording(stage, has_come):
    """The server dies as soon as the recording that was stopped has come so far."""
    stage.record()
    stage.program.terminate()
    end = time.monotonic()
    wait_until(has_come, "the recording came to its moment", poll=0.001)
    kill_server(stage)
    check_end(stage, (0, 1))
    return check_recording(stage, end)


def a_recording_that_has_just_been_stopped(stage):
    return stopped_recording(stage, lambda: True)


def a_movie_that_is_written(stage):
    return stopped_recording(stage, lambda: stage.parts() or os.path.exists(stage.movie))


def a_movie_that_has_just_been_written(stage):
    return stopped_recording(stage, lambda: os.path.exists(stage.movie))


if __name__ == "__main__":
    sys.exit(run_all([a_window_that_does_nothing, a_recording, a_recording_that_has_just_been_stopped,
                      a_movie_that_is_written, a_movie_that_has_just_been_written], __doc__))

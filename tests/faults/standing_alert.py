#!/usr/bin/env python3
"""standing_alert.py: a signal comes while the window asks or tells something about a recording, and nobody is there to
answer. The program must end, and what was recorded must be a movie, or be kept.

Needs what lost_display.py needs, and xdotool. Exit status: 0 all was as it must be, 1 something was not.
"""
import os
import shutil
import signal
import sys

from fault_stage import Told, expect, run_all


def start(stage, limit=None):
    """A recording that was begun from the window, which is minimised now."""
    stage.run(limit=limit)
    stage.main_window = stage.wait_for_window("^Vornic$")
    os.mkdir(stage.folder + "/movies")
    stage.movie = stage.folder + "/movies/movie.mp4"
    stage.hand_over("--record=full", stage.movie)
    stage.wait_for_pictures()


def check_end(stage, signal_number):
    stage.program.send_signal(signal_number)
    status = stage.wait_for_end(20)
    expect(status == 0, f"the program ended with {status}")
    expect(stage.options_are_stored(), "the options are not stored")


def check_kept(stage):
    kept = stage.unfinished()
    expect(len(kept) == 1, "the recording is not kept")
    expect(f"The recording is kept: vornic recover {kept[0]}" in stage.said(), "it was not told what is kept")
    return Told(stage.sentences(), "the recording")


def the_disk_is_full(stage):
    start(stage, limit=400_000)
    stage.wait_for_question()
    check_end(stage, signal.SIGTERM)
    # A movie that needs less room than its spool is written all the same.
    if os.path.exists(stage.movie):
        return Told(stage.sentences(), "movie")
    return check_kept(stage)


def lose_folder(stage):
    """The window tells that the movie cannot be written."""
    start(stage)
    shutil.rmtree(stage.folder + "/movies")
    stage.hand_over("--stop")
    return stage.wait_for_question()


def the_movie_cannot_be_written(stage):
    lose_folder(stage)
    check_end(stage, signal.SIGHUP)
    return check_kept(stage)


def another_file_is_asked_for(stage):
    error = lose_folder(stage)
    stage.xdotool("windowfocus", "--sync", error)
    stage.xdotool("key", "Return")
    stage.wait_for_question(known=(error,))
    check_end(stage, signal.SIGINT)
    return check_kept(stage)


def the_name_is_asked_for(stage):
    """Whoever asks for another recording meanwhile is told that there is none."""
    stage.run("--record=full")
    stage.main_window = stage.wait_for_window("^Vornic$")
    stage.wait_for_question()
    for action in (["--record=rectangle", stage.movie], ["--toggle"]):
        done = stage.second_start(*action)
        expect(done.returncode == 1, f"{action} ended with {done.returncode}")
        expect("Vornic cannot record now" in done.stdout.decode(), f"{action} said: {done.stdout.decode()}")
    expect(not stage.spool(), "something is recorded")
    check_end(stage, signal.SIGTERM)
    return Told("Vornic cannot record now", "nothing was recorded")


if __name__ == "__main__":
    sys.exit(run_all([the_disk_is_full, the_movie_cannot_be_written, another_file_is_asked_for,
                      the_name_is_asked_for], __doc__))

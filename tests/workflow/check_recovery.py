#!/usr/bin/python3
"""check_recovery.py PROGRAM: the window is killed while it records; the next one tells of the recording, and its movie
is made with the keyboard. Another is killed, and deleted."""
import glob
import os
import subprocess
import sys

from desktop_session import Program, accept_panel, active_window_but, key, run_inside, wait, xdotool

FOLDER = os.environ.get("VORNIC_TEST_SESSION", "")
RECORDINGS = FOLDER + "/cache/com.kavlor.vornic/recordings/"


def record(path, movie):
    """Until the journal tells of a picture: it does so only once that is in the spool."""
    def size(name):
        return sum(map(os.path.getsize, glob.glob(RECORDINGS + "*/" + name)))
    subprocess.run([path, "--record=full", movie], check=True, timeout=30)
    wait(lambda: size("vornicvideo.tmp"))
    journal = size("journal")
    wait(lambda: size("journal") > journal)


def reach(program, name):
    """With the keyboard alone."""
    def is_reached():
        node = program.find(name, "push button")
        if node and "focused" in program.states(node):
            return True
        key("Tab")
        return False
    wait(is_reached, 40)


def told(program):
    """The sentence on recordings that were not finished, once it is shown."""
    def sentence():
        node = program.find("Make the movie", "push button")
        names = [label.get_name() for label in program_labels(node)] if node else []
        return next((name for name in names if name.endswith("was not finished.")), None)
    return wait(sentence)


def program_labels(button):
    line = button.get_parent()
    children = [line.get_child_at_index(index) for index in range(line.get_child_count())]
    return [child for child in children if child.get_role_name() == "label"]


def make_movie(program, movie):
    reach(program, "Make the movie")
    window = active_window_but()
    key("Return")
    program.wait_for("Save the recording as", "dialog", "file chooser")
    accept_panel(active_window_but(window))

    def is_made():
        return os.path.exists(movie)
    is_made.what = "the movie"
    wait(is_made)
    wait(lambda: not os.listdir(RECORDINGS))
    seconds = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", movie],
                             capture_output=True, text=True, check=True).stdout
    assert float(seconds) > 0, seconds
    wait(lambda: not program.find("Make the movie", "push button"))


def delete(program):
    told(program)
    window = active_window_but()
    reach(program, "Delete")
    key("space")
    wait(lambda: program.find("Delete the recording?", "label"))
    active_window_but(window)
    reach(program, "Delete")
    key("space")
    wait(lambda: not os.listdir(RECORDINGS))
    wait(lambda: not program.find("Make the movie", "push button"))


def start_after_killed(start, path):
    killed = start()
    record(path, f"{FOLDER}/{killed.process.pid}.mp4")
    killed.kill()
    return start()


def main():
    run_inside(services=("openbox",))
    path = sys.argv[1]
    programs = []

    def start():
        programs.append(Program(path))
        wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
        return programs[-1]
    try:
        program = start_after_killed(start, path)
        sentence = told(program)
        assert sentence.startswith("A recording of 0:") and "from today, " in sentence, sentence
        make_movie(program, f"{FOLDER}/{programs[0].process.pid}.mp4")
        program.kill()
        delete(start_after_killed(start, path))
        print("told, finished and deleted")
    finally:
        for program in programs:
            program.kill()


if __name__ == "__main__":
    main()

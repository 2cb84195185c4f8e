#!/usr/bin/python3
"""check_sound.py PROGRAM: sound that is not there holds nobody up. Without an input it cannot be switched on; where the
input goes, the start asks; where no sound comes from it, a click goes on without."""
import glob
import json
import os
import subprocess
import sys
import time

from check_desktop import Services
from desktop_session import Program, active_window_but, key, run_inside, wait, xdotool

SHORTCUT = "ctrl+alt+r"
OFFER = "No sound has come. Click to go on without sound."


def pactl(*arguments):
    subprocess.run(["pactl", *arguments], check=True, stdout=subprocess.DEVNULL)


def add_speakers():
    """What they play is an input."""
    pactl("load-module", "module-null-sink", "sink_name=speakers", "rate=48000")


def remove_speakers():
    pactl("unload-module", "module-null-sink")


def can_be_used(program, name, role):
    return "sensitive" in program.states(program.wait_for(name, role))


def movies():
    return sorted(glob.glob(os.environ["HOME"] + "/*.mp4"))


def spooled():
    """How many bytes of pictures the recording has on the disk."""
    return sum(map(os.path.getsize, glob.glob(os.environ["XDG_CACHE_HOME"] + "/*/recordings/*/vornicvideo.tmp")))


def stop_recording(program, number):
    """Once it has kept several pictures; the movie is the one of that number."""
    some = wait(spooled)
    wait(lambda: spooled() > some)
    xdotool("key", SHORTCUT)
    wait(lambda: len(movies()) == number, 40)
    program.wait_for("Record", "push button")


def go_on_without_sound(program):
    """A click on the offer, which stands at the right of the bar. The bar is found by the server's word: when it grows
    and moves at once, the toolkit may not hear of its place."""
    program.wait_for(OFFER, "push button")
    bar = xdotool("search", "--onlyvisible", "--name", "^Stop recording$").split()[-1]
    size = dict(line.split("=") for line in xdotool("getwindowgeometry", "--shell", bar).splitlines())
    xdotool("mousemove", "--window", bar, int(size["WIDTH"]) - 60, int(size["HEIGHT"]) // 2, "click", 1)
    wait(spooled)


def check_movie():
    """It has pictures and no sound."""
    streams = json.loads(subprocess.run(["ffprobe", "-v", "error", "-of", "json", "-show_streams", movies()[-1]],
                                        capture_output=True, text=True, check=True).stdout)["streams"]
    assert [stream["codec_type"] for stream in streams] == ["video"], streams
    assert float(streams[0]["duration"]) > 0.1, streams


def check_without_input(program):
    """The list says so, and the box follows what is there."""
    assert program.text("Audio input device", "combo box") == "No audio input found"
    assert not can_be_used(program, "Sound", "check box")
    program.click("Sound", "check box")
    assert not program.is_checked("Sound", "check box")
    add_speakers()
    wait(lambda: can_be_used(program, "Sound", "check box"))
    program.click("Sound", "check box")
    wait(lambda: program.is_checked("Sound", "check box"))


def check_question(program):
    """The input goes while sound is on: neither a recording without it, nor one that waits for it, begins unasked."""
    window = active_window_but()
    remove_speakers()
    wait(lambda: not can_be_used(program, "Sound", "check box"))
    xdotool("key", SHORTCUT)
    program.wait_for("Record without sound?", "label")
    active_window_but(window)
    key("Return")  # Cancel
    wait(lambda: not program.find("Record without sound?", "label"))
    assert not program.find("Stop the recording", "push button")
    xdotool("key", SHORTCUT)
    program.click("Record without sound", "push button")
    program.wait_for("Stop the recording", "push button")
    stop_recording(program, 1)
    check_movie()


def check_silent_input(program, services):
    """No sound comes from the input: after three seconds without, it is told, and a click goes on."""
    add_speakers()
    pactl("suspend-sink", "speakers", "1")
    wait(lambda: can_be_used(program, "Sound", "check box"))
    before = time.monotonic()
    xdotool("key", SHORTCUT)
    program.wait_for(OFFER, "push button")
    assert time.monotonic() - before > 2.5, "sound was not waited for"
    told = [arguments for name, arguments in services.calls if name == "Notify"]
    assert [(one[3], one[5][1]) for one in told if "sound" in one[3]] \
        == [("No sound has come yet", "Go on without sound")], told
    assert spooled() == 0, "pictures are kept while sound is waited for"
    go_on_without_sound(program)
    stop_recording(program, 2)
    check_movie()


def main():
    run_inside(services=("openbox", "sound"))
    import gi
    gi.require_version("Gio", "2.0")
    services = Services()
    remove_speakers()
    program = Program(sys.argv[1])
    try:
        wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
        check_without_input(program)
        check_question(program)
        check_silent_input(program, services)
        print("nobody was held up by sound that is not there")
    finally:
        program.kill()


if __name__ == "__main__":
    main()

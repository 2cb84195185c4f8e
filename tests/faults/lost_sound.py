#!/usr/bin/env python3
"""lost_sound.py: sound that never comes, an input that vanishes and comes back, and sound that is damaged on the disk,
under `vornic record --audio`. No picture may be lost, what there is of the sound must be in its place, and the user must
be told.

Needs the built tree, Xvfb, pulseaudio, pactl, ffmpeg. Prints a row for each fault: the fault, what was told, what was
kept. Exit status: 0 nothing was lost, 1 something was.
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "crash"))
from crash_stage import (Failure, Movie, Programs, Recorder, Stage, TREE, prepare_work, recover,  # noqa: E402
                         skip_without_tools, unfinished, wait_until)

SPEAKERS = ["load-module", "module-null-sink", "sink_name=speakers", "rate=48000",
            "sink_properties=device.description=Speakers"]


def pactl(stage, *arguments):
    done = subprocess.run(["pactl", *arguments], env=stage.environment, stdout=subprocess.PIPE,
                          stderr=subprocess.STDOUT, check=False)
    if done.returncode != 0:
        raise Failure("pactl: " + done.stdout.decode())
    return done.stdout.decode().strip()


def wait_for_words(recorder, words, times=1):
    recorder.wait_until(lambda: recorder.said().count(words) >= times, f"it said: {words}", poll=0.02)
    if recorder.said().count(words) < times:
        raise Failure("it never said: " + words)


def seconds_spooled(recorder):
    """Of sound that is in the spool's file for certain; it is silence, and so compressed to nearly nothing."""
    try:
        return os.path.getsize(recorder.folder() + "/vornicaudio.tmp")
    except (OSError, TypeError):
        return 0


def end(recorder):
    recorder.stop()
    recorder.process.wait(timeout=60)
    recorder.said()


def expect(condition, what):
    if not condition:
        raise Failure(what)


def sound_never_comes(programs, stage, work):
    pactl(stage, "suspend-sink", "speakers", "1")
    recorder = Recorder(programs, stage, work, options=["--audio=Monitor of Speakers", "--duration", "4"])
    recorder.process.wait(timeout=60)
    pactl(stage, "suspend-sink", "speakers", "0")
    # On a busy machine the recording ends before it gives up: then "No sound came" is told.
    expect("No sound " in recorder.said(), "nothing was told: " + recorder.said())
    movie = Movie(recorder.movie)
    expect(movie.numbers, "the movie has no picture")
    expect(movie.audio_seconds is None, "the movie has sound that never came")
    return "No sound has come", f"{len(movie.numbers)} pictures, no sound track"


def an_input_vanishes_and_comes_back(programs, stage, work):
    module = stage.speakers
    recorder = Recorder(programs, stage, work, options=["--audio=Monitor of Speakers"])
    wait_for_words(recorder, "00:00:00")
    pactl(stage, "unload-module", module)
    wait_for_words(recorder, "goes on without sound")
    stage.speakers = pactl(stage, *SPEAKERS)
    wait_for_words(recorder, "is recorded again")
    before = seconds_spooled(recorder)
    wait_until(lambda: seconds_spooled(recorder) > before + 2000, "sound was spooled again")
    end(recorder)
    movie = Movie(recorder.movie)
    expect(abs(movie.audio_seconds - movie.times[-1]) < 0.5,
           f"{movie.audio_seconds:.1f} s of sound for {movie.times[-1]:.1f} s of pictures")
    return ("gone, goes on; back, recorded again",
            f"{movie.times[-1]:.1f} s of pictures, sound to {movie.audio_seconds:.1f} s")


def sound_is_damaged_on_the_disk(programs, stage, work):
    recorder = Recorder(programs, stage, work, options=["--audio=Monitor of Speakers"])
    recorder.wait_until(lambda: recorder.has_pictures() and seconds_spooled(recorder) > 8000, "sound was spooled")
    recorder.kill()
    expect(recorder.folder(), "nothing is left: " + recorder.said())
    [identity] = unfinished(recorder.cache)
    whole = work + "/movies/whole.mp4"
    copy = work + "/copy"
    shutil.copytree(recorder.cache, copy)
    status, said = recover(programs, stage.environment, copy, identity, whole)
    expect(status == 0, said)
    spool = recorder.folder() + "/vornicaudio.tmp"
    with open(spool, "r+b") as file:
        file.seek(os.path.getsize(spool) // 2)
        file.write(b"damaged!" * 20)
    status, said = recover(programs, stage.environment, recorder.cache, identity, recorder.movie)
    expect(status == 0, said)
    expect(" 0 frames skipped" not in said, "what was lost is not told: " + said)
    hurt, sound = Movie(recorder.movie), Movie(whole)
    expect(hurt.numbers == sound.numbers, "pictures were lost with the sound")
    expect(abs(hurt.audio_seconds - sound.audio_seconds) < 0.001,
           f"{hurt.audio_seconds} s of sound instead of {sound.audio_seconds} s")
    return "frames skipped", f"all pictures, {hurt.audio_seconds:.1f} s of sound in its place"


FAULTS = [sound_never_comes, an_input_vanishes_and_comes_back, sound_is_damaged_on_the_disk]


def run_one(programs, fault):
    folder = tempfile.mkdtemp(prefix="vornic-fault-")
    stage = Stage(programs, folder, sound=True)
    try:
        stage.speakers = pactl(stage, *SPEAKERS)
        work = folder + "/work"
        prepare_work(work, None)
        return fault(programs, stage, work)
    finally:
        stage.close()
        shutil.rmtree(folder, ignore_errors=True)


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", default=os.path.join(TREE, "build/release"), help="the folder of the built tree")
    parser.add_argument("faults", nargs="*", help="only these")
    arguments = parser.parse_args()
    skip_without_tools()
    if not shutil.which("pactl"):
        print("not installed: pactl")
        sys.exit(77)
    failed = 0
    print(f"{'fault':38} {'told':38} kept")
    for fault in FAULTS:
        name = fault.__name__.replace("_", " ")
        if arguments.faults and name not in arguments.faults:
            continue
        try:
            told, kept = run_one(Programs(arguments.build), fault)
            print(f"{name:38} {told:38} {kept}", flush=True)
        except Failure as failure:
            failed += 1
            print(f"{name:38} FAILED: {failure}", flush=True)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()

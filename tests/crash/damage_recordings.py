#!/usr/bin/env python3
"""damage_recordings.py: does to recordings what disks and people do, and looks whether anything is lost that was still
there, and whether the program says one clear sentence where it cannot go on. Prints what it said.

Needs what kill_recordings.py needs. Exit status: 0 all was as it must be, 1 something was not.
"""
import argparse
import contextlib
import os
import random
import shutil
import subprocess
import sys
import tempfile
import time

import crash_stage as crash
from crash_stage import Failure

VIDEO, AUDIO, JOURNAL = "vornicvideo.tmp", "vornicaudio.tmp", "journal"


def expect(condition, what):
    if not condition:
        raise Failure(what)


class Bench:
    """A stage, and a recording with sound that was killed, of which each test gets a copy."""

    def __init__(self, programs, seed):
        self.programs = programs
        self.random = random.Random(seed)
        self.folder = tempfile.mkdtemp(prefix="vornic-damage-")
        self.stage = crash.Stage(programs, self.folder, sound=True)
        self.work = self.folder + "/first"
        crash.prepare_work(self.work, None)
        recorder = self.record("--audio", seconds=2)
        recorder.kill()
        self.original = recorder.folder()
        self.id = os.path.basename(self.original)
        kept = self.folder + "/" + self.id
        shutil.copytree(self.original, kept)
        self.original = kept
        self.numbers = self.recover_whole()

    def close(self):
        self.stage.close()
        shutil.rmtree(self.folder, ignore_errors=True)

    def begin(self, name):
        """A new cache and a new folder for movies, with the recording in the cache."""
        self.work = f"{self.folder}/{name}"
        crash.prepare_work(self.work, self.original)

    @property
    def cache(self):
        return self.work + "/cache"

    @property
    def movie(self):
        return self.work + "/movies/recovered.mp4"

    def path(self, name=""):
        return f"{crash.recordings_folder(self.cache)}/{self.id}/{name}"

    def bytes_of(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def set_bytes(self, name, contents):
        with open(self.path(name), "wb") as file:
            file.write(contents)

    def turn_bytes(self, name, count):
        contents = bytearray(self.bytes_of(name))
        for _ in range(count):
            contents[self.random.randrange(len(contents))] ^= 0xFF
        self.set_bytes(name, contents)

    def record(self, *options, seconds=1.0, work=None, limit=None):
        """A recorder that has had pictures for so long."""
        recorder = crash.Recorder(self.programs, self.stage, work or self.work, options=options, limit=limit)
        recorder.wait_until(recorder.has_pictures, "pictures were spooled")
        expect(not recorder.has_ended(), "the recorder ended: " + recorder.said())
        time.sleep(seconds)
        return recorder

    def recover(self, *arguments):
        return crash.recover(self.programs, self.stage.environment, self.cache, *arguments)

    def listed(self):
        status, said = self.recover()
        expect(status == 0, f"the list ends with {status}: {said}")
        return said.splitlines()

    def numbers_in(self, path):
        movie = crash.Movie(path)
        known = self.stage.times()
        expect(all(number in known for number in movie.numbers), "frames show what was never on the screen")
        expect(movie.numbers == sorted(movie.numbers), "frames are out of order")
        return movie.numbers

    def recover_whole(self):
        """The numbers in the movie; the recording must be gone then."""
        status, said = self.recover(self.id, self.movie)
        expect(status == 0, f"recovery ends with {status}: {said}")
        expect(not os.path.lexists(self.path()), "the recording is still there")
        return self.numbers_in(self.movie)

    def refuse(self, *arguments):
        """The sentence that is said in place of a recovery; nothing may have changed."""
        before = crash.fingerprint(self.work)
        status, said = self.recover(*arguments)
        expect(status == 1, f"recovery ends with {status}: {said}")
        expect(crash.fingerprint(self.work) == before, "a refused recovery changed something")
        return sentence(said)


def sentence(said):
    """The one that begins with the program's name; there must be no other."""
    lines = [line for line in said.splitlines() if line.startswith("vornic: ") and "vornic recover" not in line]
    expect(len(lines) == 1 and lines[0].endswith("."), f"not one sentence: {said!r}")
    return lines[0].removeprefix("vornic: ")


def end(recorder):
    """The recorder's status, and what it said, after a SIGTERM."""
    recorder.stop()
    status = recorder.process.wait(timeout=60)
    return status, recorder.said()


# ---- the tests, by their names


def output_full(bench):
    full = "full.mp4"
    status, said = crash.run([bench.programs.vornic, "recover", bench.id, f"{bench.work}/movies/{full}"],
                             dict(bench.stage.environment, XDG_CACHE_HOME=bench.cache), limit=15000)
    expect(status == 1, f"recovery to a full disk ends with {status}: {said}")
    expect(full not in os.listdir(bench.work + "/movies"), "half a movie is left")
    expect(bench.recover_whole() == bench.numbers, "frames are lost")
    return sentence(said)


def output_folder_removed(bench):
    recorder = bench.record()
    shutil.rmtree(bench.work + "/movies")
    status, said = end(recorder)
    expect(status == 1, f"the recorder ends with {status}: {said}")
    recording = os.path.basename(recorder.folder())
    again = bench.refuse(recording, bench.movie)
    os.mkdir(bench.work + "/movies")
    status, recovered = bench.recover(recording, bench.movie)
    expect(status == 0, recovered)
    expect(bench.numbers_in(bench.movie), "the movie is empty")
    expect(again == sentence(said), f"said first: {said!r}, then: {again!r}")
    return again


def recovery_killed(bench):
    others = set(os.listdir(bench.work + "/movies"))
    environment = dict(bench.stage.environment, XDG_CACHE_HOME=bench.cache)
    with subprocess.Popen([bench.programs.vornic, "recover", bench.id, bench.movie], env=environment,
                          stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL) as recovery:
        crash.wait_until(lambda: set(os.listdir(bench.work + "/movies")) - others, "a movie was begun", poll=0.001)
        recovery.kill()
    expect(not os.path.exists(bench.movie), "the recovery was quicker than the kill")
    expect(bench.recover_whole() == bench.numbers, "frames are lost")
    expect(set(os.listdir(bench.work + "/movies")) - others == {os.path.basename(bench.movie)}, "half a movie is left")
    return f"(all {len(bench.numbers)} frames in the end)"


def cache_removed(bench):
    recorder = bench.record()
    shutil.rmtree(bench.cache + "/com.kavlor.vornic")
    time.sleep(0.5)
    status, said = end(recorder)
    expect(status == 0, f"the recorder ends with {status}: {said}")
    movie = crash.Movie(recorder.movie)
    crash.check_frames(movie, bench.stage, recorder.started, bench.stage.lateness(recorder.started, recorder.stopped))
    expect(len(movie.numbers) > 20, "frames are lost")
    return f"(the movie has all {len(movie.numbers)} frames)"


def spool_full(bench):
    recorder = bench.record(limit=400_000, seconds=0)
    status = recorder.process.wait(timeout=60)
    said = recorder.said()
    expect(status == 0, f"the recorder ends with {status}: {said}")
    movie = crash.Movie(recorder.movie)
    ended = time.monotonic()
    crash.check_frames(movie, bench.stage, recorder.started, bench.stage.lateness(recorder.started, ended))
    return said.replace("\n", " / ")


def spool_truncated(bench):
    bench.set_bytes(VIDEO, bench.bytes_of(VIDEO)[:-len(bench.bytes_of(VIDEO)) // 3])
    numbers = bench.recover_whole()
    expect(numbers == bench.numbers[:len(numbers)], "frames before the cut are lost")
    expect(0.5 < len(numbers) / len(bench.numbers) < 0.8, f"{len(numbers)} of {len(bench.numbers)} frames are left")
    return f"({len(numbers)} of {len(bench.numbers)} frames)"


def turned_in(bench, name):
    bench.turn_bytes(name, 4)
    numbers = bench.recover_whole()
    expect(set(numbers) <= set(bench.numbers), "frames are there that were not recorded")
    return f"({len(numbers)} of {len(bench.numbers)} frames)"


def bytes_turned_in_pictures(bench):
    return turned_in(bench, VIDEO)


def bytes_turned_in_sound(bench):
    told = turned_in(bench, AUDIO)
    expect(bench.numbers_in(bench.movie) == bench.numbers, "frames are lost with the sound")
    return told


def bytes_turned_in_journal(bench):
    return turned_in(bench, JOURNAL)


def journal_cut_off(bench):
    bench.set_bytes(JOURNAL, bench.bytes_of(JOURNAL)[:-100])
    numbers = bench.recover_whole()
    expect(numbers == bench.numbers[:len(numbers)] and len(numbers) > len(bench.numbers) - 5, "frames are lost")
    return f"({len(numbers)} of {len(bench.numbers)} frames)"


def journal_missing(bench):
    video = bench.bytes_of(VIDEO)
    os.remove(bench.path(JOURNAL))
    expect("cannot be read" in bench.listed()[0], "it is not listed")
    said = bench.refuse(bench.id, bench.movie)
    expect(bench.bytes_of(VIDEO) == video, "the pictures are changed")
    status, deleted = bench.recover("--delete", bench.id)
    expect(status == 0 and not os.path.exists(bench.path()), deleted)
    return said


def pictures_missing(bench):
    os.remove(bench.path(VIDEO))
    return bench.refuse(bench.id, bench.movie)


def sound_missing(bench):
    os.remove(bench.path(AUDIO))
    expect(bench.recover_whole() == bench.numbers, "frames are lost with the sound")
    return f"(all {len(bench.numbers)} frames)"


def two_at_once(bench):
    shutil.rmtree(bench.path())
    other_work = bench.work + "/other"
    os.makedirs(other_work + "/movies")
    os.symlink("../cache", other_work + "/cache")
    first = bench.record()
    second = bench.record(work=other_work)
    killed = first.kill()
    left = bench.listed()
    expect(len(left) == 1, f"listed are: {left}")
    status, said = bench.recover(os.path.basename(second.folder()), bench.movie)
    expect(status == 1, f"recovery of what runs ends with {status}: {said}")
    said = sentence(said)
    status, recovered = bench.recover(left[0].split()[0], bench.movie)
    expect(status == 0, recovered)
    crash.check_frames(crash.Movie(bench.movie), bench.stage, first.started, bench.stage.lateness(first.started, killed))
    status, ended = end(second)
    expect(status == 0, f"the second one ends with {status}: {ended}")
    movie = crash.Movie(second.movie)
    crash.check_frames(movie, bench.stage, second.started, bench.stage.lateness(second.started, second.stopped))
    expect(os.listdir(crash.recordings_folder(bench.cache)) == [], "something is left")
    return said


def three_hundred(bench):
    folder = crash.recordings_folder(bench.cache)
    for number in range(299):
        shutil.copytree(bench.original, f"{folder}/20200101-000000-{number:04x}")
    begin = time.monotonic()
    expect(len(bench.listed()) == 300, "not all are listed")
    seconds = time.monotonic() - begin
    status, said = end(bench.record(seconds=0.3))
    expect(status == 0, said)
    expect(len(bench.listed()) == 300, "some are gone")
    return f"(listed in {seconds:.2f} s; a new one is made)"


def in_place_of_pictures(bench, make):
    os.remove(bench.path(VIDEO))
    make(bench.path(VIDEO))
    return bench.refuse(bench.id, bench.movie)


def link_in_place_of_pictures(bench):
    target = bench.work + "/target"
    shutil.copy(bench.path(VIDEO), target)
    return in_place_of_pictures(bench, lambda path: os.symlink(target, path))


def pipe_in_place_of_pictures(bench):
    return in_place_of_pictures(bench, os.mkfifo)


def folder_in_place_of_pictures(bench):
    return in_place_of_pictures(bench, os.mkdir)


def link_in_place_of_recording(bench):
    target = bench.work + "/target"
    os.rename(bench.path(), target)
    os.symlink(target, bench.path().rstrip("/"))
    return bench.refuse(bench.id, bench.movie)


def link_in_place_of_all(bench):
    target = bench.work + "/target"
    os.rename(crash.recordings_folder(bench.cache), target)
    os.symlink(target, crash.recordings_folder(bench.cache))
    before = crash.fingerprint(target)
    recorder = crash.Recorder(bench.programs, bench.stage, bench.work)
    status = recorder.process.wait(timeout=20)
    said = recorder.said()
    expect(status == 1, f"the recorder ends with {status}: {said}")
    expect(crash.fingerprint(target) == before, "something was written where the link leads")
    return sentence(said)


TESTS = [output_full, output_folder_removed, recovery_killed, cache_removed, spool_full, spool_truncated,
         bytes_turned_in_pictures, bytes_turned_in_sound, bytes_turned_in_journal, journal_cut_off, journal_missing,
         pictures_missing, sound_missing, two_at_once, three_hundred, link_in_place_of_pictures,
         pipe_in_place_of_pictures, folder_in_place_of_pictures, link_in_place_of_recording, link_in_place_of_all]


def run_test(bench, test):
    """The line of the table, and whether it passed."""
    bench.begin(test.__name__)
    try:
        return test(bench), True
    except (Failure, OSError, subprocess.TimeoutExpired) as failure:
        return f"FAILED: {failure}", False


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("tests", nargs="*", help="their names; all without one")
    crash.add_arguments(parser)
    arguments = parser.parse_args()
    crash.skip_without_tools()
    seed = random.randrange(1_000_000) if arguments.seed is None else arguments.seed
    print(f"seed {seed}")
    passed = True
    with contextlib.closing(Bench(crash.Programs(arguments.build), seed)) as bench:
        for test in TESTS:
            if arguments.tests and test.__name__ not in arguments.tests:
                continue
            told, is_passed = run_test(bench, test)
            passed = passed and is_passed
            print(f"{test.__name__.replace('_', ' '):30}{told}", flush=True)
    return 0 if passed else 1


if __name__ == "__main__":
    sys.exit(main())

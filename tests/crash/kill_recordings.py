#!/usr/bin/env python3
"""kill_recordings.py [N] [--seed S]: kills `vornic record` N times, and looks for what is left of each recording.

The moments are drawn: while it starts, records (with and without sound), stops, encodes, and finishes. Each recording
is of a counter on a private X server (see crash_stage.py). After each kill either the movie must be complete at its
name, with the numbers up to the stop, or `vornic recover` must give a movie with the numbers that were shown up to
half a second before the kill, in order, without a gap and at their times. Nothing else may have changed: another
unfinished recording in the same cache, files beside the movie. After the recovery no .part file and no folder of the
recording may be left.

How late the machine itself was is read off the counter, which runs beside the recorder: where it stood still for 0.1 s
because the machine was busy, the recorder may have lost 0.1 s more. The table shows that as "late".

Needs the built tree, Xvfb, pulseaudio, ffmpeg and ffprobe. Exit status: 0 nothing was lost, 1 something was.
"""
import argparse
import collections
import contextlib
import glob
import os
import queue
import random
import re
import shutil
import sys
import threading
import time

import crash_stage as crash
from crash_stage import Failure

FIRST_FRAME = {False: 0.7, True: 2.0}  # seconds from the folder to the first picture; sound is waited for
LATE_STOP = 0.3  # seconds between a signal and the last frame before it, on a busy machine

Result = collections.namedtuple("Result", "moment sound seconds outcome lost late note")


def approach(recorder, moment, random_, longest, finish_pause):
    """Brings the recording to its moment. Returns when the first picture was in the spool, where that was seen."""
    pause = lambda low, high: time.sleep(random_.uniform(low, high))
    if moment == "starting":
        if random_.random() < 0.5:
            recorder.wait_until(recorder.folder, "the recording had a folder")
        pause(0, 1.0)
        return None
    recorder.wait_until(recorder.has_pictures, "pictures were spooled")
    first = time.monotonic()
    pause(0.3, longest)
    if moment == "recording":
        return first
    recorder.stop()
    if moment == "stopping":
        pause(0, 0.15)
    elif moment == "encoding":
        others = set(crash.list_folder(recorder.movies))
        recorder.wait_until(lambda: set(crash.list_folder(recorder.movies)) - others, "a movie was begun", poll=0.001)
        pause(0, 0.15)
    else:
        recorder.wait_until(lambda: os.path.exists(recorder.movie), "the movie was there", poll=0.001)
        pause(0, finish_pause)
    return first


def check_movie(path, case, killed, late, is_complete=False):
    """Seconds that are lost. Those between stop and kill count, but for a complete movie."""
    movie = crash.Movie(path)
    begin = case.recorder.started
    shown = crash.check_frames(movie, case.stage, begin, case.stage.lateness(begin, killed))
    if case.sound and movie.audio_seconds is not None:
        apart = abs(movie.audio_seconds - movie.times[-1])
        if apart > case.LOSS + 0.25 + late:
            raise Failure(f"sound and picture end {apart:.2f} s apart")
    elif case.sound:
        raise Failure("the movie has no sound")
    end = min(killed, case.recorder.stopped or killed)
    lost = end - shown[-1]
    allowed = LATE_STOP if is_complete else max(case.LOSS - (killed - end), LATE_STOP)
    allowed += late
    if lost > allowed:
        raise Failure(f"{lost:.2f} s are lost, {allowed:.2f} s may be")
    return max(0.0, lost)


class Case:
    """One recording and its end."""

    MOMENTS = ("starting", "recording", "stopping", "encoding", "finishing")
    LOSS = 0.5  # seconds that the end may cost
    FINISH_PAUSE = 0.03  # seconds from the movie's name to the last chance to break something
    MAY_SKIP = False  # frames: what was written may have holes
    FOLDERS = ("cache/com.kavlor.vornic", "cache/com.kavlor.vornic/recordings")
    WHAT = "kills"

    def __init__(self, workshop, seed, number):
        self.random = random.Random(f"{seed}-{number}")
        self.moment = self.MOMENTS[number % len(self.MOMENTS)]
        self.sound = number // len(self.MOMENTS) % 2 == 1
        self.workshop = workshop
        self.stage = workshop.stage
        self.work = workshop.work(number)
        self.recorder = None

    def run(self):
        known = crash.fingerprint(self.work)
        self.recorder = self.start()
        try:
            first = approach(self.recorder, self.moment, self.random, 3 + self.LOSS, self.FINISH_PAUSE)
        finally:
            killed = self.recorder.kill()
        late = self.stage.lateness(killed - 1.5, killed)
        seconds = killed - self.recorder.started
        folder = self.recorder.folder()
        if first is None and folder:
            first = os.stat(folder).st_mtime - time.time() + time.monotonic() + FIRST_FRAME[self.sound]
        self.after_kill()
        outcome, lost = self.look(killed, killed - first if first else 0, late)
        self.check_rest(known, outcome)
        return Result(self.moment, self.sound, seconds, outcome, lost, late, "")

    def start(self):
        return crash.Recorder(self.workshop.programs, self.stage, self.work, self.sound)

    def after_kill(self):
        pass

    def look(self, killed, length, late):
        decoy = os.path.basename(self.workshop.decoy)
        crash.age_half_made(self.recorder.cache)
        self.recover()
        left = crash.unfinished(self.recorder.cache, {decoy})
        outcome, lost = "nothing yet", None
        if os.path.exists(self.recorder.movie):
            outcome, lost = "complete", check_movie(self.recorder.movie, self, killed, late, True)
        for recording in left:
            path = self.recorder.movies + "/recovered.mp4"
            status, said = self.recover(recording, path)
            if status == 0:
                if not self.MAY_SKIP and " 0 frames skipped" not in said:
                    raise Failure(f"frames are damaged: {said}")
                of_this = check_movie(path, self, killed, late)
                if outcome == "nothing yet":
                    outcome, lost = "recovered", of_this
            elif not self.may_be_useless(outcome, length, late):
                raise Failure(f"recovery ends with {status}: {said}")
            else:
                # The user is rid of it with one command.
                self.recover("--delete", recording)
        if outcome == "nothing yet" and length > self.LOSS + 2 * late:
            raise Failure(f"nothing is left of a recording of {length:.2f} s: {self.recorder.said()}")
        return outcome, lost

    def may_be_useless(self, outcome, length, late):
        """What is left of the recording: too young to be on the disk, or left only because its removal was not yet."""
        return length <= self.LOSS + 2 * late if outcome == "nothing yet" else self.MAY_SKIP

    def recover(self, *arguments):
        return crash.recover(self.workshop.programs, self.stage.environment, self.recorder.cache, *arguments)

    def check_rest(self, known, outcome):
        now = crash.fingerprint(self.work)
        made = {"movies/movie.mp4", "movies/recovered.mp4", "errors", *self.FOLDERS}
        if outcome == "nothing yet" and self.MAY_SKIP:
            # The disk has the movie's beginning, but not the journal, which tells where that is.
            made |= {path for path in now if re.fullmatch(r"movies/\.vornic-[-0-9a-f]{36}\.part", path)}
        for path in made:
            now.pop(path, None)
            known.pop(path, None)
        if now != known:
            changed = sorted(path for path in known.keys() | now.keys() if known.get(path) != now.get(path))
            raise Failure("left behind, or changed: " + ", ".join(changed))


def run_one(kind, workshop, seed, number, keep):
    case = kind(workshop, seed, number)
    try:
        result = case.run()
    except (Failure, OSError) as failure:
        if keep:
            workshop.kept = True
            failure = f"{failure} [{case.work}]"
        return Result(case.moment, case.sound, 0, "FAILED", None, 0, str(failure))
    for path in [case.work] + glob.glob(case.work + ".*"):
        shutil.rmtree(path)
    return result


def work_off(kind, numbers, results, arguments):
    with contextlib.closing(crash.Workshop(crash.Programs(arguments.build), sound=True)) as workshop:
        while True:
            try:
                number = numbers.get_nowait()
            except queue.Empty:
                return
            result = run_one(kind, workshop, arguments.seed, number, arguments.keep)
            results.append(result)
            print(row(number, result), flush=True)


def row(number, result):
    lost = "" if result.lost is None else f"{result.lost:.3f}"
    return (f"{number + 1:4}  {result.moment:10}{'sound' if result.sound else '':7}{result.seconds:6.2f}  "
            f"{result.outcome:12}{lost:>7}{result.late:8.3f}  {result.note}").rstrip()


def run_all(kind, description):
    """The exit status after as many as the command line asks for."""
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("count", nargs="?", type=int, default=20)
    crash.add_arguments(parser)
    arguments = parser.parse_args()
    crash.skip_without_tools()
    if arguments.seed is None:
        arguments.seed = random.randrange(1_000_000)
    print(f"{arguments.count} {kind.WHAT}, seed {arguments.seed}\n"
          f"   #  moment    sound  seconds  outcome        lost    late", flush=True)
    numbers = queue.Queue()
    for number in range(arguments.count):
        numbers.put(number)
    results = []
    workers = [threading.Thread(target=work_off, args=(kind, numbers, results, arguments))
               for _ in range(min(arguments.jobs, arguments.count))]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    outcomes = collections.Counter(result.outcome for result in results)
    losses = [result.lost for result in results if result.lost is not None]
    print(f"{len(results)} {kind.WHAT}: " + ", ".join(f"{count} {outcome}" for outcome, count in outcomes.most_common())
          + f"; lost at most {max(losses, default=0):.3f} s; seed {arguments.seed}")
    return 0 if len(results) == arguments.count and not outcomes["FAILED"] else 1


if __name__ == "__main__":
    sys.exit(run_all(Case, __doc__))

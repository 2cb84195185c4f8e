#!/usr/bin/env python3
"""pause_recordings.py: pauses `vornic record` at random moments, and looks in its movies for what was on the screen.

Three recordings of a counter on a private X server (see crash_stage.py), two with sound: one with twenty pauses of random
length, which ends by itself; one that is killed while it is paused; one that is killed after it has gone on. In each movie,
recovered or not, no frame may show a number that stood on the screen in a pause alone; the frames behind a pause must
follow those before it at their times, as if the pause had not been; and each part must begin with a key frame. How late
the machine itself was is read off the counter.

Needs the built tree, Xvfb, pulseaudio, ffmpeg and ffprobe. Exit status: 0 all is well, 1 something is not.
"""
import argparse
import collections
import contextlib
import json
import random
import signal
import statistics
import subprocess
import sys
import time

import crash_stage as crash
from crash_stage import Failure

# Seconds of the monotonic clock: what was done when the signal was sent is known to be done when it was seen.
Pause = collections.namedtuple("Pause", "begun seen ended")

PAUSES = 20


class PausedRecorder(crash.Recorder):
    """A recorder that can be paused, and tells that on standard error."""

    def __init__(self, *arguments, **options):
        super().__init__(*arguments, **options)
        self.pauses = []

    def signal_and_see(self, word):
        """When the signal was sent, and when it was seen to be obeyed."""
        before = self.said().count(word)
        sent = time.monotonic()
        self.process.send_signal(signal.SIGUSR1)
        crash.wait_until(lambda: self.said().count(word) > before or self.has_ended(), "it told: " + word)
        if self.has_ended():
            raise Failure("it has ended: " + self.said())
        return sent, time.monotonic()

    def pause(self):
        begun, seen = self.signal_and_see(", paused")
        self.pauses.append(Pause(begun, seen, float("inf")))

    def go_on(self):
        ended, _ = self.signal_and_see(", recording")
        self.pauses[-1] = self.pauses[-1]._replace(ended=ended)

    def pause_many(self, random_):
        for _ in range(PAUSES):
            time.sleep(random_.uniform(0.15, 0.8))
            self.pause()
            time.sleep(random_.uniform(0.02, 0.7))
            self.go_on()
        time.sleep(0.5)


def key_frames(path):
    packets = json.loads(subprocess.check_output(
        ["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "packet=pts_time,flags", "-of", "json", path]))
    return {float(packet["pts_time"]) for packet in packets["packets"] if "K" in packet["flags"]}


def parts_of(movie, stage, pauses):
    """The indexes of the frames of each part, by what they show."""
    times = stage.times()
    parts = [[]]
    for index, number in enumerate(movie.numbers):
        if number not in times:
            raise Failure(f"frame {index} shows {number}, which was never on the screen")
        came, went = times.get(number - 1, 0), times.get(number + 1, float("inf"))
        for pause in pauses:
            # It was not yet there when the pause was seen, and no longer when the signal for its end was sent.
            if came > pause.seen and went < pause.ended:
                raise Failure(f"frame {index} is of a moment {came - pause.seen:.3f} s behind the beginning of a pause")
        part = sum(went > pause.ended for pause in pauses)
        while len(parts) <= part:
            parts.append([])
        if part < len(parts) - 1:
            raise Failure(f"frame {index} is older than those before it")
        parts[part].append(index)
    return parts


def check_times(movie, stage, pauses, parts, late):
    """How far each part stands from where it would be without the pauses before it; the largest, in seconds."""
    times = stage.times()
    away = []
    for number, part in enumerate(parts):
        if not part:
            continue  # shorter than the time between two pictures
        off = []
        for index in part:
            shown = times[movie.numbers[index]]
            paused = sum(pause.ended - pause.begun for pause in pauses[:number])
            off.append(movie.times[index] - (shown - paused))
        away.append(statistics.median(off))
    largest = max(abs(one - away[0]) for one in away)
    if largest > crash.PERIOD + late:
        raise Failure(f"a part stands {largest * 1000:.1f} ms from its place, the machine was {late * 1000:.0f} ms late")
    return largest


def check_key_frames(movie, stage, pauses, parts, keys):
    """A number that stood on the screen through a whole pause may have been recorded before it, at the end of another part."""
    times = stage.times()
    for number, part in enumerate(parts):
        earlier = [index for index in part if number and times[movie.numbers[index]] < pauses[number - 1].seen]
        first = part[:len(earlier) + 1]
        if first and min(abs(movie.times[index] - key) for index in first for key in keys) > 0.001:
            raise Failure(f"part {number} does not begin with a key frame")


def check_movie(path, recorder, stage, end):
    """What the movie says of itself, for the table."""
    movie = crash.Movie(path)
    late = stage.lateness(recorder.started, end)
    parts = parts_of(movie, stage, recorder.pauses)
    if sum(bool(part) for part in parts) < len(recorder.pauses) * 0.7:
        raise Failure(f"of {len(recorder.pauses) + 1} parts most are missing")
    largest = check_times(movie, stage, recorder.pauses, parts, late)
    check_key_frames(movie, stage, recorder.pauses, parts, key_frames(path))
    if movie.audio_seconds is not None and abs(movie.audio_seconds - movie.times[-1]) > 0.25 + late + crash.PERIOD:
        raise Failure(f"sound and picture end {abs(movie.audio_seconds - movie.times[-1]):.2f} s apart")
    last = stage.times()[movie.numbers[-1]]
    return movie, last, f"{len(movie.times)} frames, {movie.times[-1]:.2f} s, {largest * 1000:.1f} ms off at most, " \
                        f"{late * 1000:.0f} ms late"


def recovered(workshop, recorder):
    path = recorder.movies + "/recovered.mp4"
    left = crash.unfinished(recorder.cache, {name for name in crash.unfinished(recorder.cache) if name.startswith("2020")})
    if len(left) != 1:
        raise Failure(f"left behind: {left}")
    status, said = crash.recover(workshop.programs, workshop.stage.environment, recorder.cache, left[0], path)
    if status != 0 or " 0 frames skipped" not in said:
        raise Failure(f"recovery ends with {status}: {said}")
    return path


def many_pauses(workshop, recorder, random_):
    recorder.pause_many(random_)
    recorder.stop()
    recorder.process.wait()
    _, _, row = check_movie(recorder.movie, recorder, workshop.stage, time.monotonic())
    return row


def killed_while_paused(workshop, recorder, random_):
    time.sleep(random_.uniform(0.5, 1.5))
    recorder.pause()
    time.sleep(1)  # what was kept is on the disk after 0.2 s
    killed = recorder.kill()
    _, last, row = check_movie(recovered(workshop, recorder), recorder, workshop.stage, killed)
    late = workshop.stage.lateness(recorder.started, killed)
    if recorder.pauses[0].begun - last > 0.1 + late:
        raise Failure(f"{recorder.pauses[0].begun - last:.2f} s before the pause are lost")
    return row


def killed_behind_a_pause(workshop, recorder, random_):
    time.sleep(random_.uniform(0.3, 0.8))
    for _ in range(3):
        recorder.pause()
        time.sleep(random_.uniform(0.3, 0.8))
        recorder.go_on()
        time.sleep(random_.uniform(0.8, 1.2))
    killed = recorder.kill()
    _, last, row = check_movie(recovered(workshop, recorder), recorder, workshop.stage, killed)
    if last < recorder.pauses[-1].ended:
        raise Failure("what was recorded behind the last pause is lost")
    return row


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    crash.add_arguments(parser)
    arguments = parser.parse_args()
    crash.skip_without_tools()
    seed = random.randrange(1_000_000) if arguments.seed is None else arguments.seed
    random_ = random.Random(seed)
    print(f"seed {seed}", flush=True)
    failed = False
    with contextlib.closing(crash.Workshop(crash.Programs(arguments.build), sound=True)) as workshop:
        for number, (case, sound) in enumerate(((many_pauses, True), (killed_while_paused, False),
                                                (killed_behind_a_pause, True))):
            recorder = PausedRecorder(workshop.programs, workshop.stage, workshop.work(number), sound)
            try:
                recorder.wait_until(recorder.has_pictures, "pictures were spooled")
                print(f"{case.__name__}: {case(workshop, recorder, random_)}", flush=True)
            except Failure as failure:
                failed = True
                print(f"{case.__name__}: FAILED: {failure}", flush=True)
            finally:
                if not recorder.has_ended():
                    recorder.kill()
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

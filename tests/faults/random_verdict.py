"""What became of a run of random_faults.py: whether anything was lost, was left behind, or went untold."""
import collections
import contextlib
import os
import re
import signal
import subprocess
import time

import injected_faults as faults
from fault_stage import crash, expect

FIRST_PICTURE = {"command": 0.7, "window": 2.0}  # seconds from the recording's folder to its first picture
WAITS_FOR_SOUND = 4.0  # seconds that this may take longer
NOT_COUNTED = re.compile(r"log|no-more|config(/kavlor(/Vornic\.conf)?|/pulse(/cookie)?)?|cache(/openbox.*)?"
                         r"|disk/cache/com\.kavlor\.vornic(/recordings)?")

Result = collections.namedtuple("Result", "fault face moment sound seconds outcome lost late told note")


class Verdict:
    """Of a run that has ended. Each of its checks raises a Failure."""

    def __init__(self, run, known):
        self.run = run
        self.stage = run.stage
        self.fault = run.fault
        self.known = known
        self.end = self.owed_until()
        self.late = self.lateness(self.end - 1.5)

    def result(self):
        run = self.run
        first = run.first_picture or self.first_by_folder()
        self.fault.after_end()
        outcome, lost = self.look()
        if outcome == "nothing yet" and first:
            self.expect(self.is_too_young(first), f"nothing is left of a recording of {self.end - first:.2f} s")
        told = self.told()
        self.check_status(outcome, told)
        self.check_rest()
        seconds = self.end - self.stage.started
        return Result(run.name, run.face, run.moment, run.sound, seconds, outcome, lost, self.late,
                      told[0] if told else "", "")

    def expect(self, condition, what):
        expect(condition, f"{what}; it said: {self.stage.said()}")

    # ---- how much must be there

    def owed_until(self):
        """The moment up to which the movie must show what was on the screen."""
        run = self.run
        may_end_early = self.fault.ENDS or self.fault.CUTS
        if not may_end_early:
            return run.stopped
        if run.moment == "before":
            is_whole = run.status == 0 and run.face == "command"  # so the program says
            return run.stopped if is_whole and run.stopped else self.stage.started
        return min(run.struck, run.stopped or run.struck)

    def lateness(self, begin):
        """How long the screen, and the recorder on top of it, stood still because the machine was busy."""
        return self.stood_still(begin) + self.run.delays.longest(begin, self.end)

    def stood_still(self, begin):
        """Of the screen, in the worst two seconds: a pass asks the server more than once."""
        self.stage.stage.read_shown()
        times = [moment for _, moment in self.stage.stage.shown if begin - 0.5 <= moment <= self.end] + [self.end]
        gaps = [(after, after - before - crash.PERIOD) for before, after in zip(times, times[1:])]
        gaps = [(moment, gap) for moment, gap in gaps if gap > 2 * crash.PERIOD]
        return max((sum(gap for moment, gap in gaps if first <= moment <= first + 2) for first, _ in gaps), default=0.0)

    def first_by_folder(self):
        """When the first picture was stored at the latest, where nobody looked for it."""
        spool = self.stage.spool()
        if not spool:
            return None
        made = os.stat(os.path.dirname(spool)).st_mtime - time.time() + time.monotonic()
        return made + FIRST_PICTURE[self.run.face] + (WAITS_FOR_SOUND if self.run.sound else 0)

    def is_too_young(self, first):
        return self.end - first <= self.fault.LOSS + 2 * self.late

    # ---- what is there

    def look(self):
        """Where the recording is, and the seconds that it lacks."""
        run = self.run
        crash.age_half_made(run.cache)
        self.recover()  # a start, which takes away what a crash may have left
        outcome, lost = "nothing yet", None
        mine = run.own_movies()
        self.expect(len(mine) <= 1, "movies: " + ", ".join(mine))
        if mine:
            outcome, lost = "movie", self.seconds_lost(mine[0])
        for recording in crash.unfinished(run.cache):
            path = run.saved + "/recovered.mp4"
            status, said = self.recover(recording, path)
            if status == 0:
                of_this = self.seconds_lost(path)
                if outcome == "nothing yet":
                    outcome, lost = "recovered", of_this
                continue
            may_fail = outcome == "movie" or not run.first_picture or self.is_too_young(run.first_picture)
            self.expect(may_fail, f"recovery ends with {status}: {said}")
            self.recover("--delete", recording)
        return outcome, lost

    def recover(self, *arguments):
        return crash.recover(self.stage.programs, self.stage.environment, self.run.cache, *arguments)

    def seconds_lost(self, path):
        """At the end; the movie shows what was on the screen before that, all of it and at its time."""
        late = self.lateness(self.stage.started)
        if isinstance(self.fault, faults.ResizedDisplay):
            lost = self.seconds_too_short(path)
        else:
            lost = self.end - self.shown(crash.Movie(path), late)[-1]
        self.expect(lost <= self.fault.LOSS + late, f"{lost:.2f} s are lost, and {late:.2f} s by a busy machine")
        return max(0.0, lost)

    def shown(self, movie, late):
        """When the screen showed what the frames show."""
        if isinstance(self.fault, faults.KilledAndDamaged):
            times = self.stage.stage.times()
            expect(all(number in times for number in movie.numbers), "frames were never on the screen")
            expect(movie.numbers == sorted(movie.numbers), "frames are out of order")
            return [times[number] for number in movie.numbers]
        if isinstance(self.fault, faults.FrozenDisplay) and len(movie.numbers) > 1:
            # The last picture's time may be from when it was found out that the screen was frozen.
            movie.numbers[-1], movie.times[-1] = movie.numbers[-2], movie.times[-2]
        return crash.check_frames(movie, self.stage.stage, self.stage.started, late)

    def seconds_too_short(self, path):
        """For a movie whose frames cannot be read by a script."""
        probed = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", path],
                                capture_output=True, check=False)
        expect(probed.returncode == 0 and not probed.stderr, f"no whole movie: {probed.stderr.decode()}")
        return self.end - self.run.first_picture - float(probed.stdout) if self.run.first_picture else 0.0

    # ---- what was told

    def told(self):
        """Sentences, without what differs from run to run."""
        said = [line.removeprefix("vornic: ") for line in self.stage.said().splitlines() if line.startswith("vornic: ")]
        notices = re.findall(r'member=Notify\n(?:.*\n){3}   string "(.*)"', self.stage.calls())
        told = [line for line in said if "lies in memory" not in line] + self.run.asked
        told += [title for title in notices if title != "The recording is finished"]
        # What happened comes before what can be done about it.
        return sorted(map(self.general, told), key=lambda line: line.startswith("The recording is kept"))

    def general(self, text):
        run = self.run
        for path, name in (("folder " + run.movies, "folder"), (run.movie, "FILE"), (run.movies, "FOLDER"),
                           (run.cache, "CACHE"), (run.work, "…")):
            text = text.replace(path, name)
        return re.sub(r"\d{8}-\d{6}-\w+", "ID", text)

    def check_status(self, outcome, told):
        status = self.run.status
        by_signal = isinstance(self.fault, faults.Signal) and -status in self.fault.NUMBERS
        # A signal ends a program that does not listen to it yet.
        by_stop = -status == signal.SIGTERM and outcome == "nothing yet"
        has_crashed = self.fault.MAY_CRASH and status not in (0, 1, 3)
        self.expect(status in (0, 1, 3) or by_signal or by_stop or has_crashed, f"it ended with {status}")
        is_fine = outcome == "movie" and (status == 0 or self.run.face == "window")
        was_ended = outcome == "nothing yet" and (self.fault.ENDS or self.run.moment == "starting")
        needs_words = not (is_fine or was_ended or by_signal or by_stop or has_crashed or self.fault.IS_SILENT)
        self.expect(told or not needs_words, f"nothing was told of it: status {status}, {outcome}")

    # ---- what is left behind

    def check_rest(self):
        run = self.run
        for path, contents in run.foreign.items():
            with open(path, encoding="ascii") as file:
                expect(file.read() == contents, f"{path} was changed")
        for path in run.movies_of_others:
            expect(crash.Movie(path).numbers, f"{path} is empty")
        made = {os.path.relpath(path, run.work)
                for path in [*run.own_movies(), *run.foreign, *run.movies_of_others]}
        now = run.files()
        left = {path for path in now - self.known - made if not NOT_COUNTED.fullmatch(path)}
        expect(not left, "left behind: " + ", ".join(sorted(left)))
        missing = self.known - now - {"native"}  # the sound server's own
        expect(not missing, "taken away: " + ", ".join(sorted(missing)))
        with contextlib.suppress(FileNotFoundError):
            with open("/proc/sysvipc/shm", encoding="ascii") as file:
                makers = [line.split()[4] for line in file]
            expect(str(self.stage.program.pid) not in makers, "shared memory is left behind")

"""One run of random_faults.py: a start of the program and its end, with a fault between."""
import collections
import contextlib
import glob
import os
import random
import shutil
import signal
import subprocess
import threading
import time

import injected_faults as faults
from fault_stage import FaultStage, crash, expect
from crash_stage import Failure, wait_until

MARK = "VORNIC_RANDOM_FAULTS_RUN"  # in the environment of the program, and of what it starts
ENDS_WITHIN = 45  # seconds, on a busy machine

def is_root():
    return os.geteuid() == 0


class Delays(threading.Thread):
    """How long the threads of a process waited for a processor: a recorder on a busy machine may be as late, also where
    the counter on the screen is not."""

    PERIOD = 0.2
    WINDOW = 10  # periods in which waits are added up

    def __init__(self, pid):
        super().__init__(daemon=True)
        self._pid = pid
        self._waits = []  # (moment, seconds by thread since the one before)
        self.start()

    def run(self):
        totals = {}
        while (now := self._totals()) is not None:
            self._waits.append((time.monotonic(), {name: total - totals.get(name, 0) for name, total in now.items()}))
            totals = now
            time.sleep(self.PERIOD)

    def _totals(self):
        """By the names of the threads' files; None once the process has ended."""
        totals = {}
        for path in glob.glob(f"/proc/{self._pid}/task/[0-9]*/schedstat"):
            with contextlib.suppress(OSError):
                with open(path, encoding="ascii") as file:
                    totals[path] = int(file.read().split()[1]) / 1e9
        return totals or None

    def longest(self, begin, end):
        """Of the seconds that one thread waited within the window."""
        waits = [by_thread for moment, by_thread in list(self._waits) if begin - 0.5 <= moment <= end + 0.5]
        longest = 0.0
        for first in range(len(waits)):
            sums = collections.Counter()
            for by_thread in waits[first:first + self.WINDOW]:
                sums.update(by_thread)
            longest = max(longest, max(sums.values(), default=0.0))
        return longest


class Run:
    """One start of the program and its end. Made by a worker, used on its thread only."""

    def __init__(self, arguments, options, number):
        self.random = random.Random(f"{arguments.seed}-{number}")
        kinds = arguments.faults
        kind = random.Random(f"{arguments.seed}-{number // len(kinds)}").sample(kinds, len(kinds))[number % len(kinds)]
        self.name = kind.__doc__.splitlines()[0]
        self.face = self.random.choice(kind.FACES)
        self.moment = self.random.choice(kind.MOMENTS)
        self.sound = kind.SOUND or self.random.random() < 0.25
        self.seconds = self.random.uniform(0.5, 6)
        programs = crash.Programs(arguments.build)
        self.limiter = os.path.join(arguments.build, "tests/faults/liblimit_threads.so")
        self.stage = FaultStage(programs, self.sound)
        self.work = self.stage.folder
        self.disk = self.work + "/disk"
        self.movies = self.disk + "/movies"
        self.cache = self.disk + "/cache"
        self.movie = self.movies + "/movie.mp4"
        self.saved = self.work + "/saved"
        self.environment = dict(self.stage.environment, XDG_CACHE_HOME=self.cache, TMPDIR=self.work + "/tmp",
                                **{MARK: self.work})
        # Folders that can only be read are so for the administrator, too.
        self.prefix = ["setpriv", "--bounding-set=-dac_override", "--inh-caps=-dac_override"] if is_root() else []
        self.output = None
        self.foreign = {}  # what other files hold, by their paths
        self.movies_of_others = []  # other recordings than the run's own
        self.stopped = None
        self.is_terminated = False
        self.struck = None
        self.first_picture = None
        self.status = None
        self.asked = []
        self.delays = None
        self._ends = contextlib.ExitStack()
        self._ends.callback(self.stage.close)
        self.options = options
        self.fault = kind(self)

    def close(self):
        for process in self.processes():
            with contextlib.suppress(ProcessLookupError):
                os.kill(process, signal.SIGKILL)
        self._ends.close()

    def when_closed(self, command):
        self._ends.callback(subprocess.run, command, check=False, stderr=subprocess.DEVNULL)

    def pause(self, low, high):
        time.sleep(self.random.uniform(low, high))

    # ---- the run

    def execute(self):
        """Until the program is no more. Returns the files that there were before it."""
        self.fault.prepare()
        for folder in (self.movies, self.cache, self.saved, self.work + "/tmp"):
            os.makedirs(folder, mode=0o700, exist_ok=True)
        self.store_options()
        known = self.files()
        if self.moment == "before":
            self.strike()
        self.start()
        self.approach()
        if self.moment != "before":
            self.strike()
        self.end()
        return known

    def store_options(self):
        """The window has sound by its options."""
        os.makedirs(self.work + "/config/kavlor", exist_ok=True)
        if self.sound and self.options:
            with open(self.work + "/config/kavlor/Vornic.conf", "w", encoding="ascii") as file:
                file.write(self.options)

    def start(self):
        stage = self.stage
        stage.environment = self.environment
        arguments = ["--record=full"] if self.face == "window" else ["record", "--ignore-low-space"]
        if self.face == "command" and self.sound:
            arguments.append("--audio")
        streams = {} if self.output is None else {"stdout": self.output, "stderr": self.output}
        command = [*self.prefix, stage.programs.vornic, *arguments, self.movie]
        stage.run_command(command, start_new_session=True, **streams)
        self.delays = Delays(stage.program.pid)
        if self.output is not None:
            os.close(self.output)
        # What else is started from here on has all that it needs.
        for name in ("LD_PRELOAD", "THREADS_AT_MOST", "THREADS_UNTIL"):
            self.environment.pop(name, None)

    def strike(self):
        self.struck = time.monotonic()
        self.fault.inject()

    def has_ended(self):
        return self.stage.program.poll() is not None

    def has_pictures(self):
        spool = self.stage.spool()
        with contextlib.suppress(OSError):
            return bool(spool) and os.path.getsize(spool) > 0
        return False

    def approach(self):
        """Returns at the moment of the fault; for one that was there before, when it is time to stop."""
        if self.moment == "starting":
            self.wait(self.random.uniform(0, 1.0 if self.face == "command" else 3.0))
            return
        seconds = 8 if self.moment == "before" else 30
        with contextlib.suppress(Failure if self.moment == "before" else ()):
            wait_until(lambda: self.has_pictures() or self.has_ended(), "pictures were spooled", seconds)
        expect(self.moment == "before" or not self.has_ended(), "the program ended: " + self.stage.said())
        if self.has_pictures():
            self.wait(self.seconds)
        if self.moment in ("stopping", "writing"):
            self.stop()
            if self.moment == "writing":
                wait_until(lambda: os.listdir(self.movies) or self.has_ended(), "a movie was begun", poll=0.001)
            self.pause(0, 0.15)

    def wait(self, seconds):
        """Unless the program ends before. Takes note of when there were pictures."""
        deadline = time.monotonic() + seconds
        while time.monotonic() < deadline and not self.has_ended():
            if self.first_picture is None and self.has_pictures():
                self.first_picture = time.monotonic()
            time.sleep(0.02)

    def signal(self, number):
        with contextlib.suppress(ProcessLookupError):
            self.stage.program.send_signal(number)

    def wait_for_rest(self):
        """Until the window has a movie, or asks something, or is idle."""
        def rests():
            return self.has_ended() or self.own_movies() or not self.stage.spool() or self.questions()
        with contextlib.suppress(Failure):
            wait_until(rests, "the window came to rest", 15, poll=0.05)

    def stop(self):
        """As a user may do it."""
        if self.face == "window" and self.random.random() < 0.5 and (self.struck is None or self.fault.LEAVES_DESKTOP):
            self.stop_by_command()
        else:
            self.stopped = self.stopped or time.monotonic()
            self.terminate()

    def terminate(self):
        """Once: a second time means something else."""
        if not self.is_terminated:
            self.is_terminated = True
            self.signal(signal.SIGTERM)

    def stop_by_command(self):
        self.stopped = self.stopped or time.monotonic()
        done = self.stage.second_start("--stop")
        expect(done.returncode in (0, 1), f"--stop ends with {done.returncode}: {done.stdout.decode()}")

    def end(self):
        """Until the program is no more; most faults let it go on until it is asked to end."""
        ends = self.fault.ENDS or (isinstance(self.fault, faults.FrozenDisplay) and self.face == "command"
                                   and self.first_picture)
        if not ends:
            self.wait(self.random.uniform(0.3, 1.5))
            self.asked = self.questions()
            if self.stopped is None:
                self.stop()
            if self.face == "window":
                self.wait_for_rest()
                self.asked += self.questions()
                self.terminate()  # --stop leaves the window there
        try:
            self.status = self.stage.wait_for_end(ENDS_WITHIN)
        except Failure:
            raise Failure(f"the program does not end; it said: {self.stage.said()}") from None
        wait_until(self.has_left_nobody, "no process of the program was left", ENDS_WITHIN, poll=0.02)

    def questions(self):
        """What stands on the screen beside the main window, by its titles."""
        if self.has_ended() or self.face == "command" or not self.fault.LEAVES_DESKTOP:
            return []
        names = list(self.stage.windows().values())
        others = [name for name in names if name not in ("Stop recording", "Vornic") and not name.endswith("– Vornic")]
        return sorted(others) or ["(a question)"] * (names.count("Vornic") > 1)

    def own_movies(self):
        paths = glob.glob(self.movies + "/*.mp4") + glob.glob(self.saved + "/*.mp4")
        return [path for path in paths if path not in self.foreign and path not in self.movies_of_others]

    def files(self):
        return {os.path.relpath(os.path.join(path, name), self.work) for path, folders, files in os.walk(self.work)
                for name in folders + files}

    def has_left_nobody(self):
        """In two looks: a process that becomes another program has no environment for a moment."""
        return not self.processes() and not (time.sleep(0.1) or self.processes())

    def processes(self):
        """Of the program, and of what it has started."""
        found = []
        mark = f"{MARK}={self.work}\0".encode()
        for path in glob.glob("/proc/[0-9]*/environ"):
            with contextlib.suppress(OSError):
                with open(path, "rb") as file:
                    if mark in file.read() + b"\0":
                        found.append(int(path.split("/")[2]))
        return found

    def keep_stacks(self):
        """Of a program that hangs, where there is a debugger."""
        if self.stage.program and not self.has_ended() and shutil.which("gdb"):
            with open(self.work + "/stacks", "wb") as file:
                command = ["gdb", "-p", str(self.stage.program.pid), "-batch", "-ex", "thread apply all backtrace"]
                subprocess.run(command, stdout=file, stderr=file, check=False)

"""What the tests of faults share: a screen with a counter, a window manager, a session bus that is listened to, and the
program on them. See crash_stage.py for the counter, and for how a movie is held against it.

A test does something to what the program stands on and returns a Told; run_all() prints one row for each: the fault, what
the user was told, what was kept.
"""
import argparse
import collections
import concurrent.futures
import contextlib
import functools
import os
import shutil
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "crash"))
import crash_stage as crash  # noqa: E402
from crash_stage import Failure, wait_until  # noqa: E402

Told = collections.namedtuple("Told", "told kept")


def expect(condition, what):
    if not condition:
        raise Failure(what)


class FaultStage:
    """The stage of one test, in a folder of its own."""

    def __init__(self, programs, sound=False):
        self.programs = programs
        self.folder = tempfile.mkdtemp(prefix="vornic-fault-")
        self._ends = contextlib.ExitStack()
        self._ends.callback(shutil.rmtree, self.folder, ignore_errors=True)
        try:
            self._build(sound)
        except BaseException:
            self._ends.close()
            raise

    def _build(self, sound):
        self.stage = crash.Stage(self.programs, self.folder, sound)
        self._ends.callback(self.stage.close)
        self.server = self.stage.server
        self.environment = dict(self.stage.environment, QT_QPA_PLATFORM="xcb", XDG_CACHE_HOME=self.folder + "/cache",
                                PATH=self._silent_launcher() + ":" + os.environ["PATH"])
        self.bus = self._start_bus()
        self.start(["openbox"])
        wait_until(self._is_managed, "there was a window manager", poll=0.05)
        self.log = self.folder + "/log"
        self.movie = self.folder + "/movie.mp4"
        self.program = None
        self.main_window = None
        self.started = None

    def start(self, command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        process = subprocess.Popen(command, env=self.environment, stderr=subprocess.DEVNULL, **options)
        self._ends.callback(process.wait)
        self._ends.callback(process.kill)
        return process

    def _is_managed(self):
        """A window that comes while the window manager does may never be shown."""
        said = subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], env=self.environment, capture_output=True,
                              text=True, check=False).stdout
        return "window id" in said

    def _silent_launcher(self):
        """Where a program stands that would open folders with whatever this machine has for them."""
        os.mkdir(self.folder + "/bin")
        with open(self.folder + "/bin/xdg-open", "w", encoding="ascii") as file:
            file.write("#!/bin/sh\n")
        os.chmod(self.folder + "/bin/xdg-open", 0o755)
        return self.folder + "/bin"

    def _start_bus(self):
        """A session bus that starts nothing; a monitor writes down what is called on it."""
        configuration = self.folder + "/bus.conf"
        with open(configuration, "w", encoding="ascii") as file:
            file.write(f"<busconfig><type>session</type><listen>unix:path={self.folder}/bus</listen>"
                       "<policy context='default'><allow send_destination='*'/><allow receive_sender='*'/>"
                       "<allow own='*'/></policy></busconfig>")
        read, write = os.pipe()
        bus = self.start(["dbus-daemon", "--nofork", "--nosyslog", "--config-file=" + configuration,
                          f"--print-address={write}"], pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as address:
            address.readline()  # it takes connections now
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = f"unix:path={self.folder}/bus"
        calls = open(self.folder + "/calls", "w", encoding="ascii")
        self._ends.callback(calls.close)
        self.start(["dbus-monitor", "--session", "interface='org.freedesktop.Notifications'"], stdout=calls)
        wait_until(lambda: "NameAcquired" in self.calls(), "the bus was listened to")
        return bus

    def calls(self):
        with open(self.folder + "/calls", encoding="utf-8", errors="replace") as file:
            return file.read()

    def close(self):
        if self.program and self.program.poll() is None:
            self.program.kill()
            self.program.wait()
        self._ends.close()

    # ---- the program

    def run(self, *arguments, limit=None):
        self.run_command([self.programs.vornic, *arguments], preexec_fn=crash.limiter(limit))

    def run_command(self, command, **options):
        """The program, by a command that becomes it."""
        log = open(self.log, "ab")
        self._ends.callback(log.close)
        self.started = time.monotonic()
        self.program = subprocess.Popen(command, **{"env": self.environment, "stdout": log, "stderr": log,
                                                    "stdin": subprocess.DEVNULL, **options})

    def second_start(self, *arguments):
        return subprocess.run([self.programs.vornic, *arguments], env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=30, check=False)

    def stop_if_recording(self):
        """Returns once it was stopped, or had ended."""
        expect(self.second_start("--stop").returncode in (0, 1), "the program does not answer")

    def hand_over(self, *arguments):
        """A second start, which leaves what it asks for to the program that runs."""
        done = self.second_start(*arguments)
        expect(done.returncode == 0, f"a second start ended with {done.returncode}: {done.stdout.decode().strip()}")

    def spool(self):
        folder = crash.recordings_folder(self.environment["XDG_CACHE_HOME"])
        names = [name for name in crash.list_folder(folder) if not name.startswith(".")]
        return folder + "/" + names[0] + "/vornicvideo.tmp" if names else ""

    def wait_for_pictures(self, size=1):
        def has_pictures():
            with contextlib.suppress(OSError):
                return os.path.getsize(self.spool()) >= size
            return self.program.poll() is not None
        wait_until(has_pictures, "pictures were spooled")
        expect(self.program.poll() is None, "the program ended: " + self.said())

    def record(self, *arguments, kilobytes=200, limit=None):
        """Until some of the recording is in its spool."""
        self.run(*(arguments or ("--record=full",)), self.movie, limit=limit)
        self.wait_for_pictures(kilobytes * 1000)

    def wait_for_window(self, title):
        """The number of a visible window with such a title."""
        return self.wait_for_number(
            lambda: self.xdotool("search", "--onlyvisible", "--name", title).split(), f"there was a window {title}")

    def wait_for_number(self, find, what):
        """The last of the windows that find() gives, once there is one: soon after it may be gone again."""
        found = []

        def is_there():
            found[:] = find()
            return found or self.program.poll() is not None
        wait_until(is_there, what, poll=0.05)
        expect(found, "the program ended: " + self.said())
        return found[-1]

    def windows(self):
        """The names of the program's windows on the screen, by their numbers; one that has just gone has none."""
        numbers = self.xdotool("search", "--onlyvisible", "--pid", str(self.program.pid), "--name", ".").split()
        names = {number: self.xdotool("getwindowname", number) for number in numbers}
        return {number: name for number, name in names.items() if name}

    def wait_for_question(self, known=()):
        """The number of a window that is neither the main window nor the stop bar, nor known."""
        main = self.main_window

        def find():
            return [number for number, name in self.windows().items()
                    if number != main and number not in known and name != "Stop recording"]
        return self.wait_for_number(find, "something was asked")

    def xdotool(self, *arguments):
        return subprocess.run(["xdotool", *arguments], env=self.environment, capture_output=True, text=True,
                              check=False).stdout.strip()

    def wait_for_end(self, seconds=60):
        """The exit status; negative is a signal, as of a crash."""
        wait_until(lambda: self.program.poll() is not None, "the program ended", seconds)
        return self.program.returncode

    def said(self):
        with open(self.log, encoding="utf-8", errors="replace") as file:
            return file.read().strip()

    def sentences(self):
        """What the program itself logged."""
        return " | ".join(line.removeprefix("vornic: ") for line in self.said().splitlines()
                          if line.startswith("vornic: "))

    # ---- what is kept

    def unfinished(self):
        return crash.unfinished(self.environment["XDG_CACHE_HOME"])

    def parts(self):
        """Movies that are being written."""
        return [name for name in os.listdir(self.folder) if name.endswith(".part")]

    def options_are_stored(self):
        with contextlib.suppress(OSError):
            with open(self.folder + "/config/kavlor/Vornic.conf", encoding="ascii") as file:
                return "com.kavlor.options=" in file.read()
        return False

    def check_movie(self, end, is_frozen=False):
        """The movie shows all that was on the screen up to the moment, but for a machine's lateness. A picture that was
        taken just before the screen froze may have its time from when that was found out."""
        late = self.stage.lateness(self.started, end)
        movie = crash.Movie(self.movie)
        if is_frozen and len(movie.numbers) > 1:
            movie.numbers[-1] = movie.numbers[-2]
            movie.times[-1] = movie.times[-2]
        shown = crash.check_frames(movie, self.stage, self.started, late)
        lost = end - shown[-1]
        expect(lost < 0.4 + late, f"{lost:.2f} s are lost")
        return f"movie, {lost:.2f} s lost"


def run_one(programs, test):
    """Whether it went well, and its row."""
    name = test.__name__.replace("_", " ")
    with contextlib.closing(FaultStage(programs)) as stage:
        try:
            result = test(stage)
            return True, f"{name}\n  told: {result.told}\n  kept: {result.kept}"
        except (Failure, OSError) as failure:
            return False, f"{name}\n  FAILED: {failure}\n  said: {stage.said() if stage.program else ''}"


def run_all(tests, description, jobs=1):
    """Runs each test on a stage of its own, some of them side by side; the exit status."""
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=os.path.join(crash.TREE, "build/release"), help="the folder of the built tree")
    parser.add_argument("only", nargs="*", help="run these tests")
    arguments = parser.parse_args()
    missing = [tool for tool in ("Xvfb", "openbox", "xprop", "dbus-daemon", "dbus-monitor", "gdbus", "ffmpeg", "ffprobe")
               if not shutil.which(tool)]
    if missing:
        print("not installed: " + ", ".join(missing))
        return 77
    tests = [test for test in tests if not arguments.only or test.__name__ in arguments.only]
    is_well = True
    with concurrent.futures.ThreadPoolExecutor(jobs) as workers:
        for went_well, row in workers.map(functools.partial(run_one, crash.Programs(arguments.build)), tests):
            is_well = is_well and went_well
            print(row, flush=True)
    return 0 if is_well else 1

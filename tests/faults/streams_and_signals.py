#!/usr/bin/env python3
"""streams_and_signals.py: what `vornic record` makes of signals, of terminals and of standard streams that are not there.

Each fault meets a recording of the fake display. Printed are what the user was told and what was kept; after each there
must be either a whole movie or one recording that `vornic recover` makes a movie of, and no other file. The faults run
side by side.

Needs the built tree and ffprobe. Exit status: 0 nothing was lost, 1 something was.
"""
import argparse
import concurrent.futures
import os
import pty
import shutil
import signal
import subprocess
import sys
import tempfile
import termios
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../crash"))
import crash_stage as crash
from crash_stage import Failure


class Recording:
    """A recorder in a folder of its own."""

    def __init__(self, vornic, work, options=("--duration", "1.5"), shell=None, **streams):
        self.vornic = vornic
        self.work = work
        os.makedirs(work + "/movies")
        self.environment = dict(os.environ, VORNIC_DISPLAY="fake", VORNIC_AUDIO="fake", LC_ALL="C.UTF-8", HOME=work,
                                XDG_CACHE_HOME=work + "/cache", XDG_CONFIG_HOME=work + "/config",
                                DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        self.errors = work + "/errors"
        command = [vornic, "record", "--ignore-low-space", *options, "movies/movie.mp4"]
        if shell:
            command = ["sh", "-c", f'{shell}; exec "$0" "$@"', *command]
        with open(self.errors, "wb") as errors:
            self.process = subprocess.Popen(command, cwd=work, env=self.environment,
                                            **{"stdout": subprocess.DEVNULL, "stderr": errors, **streams})

    def said(self):
        with open(self.errors, encoding="utf-8", errors="replace") as file:
            return file.read()

    def wait_for(self, text):
        crash.wait_until(lambda: text in self.said() or self.process.poll() is not None, f'"{text}" was told')

    def send(self, *numbers):
        """All at once, as far as the recorder can tell."""
        for number in (signal.SIGSTOP, *numbers, signal.SIGCONT):
            self.process.send_signal(number)

    def end(self):
        try:
            return self.process.wait(60)
        except subprocess.TimeoutExpired:
            self.process.kill()
            self.process.wait()
            raise Failure("it does not end") from None

    def kept(self):
        """What there is now; whatever could not be made a movie is a failure."""
        movie = self.work + "/movies/movie.mp4"
        left = crash.unfinished(self.work + "/cache")
        others = set(crash.list_folder(self.work + "/movies")) - {"movie.mp4"}
        others |= set(os.listdir(self.work)) - {"cache", "config", "movies", "errors"}
        if others:
            raise Failure("left behind: " + ", ".join(sorted(others)))
        if os.path.exists(movie) and not left:
            return f"the movie, {length_of(movie):.1f} s"
        if len(left) != 1 or os.path.exists(movie):
            raise Failure(f"{len(left)} recordings are kept: {self.said()}")
        os.makedirs(self.work + "/movies", exist_ok=True)
        status, said = crash.run([self.vornic, "recover", left[0], movie], self.environment)
        if status != 0:
            raise Failure(f"the recording cannot be made a movie: {said}")
        return f"the recording, {length_of(movie):.1f} s"


def length_of(movie):
    probed = subprocess.check_output(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", movie])
    return float(probed)


def twice(vornic, work):
    recording = Recording(vornic, work, options=())
    recording.wait_for("00:00:00")
    recording.send(signal.SIGINT, signal.SIGTERM)
    return recording, 0, "Ctrl-\\ keeps it for later"


def quit_recording(vornic, work):
    recording = Recording(vornic, work, options=())
    recording.wait_for("00:00:00")
    time.sleep(0.3)  # of the recording, so that there is something to keep
    recording.send(signal.SIGQUIT)
    return recording, 1, "The recording is kept: vornic recover "


def hang_up_ignored(vornic, work):
    recording = Recording(vornic, work, shell="trap '' HUP")
    recording.wait_for("00:00:00")
    recording.send(signal.SIGHUP)
    recording.end()
    if length_of(work + "/movies/movie.mp4") < 1.2:
        raise Failure("it ended the recording")
    return recording, 0, ""


def stopped_terminal(vornic, work):
    controller, device = pty.openpty()
    termios.tcflow(device, termios.TCOOFF)
    recording = Recording(vornic, work, stderr=device)
    recording.end()
    os.close(device)
    os.close(controller)
    return recording, 0, ""


def closed_descriptors(vornic, work):
    return Recording(vornic, work, shell="exec <&- >&- 2>&-"), 3, ""


def full_answer(vornic, work):
    return Recording(vornic, work, shell="exec >/dev/full"), 3, "Standard output could not be written: No space left"


def removed_folder(vornic, work):
    recording = Recording(vornic, work)
    recording.wait_for("00:00:00")
    os.rmdir(work + "/movies")
    return recording, 1, "The recording is kept: vornic recover "


FAULTS = {
    "Ctrl-C twice at once": twice,
    "SIGQUIT while recording": quit_recording,
    "SIGHUP under nohup": hang_up_ignored,
    "terminal stopped": stopped_terminal,
    "closed descriptors": closed_descriptors,
    "full standard output": full_answer,
    "the movie's folder gone": removed_folder,
}


def run_one(fault, vornic, work):
    """Whether nothing was lost, and the row that tells of it."""
    try:
        recording, status, sentence = FAULTS[fault](vornic, work)
        ended = recording.end()
        told = [line for line in recording.said().splitlines() if not line.startswith(("00:00:", "Writing the movie:"))]
        kept = recording.kept()
        if ended != status:
            raise Failure(f"the status is {ended}, not {status}: {recording.said()}")
        if not any(sentence in line for line in told or [""]):
            raise Failure(f'"{sentence}" was not told: {recording.said()}')
        return True, f"{fault:24}  {ended}  {kept:24}  {told[-1] if told else ''}"
    except (Failure, OSError, subprocess.SubprocessError) as failure:
        return False, f"{fault:24}  FAILED: {failure}"


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=os.path.join(crash.TREE, "build/release"), help="the folder of the built tree")
    arguments = parser.parse_args()
    if not shutil.which("ffprobe"):
        print("not installed: ffprobe")
        return 77
    vornic = crash.Programs(arguments.build).vornic
    print(f"{'fault':24}  status  {'kept':19}  told last")
    with tempfile.TemporaryDirectory(prefix="vornic-faults-") as folder:
        with concurrent.futures.ThreadPoolExecutor(2) as workers:
            runs = [workers.submit(run_one, fault, vornic, f"{folder}/{number}") for number, fault in enumerate(FAULTS)]
            results = [run.result() for run in runs]
    for _, row in results:
        print(row)
    return 0 if all(fine for fine, _ in results) else 1


if __name__ == "__main__":
    sys.exit(main())

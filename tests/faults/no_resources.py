"""no_resources.py [--build FOLDER]: recordings on a system that has no more threads, descriptors or memory to give.

Where it is so from the start, the program says so in a sentence and ends with status 1. Where it becomes so while it
records, what it has spooled becomes a movie or is kept, and can be made into one once there is enough again.
"""
import argparse
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "crash"))
import crash_stage as crash  # noqa: E402
from crash_stage import Failure  # noqa: E402

SHORT = "0.3"  # seconds of a recording that succeeds
ENDS_WITHIN = 30


class Faults:
    """A screen to record, and a folder for each fault. Made by main()."""

    def __init__(self, programs, stage, folder):
        self.programs, self.stage, self.folder = programs, stage, folder
        self.count = 0
        self.limiter = os.path.join(os.path.dirname(programs.counter), "../faults/liblimit_threads.so")

    def work(self):
        self.count += 1
        path = f"{self.folder}/{self.count}"
        os.makedirs(path + "/movies")
        return path

    def start(self, name, limits=(), **environment):
        """A recording that lacks something from its start: its status and what it said."""
        work = self.work()

        def limit():
            for what, count in limits:
                resource.setrlimit(what, (count, count))
        environment = dict(self.stage.environment, XDG_CACHE_HOME=work + "/cache", **environment)
        command = [self.programs.vornic, "record", "--ignore-low-space", "--duration", SHORT, work + "/movies/movie.mp4"]
        try:
            done = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.STDOUT, timeout=ENDS_WITHIN, check=False, preexec_fn=limit)
        except subprocess.TimeoutExpired as error:
            raise Failure(f"{name}: it did not end, and said {error.output}") from error
        said = done.stdout.decode("utf-8", "replace").strip()
        self.judge(name, work, done.returncode, said)
        return done.returncode

    def become(self, name, take, **environment):
        """A recording from which something is taken while it runs."""
        work = self.work()
        recorder = crash.Recorder(self.programs, self.stage, work, preload={
            key: value.replace("WORK", work) for key, value in environment.items()})
        try:
            recorder.wait_until(recorder.has_pictures, f"{name}: there were pictures")
            take(recorder.process.pid, work)
            recorder.stop()
            status = recorder.process.wait(timeout=ENDS_WITHIN)
        except subprocess.TimeoutExpired as error:
            raise Failure(f"{name}: it did not end, and said {recorder.said()[-1000:]}") from error
        finally:
            recorder.kill()
        self.judge(name, work, status, recorder.said())
        movie = work + "/movies/movie.mp4"
        if not os.path.exists(movie):
            kept = crash.unfinished(work + "/cache")
            if len(kept) != 1:
                raise Failure(f"{name}: {len(kept)} recordings are kept, and there is no movie")
            status, said = crash.recover(self.programs, self.stage.environment, work + "/cache", kept[0], movie)
            if status != 0:
                raise Failure(f"{name}: what was kept cannot be recovered: {said}")
        if not crash.Movie(movie).numbers:
            raise Failure(f"{name}: the movie is empty")

    @staticmethod
    def judge(name, work, status, said):
        """Prints the row of a fault; fails where the program did, or where it left what nobody knows of."""
        movies = crash.list_folder(work + "/movies")
        kept = [name for name in crash.unfinished(work + "/cache") if not name.startswith(".")]  # others are half made
        last = said.splitlines()[-1] if said else ""
        has = "movie" if movies == ["movie.mp4"] else f"{len(kept)} kept" if kept else "nothing"
        print(f"{name:38} {status:4}  {has:8} {last}", flush=True)
        if status not in (0, 1):
            raise Failure(f"{name}: status {status}, and it said {said}")
        if (status == 0) != (movies == ["movie.mp4"]) or (movies and not status == 0):
            raise Failure(f"{name}: status {status}, and the folder of movies has {movies}")
        if status == 1 and not last.startswith("vornic: "):
            raise Failure(f"{name}: it did not say why: {said[-1000:]}")
        if status == 1 and has == "nothing" and "\n00:00:0" in said:
            raise Failure(f"{name}: it recorded, and nothing is kept: {said}")
        if status == 0 and kept:
            raise Failure(f"{name}: a movie was made, and its recording is kept: {kept}")


def leave_no_threads(_, work):
    pathlib.Path(work + "/no-more").touch()


def leave_no_descriptors(pid, _):
    count = max(int(name) for name in os.listdir(f"/proc/{pid}/fd")) + 1
    resource.prlimit(pid, resource.RLIMIT_NOFILE, (count, count))


def leave_no_memory(pid, _):
    with open(f"/proc/{pid}/statm", encoding="ascii") as file:
        pages = int(file.read().split()[0])
    resource.prlimit(pid, resource.RLIMIT_AS, (pages * resource.getpagesize(),) * 2)


def run_all(faults):
    print(f"{'fault':38} status  kept     told")
    threads = {"LD_PRELOAD": faults.limiter}
    for count in (0, 15):
        if faults.start(f"{count} threads", THREADS_AT_MOST=str(count), **threads) == 0:
            raise Failure(f"{count} threads are enough, and this test of no use")
    for count in (16, 18):
        faults.start(f"{count} threads", THREADS_AT_MOST=str(count), **threads)
    faults.become("no more threads while recording", leave_no_threads, THREADS_UNTIL="WORK/no-more", **threads)
    statuses = [faults.start(f"{count} descriptors", [(resource.RLIMIT_NOFILE, count)]) for count in (4, 7, 10, 13, 20, 43)]
    if statuses[0] == 0 or statuses[-1] != 0:
        raise Failure(f"recordings by how many descriptors there were: {statuses}")
    faults.become("no more descriptors while recording", leave_no_descriptors)
    for size in (250, 400, 600, 1000):
        faults.start(f"{size} MB of memory", [(resource.RLIMIT_AS, size << 20)])
    faults.become("no more memory while recording", leave_no_memory)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    crash.add_arguments(parser)
    arguments = parser.parse_args()
    crash.skip_without_tools()
    folder = tempfile.mkdtemp()
    programs = crash.Programs(arguments.build)
    stage = crash.Stage(programs, folder, sound=False)
    try:
        run_all(Faults(programs, stage, folder))
        return 0
    except Failure as failure:
        print(f"FAILED {failure}")
        return 1
    finally:
        stage.close()
        shutil.rmtree(folder)


if __name__ == "__main__":
    signal.signal(signal.SIGPIPE, signal.SIG_DFL)
    sys.exit(main())

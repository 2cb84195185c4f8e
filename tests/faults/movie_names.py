#!/usr/bin/env python3
"""movie_names.py: what happens to the files at a movie's name and in the cache while it is recorded: by kills, by other
recordings and other programs, and by somebody who puts links in their place. Prints for each what the user was told and
what was kept.

On the fake display: needs neither an X server nor a sound server. Exit status: 0 all was as it must be, 1 something was
not.
"""
import argparse
import contextlib
import os
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import threading
import time

OLD = b"an old movie"
SECRET = b"nobody writes here"


class Failure(Exception):
    pass


def expect(condition, what):
    if not condition:
        raise Failure(what)


def wait_until(condition, what, seconds=30):
    deadline = time.monotonic() + seconds
    while not condition():
        expect(time.monotonic() < deadline, "it was waited in vain until " + what)
        time.sleep(0.005)


def put(path, contents=OLD):
    with open(path, "wb") as file:
        file.write(contents)


def contents(path):
    with open(path, "rb") as file:
        return file.read()


class Bench:
    """A folder with a cache and a folder for movies, for one case."""

    def __init__(self, program):
        self.program = program
        self.folder = tempfile.mkdtemp(prefix="vornic-names-")
        self.movies = self.folder + "/movies"
        self.cache = self.folder + "/cache/com.kavlor.vornic"
        os.mkdir(self.movies)
        self.movie = self.movies + "/movie.mp4"
        self.environment = {name: value for name, value in os.environ.items()
                            if name not in ("DISPLAY", "WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS")}
        self.environment.update(HOME=self.folder, XDG_CACHE_HOME=self.folder + "/cache", LC_ALL="C.UTF-8",
                                XDG_CONFIG_HOME=self.folder + "/config", VORNIC_DISPLAY="fake")
        self.running = []

    def close(self):
        for process in self.running:
            if process.poll() is None:
                process.kill()
            process.wait()
        shutil.rmtree(self.folder, ignore_errors=True)

    def start(self, *options, movie=None):
        """A recording that runs; its errors go to a file."""
        number = len(self.running)
        errors = f"{self.folder}/errors-{number}"
        with open(errors, "wb") as file:
            process = subprocess.Popen(
                [self.program, "record", "--ignore-low-space", "--region", "0,0,320,240", *options, movie or self.movie],
                env=self.environment, stdout=subprocess.PIPE, stderr=file, cwd=self.movies)
        process.errors = errors
        self.running.append(process)
        wait_until(lambda: b"00:00:0" in contents(errors) or process.poll() is not None, "the recording began")
        return process

    def spools(self):
        with contextlib.suppress(FileNotFoundError):
            return [f"{self.cache}/recordings/{name}" for name in sorted(os.listdir(self.cache + "/recordings"))
                    if not name.startswith(".")]
        return []

    def wait_for_pictures(self):
        """Until the journal tells of one: it does so only once that is in the spool."""
        def sizes(name):
            return sum(os.stat(f"{spool}/{name}").st_size for spool in self.spools())
        wait_until(lambda: sizes("vornicvideo.tmp") > 0, "there were pictures")
        journal = sizes("journal")
        wait_until(lambda: sizes("journal") > journal, "the journal told of them")

    def end(self, process, number=signal.SIGTERM):
        """Its status, the last line of its answer, and what it said about what went wrong."""
        process.send_signal(number)
        return self.finish(process)

    @staticmethod
    def finish(process):
        answer = process.communicate(timeout=60)[0].strip()
        said = contents(process.errors).decode("utf-8", "replace")
        told = [line.removeprefix("vornic: ") for line in said.splitlines() if line.startswith("vornic: ")]
        return process.returncode, answer.split(b"\n")[-1], " ".join(told)

    def run(self, *options, movie=None):
        return self.finish(self.start("--duration", "0.3", *options, movie=movie))

    def recover(self):
        done = subprocess.run([self.program, "recover"], env=self.environment, stdout=subprocess.PIPE, check=True)
        ids = [line.split()[0] for line in done.stdout.decode().splitlines()]
        expect(len(ids) == 1, f"one recording can be recovered, not {len(ids)}")
        file = self.movies + "/recovered.mp4"
        subprocess.run([self.program, "recover", ids[0], file], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        expect_movie(file)


def expect_movie(path):
    probe = subprocess.run(["ffprobe", "-v", "error", "-show_entries", "stream=codec_name", "-of", "csv=p=0", path],
                           stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
    expect(probe.stdout.strip() == b"h264", f"{path!r} is no movie: {probe.stdout!r}")


def killed_while_replacing(bench):
    put(bench.movie)
    recording = bench.start("--overwrite")
    bench.wait_for_pictures()
    _, _, told = bench.end(recording, signal.SIGKILL)
    expect(contents(bench.movie) == OLD, "the old movie is gone")
    bench.recover()
    return told, "the old movie, and the recording"


def two_of_one_name(bench):
    first = bench.start()
    second = bench.start()
    bench.wait_for_pictures()
    status, answer, _ = bench.end(first)
    expect(status == 0 and answer == bench.movie.encode(), "the first has no movie")
    before = contents(bench.movie)
    status, answer, told = bench.end(second)
    other = bench.movies + "/movie 2.mp4"
    expect(status == 0 and answer == other.encode(), f"the second said {answer}")
    expect(contents(bench.movie) == before, "the first movie was replaced")
    expect_movie(other)
    return told, "both movies"


def folder_renamed(bench):
    put(bench.movie)
    recording = bench.start("--overwrite")
    bench.wait_for_pictures()
    os.rename(bench.movies, bench.folder + "/elsewhere")
    status, _, told = bench.end(recording)
    expect(status == 1, "a movie in a folder that is gone was called whole")
    expect(os.listdir(bench.folder + "/elsewhere") == ["movie.mp4"], "something else is in the folder")
    expect(contents(bench.folder + "/elsewhere/movie.mp4") == OLD, "the old movie is gone")
    os.mkdir(bench.movies)
    bench.recover()
    return told, "the old movie, and the recording"


def no_file(bench):
    os.mkfifo(bench.movie)
    status, _, told = bench.run("--overwrite")
    expect(status == 1, "a pipe was replaced")
    expect(stat.S_ISFIFO(os.lstat(bench.movie).st_mode), "the pipe is gone")
    return told, "the pipe"


def link_followed(bench):
    os.mkdir(bench.folder + "/disk")
    os.symlink("../disk/there.mp4", bench.movie)
    status, _, told = bench.run()
    expect(status == 0 and os.path.islink(bench.movie), "the link was not followed")
    expect_movie(bench.folder + "/disk/there.mp4")
    return told, "the link, and the movie where it leads"


def bytes_that_are_no_text(bench):
    name = bench.movies.encode() + b"/caf\xe9.mp4"
    status, answer, told = bench.run(movie=name)
    expect(status == 0 and answer == name, f"it answered {answer}")
    expect_movie(name)
    return told, "every byte of the name"


def open_cache(bench):
    os.makedirs(bench.cache)
    os.chmod(bench.cache, 0o777)
    status, _, told = bench.run()
    expect(status == 1 and os.listdir(bench.cache) == [], "a cache that all can write to was used")
    return told, "nothing was begun"


def links_in_the_place_of_files(bench):
    """Somebody who can write to both folders puts links in place of all that is recorded, all the time."""
    secret = bench.folder + "/secret"
    put(secret, SECRET)
    ended = threading.Event()

    def attack():
        while not ended.is_set():
            targets = [f"{spool}/{name}" for spool in bench.spools()
                       for name in ("vornicvideo.tmp", "vornicaudio.tmp", "journal")]
            targets += [f"{bench.movies}/{name}" for name in os.listdir(bench.movies) if name.endswith(".part")]
            for target in targets:
                with contextlib.suppress(OSError):
                    os.unlink(target)
                    os.symlink(secret, target)

    attacker = threading.Thread(target=attack)
    attacker.start()
    told = ""
    try:
        for _ in range(5):
            told = bench.run("--overwrite")[2]
    finally:
        ended.set()
        attacker.join()
    expect(contents(secret) == SECRET, "what the links led to was written to")
    for name in os.listdir(bench.movies):
        if name == "movie.mp4":
            expect(not os.path.islink(bench.movie), "a link was called a movie")
    return told, "what the links led to"


CASES = [killed_while_replacing, two_of_one_name, folder_renamed, no_file, link_followed, bytes_that_are_no_text,
         open_cache, links_in_the_place_of_files]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--build", required=True, help="folder with the built program")
    program = os.path.abspath(parser.parse_args().build) + "/src/app/vornic"
    failures = 0
    for case in CASES:
        bench = Bench(program)
        try:
            told, kept = case(bench)
            told = told.replace(bench.folder, "…")
            print(f"{case.__name__}\n  told: {told or 'nothing'}\n  kept: {kept}", flush=True)
        except (Failure, OSError, subprocess.SubprocessError) as failure:
            failures += 1
            print(f"{case.__name__}\n  FAILED: {failure}", flush=True)
        finally:
            bench.close()
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())

"""What the crash tests share: a screen whose contents are known, recordings of it, and movies read back.

A stage is an X server and, where it is wanted, a sound server of the test's own, with vornic_show_counter on the
screen: it tells when each number could be seen, so that a movie tells how much of the screen it has.
"""
import contextlib
import hashlib
import json
import os
import re
import resource
import shutil
import signal
import stat
import subprocess
import sys
import tempfile
import time

SIZE = (320, 180)
BITS = 20
PERIOD = 1 / 30  # of the counter, and of the grabs
TREE = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class Failure(Exception):
    """The program, or the machine, did what it must not; the text says what."""


class Programs:
    """Where the built programs are."""

    def __init__(self, build):
        self.vornic = os.path.join(build, "src/app/vornic")
        self.counter = os.path.join(build, "tests/crash/vornic_show_counter")
        self.forget = os.path.join(build, "tests/crash/libforget_unsynced.so")


def add_arguments(parser):
    parser.add_argument("--seed", type=int, default=None, help="the same seed gives the same moments")
    parser.add_argument("--build", default=os.path.join(TREE, "build/release"), help="the folder of the built tree")
    parser.add_argument("--jobs", type=int, default=4, help="how many run side by side")
    parser.add_argument("--keep", action="store_true", help="keep what is left of failed ones, and say where")


def skip_without_tools():
    """Tests end as skipped where the machine lacks one."""
    missing = [tool for tool in ("Xvfb", "pulseaudio", "ffmpeg", "ffprobe") if not shutil.which(tool)]
    if missing:
        print("not installed: " + ", ".join(missing))
        sys.exit(77)


def wait_until(condition, what, seconds=30.0, poll=0.005):
    end = time.monotonic() + seconds
    while not condition():
        if time.monotonic() > end:
            raise Failure("waited in vain until " + what)
        time.sleep(poll)


class Stage:
    """A screen of its own. Made by a worker, used on its thread only."""

    def __init__(self, programs, folder, sound):
        self.folder = folder
        self.shown = []  # (number, seconds of the monotonic clock by which it could be seen)
        self._started = contextlib.ExitStack()
        self._line_rest = ""
        read, write = os.pipe()
        self.server = self._start(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24", "-nolisten", "tcp",
                     "-noreset"], pass_fds=[write])
        os.close(write)
        with os.fdopen(read) as number:
            display = number.readline().strip()
        self.environment = {name: value for name, value in os.environ.items()
                            if name not in ("WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_CURRENT_DESKTOP")}
        self.environment.update(DISPLAY=":" + display, HOME=folder, XDG_CONFIG_HOME=folder + "/config",
                                XDG_RUNTIME_DIR=folder, LC_ALL="C.UTF-8", PULSE_SERVER=f"unix:{folder}/native")
        self.sound_server = None
        if sound:
            self.start_sound_server()
        log = open(folder + "/shown", "w", encoding="ascii")
        self._started.callback(log.close)
        self._start([programs.counter], env=self.environment, stdout=log)
        self._log = open(folder + "/shown", encoding="ascii")
        self._started.callback(self._log.close)
        wait_until(lambda: self.read_shown(), "the counter was shown")

    def _start(self, command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        process = subprocess.Popen(command, stderr=subprocess.DEVNULL, **options)
        self._started.callback(process.wait)
        self._started.callback(process.kill)
        self._started.callback(process.send_signal, signal.SIGCONT)
        return process

    def start_sound_server(self):
        """Anew where the one before is no more."""
        socket = self.folder + "/native"
        with contextlib.suppress(FileNotFoundError):
            os.remove(socket)
        self.sound_server = self._start(
            ["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
             f"--load=module-native-protocol-unix auth-anonymous=1 socket={socket}",
             "--load=module-null-sink rate=48000"], env=self.environment)
        wait_until(lambda: os.path.exists(socket), "the sound server was there")

    def close(self):
        self._started.close()

    def read_shown(self):
        """Takes note of what the counter has told since; true when it has told anything yet."""
        text = self._line_rest + self._log.read()
        lines = text.split("\n")
        self._line_rest = lines.pop()
        for line in lines:
            number, _, after = line.split()
            self.shown.append((int(number), int(after) / 1e9))
        return bool(self.shown)

    def times(self):
        self.read_shown()
        return dict(self.shown)

    def lateness(self, begin, end):
        """How long, beyond its period, the counter stood still between the two times: the machine was that busy with
        other things, and a recorder on it may be as late."""
        self.read_shown()
        times = [time for _, time in self.shown if begin - 0.5 <= time <= end]
        gaps = [after - before for before, after in zip(times, times[1:])]
        if times:
            gaps.append(end - times[-1])
        return max(0.0, max(gaps, default=end - begin) - PERIOD)


class Recorder:
    """A running `vornic record`, and the folders that it works in."""

    def __init__(self, programs, stage, work, sound=False, preload=None, options=(), limit=None):
        self.cache = work + "/cache"
        self.movies = work + "/movies"
        self.movie = self.movies + "/movie.mp4"
        self.spools = recordings_folder(self.cache)
        self._before = set(list_folder(self.spools))
        environment = dict(stage.environment, XDG_CACHE_HOME=self.cache, **(preload or {}))
        command = [programs.vornic, "record", "--ignore-low-space", "--overwrite", *options]
        if sound:
            command.append("--audio")
        self._errors = open(work + "/errors", "wb")
        self.errors = work + "/errors"
        self.started = time.monotonic()
        self.process = subprocess.Popen(command + [self.movie], env=environment, stdout=self._errors,
                                        stderr=self._errors, preexec_fn=limiter(limit))
        self.stopped = None

    def folder(self):
        """Of the spool; None before it has its name."""
        new = [name for name in list_folder(self.spools) if name not in self._before and not name.startswith(".")]
        return self.spools + "/" + new[0] if new else None

    def has_ended(self):
        return self.process.poll() is not None

    def wait_until(self, condition, what, poll=0.005):
        wait_until(lambda: condition() or self.has_ended(), what, poll=poll)

    def has_pictures(self):
        folder = self.folder()
        with contextlib.suppress(OSError):
            return bool(folder) and os.path.getsize(folder + "/vornicvideo.tmp") > 0
        return False

    def stop(self):
        self.stopped = time.monotonic()
        with contextlib.suppress(ProcessLookupError):
            self.process.send_signal(signal.SIGTERM)

    def kill(self):
        """Returns when that was."""
        moment = time.monotonic()
        with contextlib.suppress(ProcessLookupError):
            self.process.kill()
        self.process.wait()
        self._errors.close()
        return moment

    def said(self):
        with open(self.errors, encoding="utf-8", errors="replace") as file:
            return file.read().strip()


def recordings_folder(cache):
    return cache + "/com.kavlor.vornic/recordings"


def list_folder(path):
    try:
        return sorted(os.listdir(path))
    except FileNotFoundError:
        return []


def limiter(limit):
    """For a program whose files may not grow beyond so many bytes, as on a full disk."""
    def set_limit():
        signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
        resource.setrlimit(resource.RLIMIT_FSIZE, (limit, limit))
    return set_limit if limit else None


def run(command, environment, seconds=120, limit=None):
    done = subprocess.run(command, env=environment, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=seconds,
                          check=False, stdin=subprocess.DEVNULL, preexec_fn=limiter(limit))
    return done.returncode, done.stdout.decode("utf-8", "replace").strip()


def recover(programs, environment, cache, *arguments):
    """`vornic recover`: its status, and what it said. No display is needed for it."""
    environment = dict(environment, XDG_CACHE_HOME=cache)
    environment.pop("DISPLAY", None)
    return run([programs.vornic, "recover", *arguments], environment)


def unfinished(cache, known=()):
    return [name for name in list_folder(recordings_folder(cache)) if name not in known]


def age_half_made(cache):
    """What is half made may be another program's for a minute: makes it older."""
    for name in list_folder(recordings_folder(cache)):
        if name.startswith("."):
            long_ago = time.time() - 3600
            os.utime(recordings_folder(cache) + "/" + name, (long_ago, long_ago))


class Movie:
    """The numbers that a movie shows, with the times of its frames."""

    def __init__(self, path):
        command = ["ffmpeg", "-v", "error", "-i", path, "-map", "0:v:0", "-fps_mode", "passthrough",
                   "-enc_time_base", "-1", "-vf", f"crop=iw:ih/4:0:0,scale={BITS}:2:flags=area,format=gray",
                   "-f", "rawvideo", "-"]
        decoded = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.PIPE, check=False)
        if decoded.returncode != 0 or decoded.stderr:
            raise Failure(f"{path} is no whole movie: {decoded.stderr.decode()}")
        pixels = decoded.stdout
        self.numbers = [number_in(pixels[start:start + 2 * BITS]) for start in range(0, len(pixels), 2 * BITS)]
        probe = json.loads(subprocess.check_output(
            ["ffprobe", "-v", "error", "-show_entries", "packet=pts_time,duration_time,stream_index", "-show_entries",
             "stream=index,codec_type", "-of", "json", path]))
        kinds = {stream["index"]: stream["codec_type"] for stream in probe["streams"]}
        packets = {"video": [], "audio": []}
        for packet in probe["packets"]:
            packets[kinds[packet["stream_index"]]].append(
                (float(packet["pts_time"]), float(packet.get("duration_time", 0))))
        self.times = sorted(time for time, _ in packets["video"])
        self.audio_seconds = max((time + length for time, length in packets["audio"]), default=None)
        if len(self.times) != len(self.numbers):
            raise Failure(f"{len(self.times)} frames are in the movie, and {len(self.numbers)} come out of it")


def number_in(pixels):
    upper, lower = pixels[:BITS], pixels[BITS:]
    number = 0
    for bit, opposite in zip(upper, lower):
        if abs(bit - opposite) < 100:
            raise Failure("a frame shows no number")
        number = number * 2 + (bit > opposite)
    return number


def check_frames(movie, stage, begin, late):
    """The frames show what stood on the screen, in its order, all the time, and as fast."""
    if not movie.numbers:
        raise Failure("the movie has no frames")
    times = stage.times()
    unknown = [number for number in movie.numbers if number not in times]
    if unknown:
        raise Failure(f"frames show {unknown[:5]}, which were never on the screen")
    shown = [times[number] for number in movie.numbers]
    tolerance = 0.5 + late  # a recorder is late at times, above all when it starts
    if shown[0] < begin - tolerance:
        raise Failure(f"the first frame is {begin - shown[0]:.2f} s older than the recording")
    for index in range(1, len(shown)):
        if movie.numbers[index] < movie.numbers[index - 1]:
            raise Failure(f"frame {index} is older than the one before it")
        if shown[index] - shown[index - 1] > tolerance:
            raise Failure(f"{shown[index] - shown[index - 1]:.2f} s are missing before frame {index}")
        in_movie = movie.times[index] - movie.times[0]
        on_screen = shown[index] - shown[0]
        if abs(in_movie - on_screen) > tolerance:
            raise Failure(f"frame {index} stands at {in_movie:.2f} s and was shown at {on_screen:.2f} s")
    return shown


def fingerprint(folder, ignored=()):
    """Of all files beneath a folder, by their paths in it."""
    result = {}
    for path, folders, files in os.walk(folder):
        for name in folders + files:
            full = os.path.join(path, name)
            relative = os.path.relpath(full, folder)
            if any(relative == other or relative.startswith(other + "/") for other in ignored):
                continue
            status = os.lstat(full)
            digest = ""
            if stat.S_ISREG(status.st_mode):
                with open(full, "rb") as file:
                    digest = hashlib.sha256(file.read()).hexdigest()
            result[relative] = (status.st_mode, digest)
    return result


def prepare_work(work, decoy):
    """The cache with a recording of somebody else in it, and a folder for movies that has other files, too."""
    os.makedirs(work + "/movies")
    for name in ("notes.txt", "another.mp4", ".vornic-notes.part"):
        with open(f"{work}/movies/{name}", "w", encoding="ascii") as file:
            file.write("not the recorder's\n")
    os.makedirs(work + "/cache/com.kavlor.vornic", mode=0o700)
    os.mkdir(recordings_folder(work + "/cache"), mode=0o700)
    if decoy:
        shutil.copytree(decoy, recordings_folder(work + "/cache") + "/" + os.path.basename(decoy))


def make_decoy(programs, stage, work):
    """The path of a recording that was killed, outside of any cache."""
    prepare_work(work, None)
    recorder = Recorder(programs, stage, work)
    recorder.wait_until(recorder.has_pictures, "the first recording had pictures")
    time.sleep(0.5)
    recorder.kill()
    folder = recorder.folder()
    if not folder:
        raise Failure("the first recording left nothing: " + recorder.said())
    decoy = work + "/" + re.sub(r"^\d{8}", "20200101", os.path.basename(folder))
    os.rename(folder, decoy)
    return decoy


class Workshop:
    """The folder that a worker's stage and cases are in, with the decoy; one a worker."""

    def __init__(self, programs, sound):
        self.programs = programs
        self.folder = tempfile.mkdtemp(prefix="vornic-crash-")
        self.kept = False
        try:
            self.stage = Stage(programs, self.folder, sound)
            self.decoy = make_decoy(programs, self.stage, self.folder + "/decoy")
        except BaseException:
            shutil.rmtree(self.folder, ignore_errors=True)
            raise

    def work(self, number):
        work = f"{self.folder}/case-{number}"
        prepare_work(work, self.decoy)
        return work

    def close(self):
        self.stage.close()
        if not self.kept:
            shutil.rmtree(self.folder, ignore_errors=True)

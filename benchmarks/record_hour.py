#!/usr/bin/env python3
"""A long recording with pauses and two sounds: memory, threads, the step of sound and picture, disk and the wait.

    record_hour.py record FOLDER [seconds] [--build BUILD] [--keep]
    record_hour.py look FOLDER
    record_hour.py table FOLDER

"record" records for so many seconds (3600), without the pauses, on a virtual display of 1920 x 1080 and a sound server of
its own, looks at the movie and prints the table. Everything measured is left in FOLDER (run.json, movie.json and what the
program said), the movie only with --keep or when it could not be looked at. "look" reads such a movie again, "table"
prints the table again.

The screen is that of vornic_show_scene desktop, with a counter in its corner that tells each frame's moment, and beside it
two patches that flash: one while a beep of 1000 Hz goes to the output whose monitor is the system's sound, one while a
beep of 2500 Hz goes to a virtual microphone. Both sounds are mixed in the movie, from which filters take them again.
"""
import argparse
import bisect
import contextlib
import datetime
import json
import math
import os
import pathlib
import re
import shutil
import signal
import statistics
import subprocess
import sys
import time

sys.path.insert(0, os.path.join(os.path.dirname(os.path.dirname(os.path.abspath(__file__))), "tests/crash"))

import crash_stage as crash  # noqa: E402
from compare_recording import cpu_seconds, start_server  # noqa: E402
from pause_recordings import Pause, parts_of  # noqa: E402

STRIP, PATCH = (640, 40), 64  # pixels; the patches stand to the right of the strip
PITCHES = {"system": 1000, "microphone": 2500}  # Hz
# Neither is a multiple of the time between two frames: every flash and every number falls between other frames, and a
# median is not that of one phase alone.
APART, NUMBERS_A_SECOND = 5.0127, 4.7
FRAME = 1 / 30
PAUSE_SECONDS = [3, 11, 5, 20, 8]
SAMPLE_SECONDS = 10
ENVELOPE_RATE = 2000  # Hz
KEPT_FREE = 2**30  # bytes, with which a recording ends by itself


# --- recording --------------------------------------------------------------------------------------------------------

class Stage:
    """The private display and sound server, with all that shows and plays there; ends with `close`."""

    def __init__(self, build, folder):
        self.started = contextlib.ExitStack()
        self.folder = folder
        self.log = self.started.enter_context(open(f"{folder}/stage.log", "wb"))
        self.support = f"{build}/tests/support"
        self.runtime = f"{folder}/runtime"
        os.makedirs(self.runtime, mode=0o700, exist_ok=True)
        server, environment = start_server(f"{folder}/cache")
        self.ends_with(server)
        for name in ["WAYLAND_DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE"]:
            environment.pop(name, None)
        self.environment = dict(environment, HOME=self.runtime, XDG_CONFIG_HOME=f"{self.runtime}/config", LC_ALL="C.UTF-8",
                                XDG_RUNTIME_DIR=self.runtime, PULSE_SERVER=f"unix:{self.runtime}/native")
        self.start_sound()
        self.start([f"{self.support}/vornic_show_scene", "desktop", "--fps", "30"])
        time.sleep(2)  # what is mapped later stands above it
        self.numbers = open(f"{folder}/numbers", "w", encoding="ascii")
        self.started.callback(self.numbers.close)
        self.start([f"{build}/tests/crash/vornic_show_counter", "--strip", "--fps", str(NUMBERS_A_SECOND)], stdout=self.numbers)
        self.start_flashes("system", "speakers", 0)
        time.sleep(APART / 2)
        self.start_flashes("microphone", "feed", 1)

    def ends_with(self, process):
        self.started.callback(process.wait)
        self.started.callback(process.kill)
        return process

    def start(self, command, stdout=subprocess.DEVNULL, **variables):
        return self.ends_with(subprocess.Popen(command, env=dict(self.environment, **variables), stdin=subprocess.DEVNULL,
                                               stdout=stdout, stderr=self.log))

    def start_sound(self):
        self.start(["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                    f"--load=module-native-protocol-unix auth-anonymous=1 socket={self.runtime}/native",
                    "--load=module-null-sink sink_name=speakers rate=48000 sink_properties=device.description=Speakers",
                    "--load=module-null-sink sink_name=feed rate=48000 sink_properties=device.description=Feed",
                    "--load=module-remap-source source_name=microphone master=feed.monitor "
                    "source_properties=device.description=Microphone"])
        crash.wait_until(lambda: os.path.exists(f"{self.runtime}/native"), "the sound server was there")
        for kind, name in [("sink", "speakers"), ("source", "microphone")]:
            subprocess.run(["pactl", f"set-default-{kind}", name], env=self.environment, check=True)

    def start_flashes(self, what, output, place):
        """The light and the beep follow one clock, that of the output."""
        self.start([f"{self.support}/vornic_play_sound", "flashes", "1000000", str(APART), str(PITCHES[what]),
                    str(STRIP[0] + place * PATCH), "0", str(PATCH), str(STRIP[1])], PULSE_SINK=output)

    def times(self):
        """When each number came, seconds of the monotonic clock."""
        lines = pathlib.Path(f"{self.folder}/numbers").read_text(encoding="ascii").splitlines()
        return {int(number): int(after) / 1e9 for number, _, after in (line.split() for line in lines if line.count(" ") == 2)}

    def close(self):
        self.started.close()


def spooled_bytes(cache):
    total = 0
    for path, _, names in os.walk(cache):
        for name in names:
            with contextlib.suppress(OSError):
                total += os.stat(f"{path}/{name}").st_blocks * 512
    return total


class LongRecorder:
    """`vornic record`, what it takes and what it says."""

    def __init__(self, build, stage, folder):
        self.folder, self.cache, self.movie = folder, f"{folder}/cache", f"{folder}/movie.mp4"
        self.samples, self.pauses, self.paused = [], [], 0.0
        with open(f"{folder}/recorder.log", "wb") as log:
            self.process = stage.ends_with(subprocess.Popen(
                [f"{build}/src/app/vornic", "record", "--ignore-low-space", "--overwrite", "--audio=Microphone",
                 "--system-audio", self.movie], env=stage.environment, stdin=subprocess.DEVNULL, stdout=log, stderr=log))
        self.wait_for("00:00:00", 0)
        self.began = time.monotonic()

    def said(self):
        return pathlib.Path(f"{self.folder}/recorder.log").read_text(encoding="utf-8", errors="replace")

    def wait_for(self, word, before):
        crash.wait_until(lambda: self.said().count(word) > before or self.process.poll() is not None, "it told: " + word)
        self.check()

    def check(self):
        if self.process.poll() is not None:
            raise crash.Failure(f"the recording has ended by itself, with {self.process.returncode}:\n{self.said()[-2000:]}")

    def recorded(self):
        return time.monotonic() - self.began - self.paused

    def sample(self):
        process = pathlib.Path(f"/proc/{self.process.pid}")
        status = dict(line.split(":", 1) for line in (process / "status").read_text().splitlines())
        told = re.findall(r"^\d\d:\d\d:\d\d, .*room for.*$", self.said(), re.MULTILINE)
        self.samples.append({
            "recorded": self.recorded(), "cpu": cpu_seconds(self.process.pid),
            "rss": int(status["VmRSS"].split()[0]) * 1024, "anonymous": int(status["RssAnon"].split()[0]) * 1024,
            "threads": int(status["Threads"]), "descriptors": len(os.listdir(process / "fd")),
            "spool": spooled_bytes(self.cache), "free": shutil.disk_usage(self.cache).free, "told": told[-1] if told else "",
            "load": os.getloadavg()[0]})
        pathlib.Path(f"{self.folder}/samples.json").write_text(json.dumps(self.samples))

    def signal_and_see(self, word):
        before = self.said().count(word)
        sent = time.monotonic()
        self.process.send_signal(signal.SIGUSR1)
        self.wait_for(word, before)
        return sent, time.monotonic()

    def pause(self, seconds):
        begun, seen = self.signal_and_see(", paused")
        time.sleep(seconds)
        self.check()
        ended, _ = self.signal_and_see(", recording")
        self.pauses.append(Pause(begun, seen, ended))
        self.paused += ended - begun

    def run(self, seconds):
        count = max(3, round(seconds / 300))
        due = [(seconds * (index + 0.5) / count, PAUSE_SECONDS[index % len(PAUSE_SECONDS)]) for index in range(count)]
        sampled = 0
        while self.recorded() < seconds:
            if due and self.recorded() >= due[0][0]:
                self.pause(due.pop(0)[1])
            if self.recorded() >= sampled:
                self.sample()
                sampled += SAMPLE_SECONDS
            self.check()
            time.sleep(max(0, min(sampled, seconds, *[at for at, _ in due[:1]]) - self.recorded()))
        self.sample()

    def stop(self):
        """When it was told to, and how long its end took; its spool is looked at meanwhile."""
        stopped = time.monotonic()
        self.process.send_signal(signal.SIGINT)
        while self.process.poll() is None:
            time.sleep(0.05)
        waited = time.monotonic() - stopped
        if self.process.returncode != 0:
            raise crash.Failure(f"the recording ends with {self.process.returncode}:\n{self.said()[-2000:]}")
        return stopped, waited


def record(folder, seconds, build):
    os.makedirs(f"{folder}/cache", exist_ok=True)
    free = shutil.disk_usage(folder).free
    if free < seconds * 6e6 + 2 * KEPT_FREE:
        raise crash.Failure(f"{free / 1e9:.1f} GB are free for the spool: too little")
    stage = Stage(build, folder)
    with contextlib.closing(stage):
        recorder = LongRecorder(build, stage, folder)
        recorder.run(seconds)
        stopped, waited = recorder.stop()
        measured = {"date": datetime.date.today().isoformat(), "cores": os.cpu_count(), "seconds": seconds,
                    "began": recorder.began, "stopped": stopped, "waited": waited, "pauses": recorder.pauses,
                    "samples": recorder.samples, "numbers": stage.times(), "movie bytes": os.path.getsize(recorder.movie),
                    "left in the spool": spooled_bytes(recorder.cache)}
    pathlib.Path(f"{folder}/run.json").write_text(json.dumps(measured))


# --- the movie --------------------------------------------------------------------------------------------------------

def lines_of(command):
    with subprocess.Popen(command, stdout=subprocess.PIPE, text=True) as process:
        yield from (line.strip().rstrip(",") for line in process.stdout)
    if process.returncode != 0:
        raise crash.Failure(f"{command[0]} ends with {process.returncode}")


def pieces_of(command, size):
    with subprocess.Popen(command, stdout=subprocess.PIPE) as process:
        while len(piece := process.stdout.read(size)) == size:
            yield piece
    if process.returncode != 0:
        raise crash.Failure(f"{command[0]} ends with {process.returncode}")


class LongMovie:
    """What its frames show of the strip and the patches, and when; each is decoded once, and its pixels are not kept."""

    def __init__(self, path):
        width = STRIP[0] + 2 * PATCH
        columns = width * crash.BITS // STRIP[0]
        filters = f"crop={width}:{STRIP[1]}:0:0,scale={columns}:2:flags=area,format=gray"
        self.times = sorted(float(line) for line in lines_of(
            ["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "packet=pts_time", "-of", "csv=p=0", path]))
        self.numbers, self.light = [], {what: [] for what in PITCHES}
        for frame in pieces_of(["ffmpeg", "-v", "error", "-i", path, "-map", "0:v:0", "-fps_mode", "passthrough",
                                "-enc_time_base", "-1", "-vf", filters, "-f", "rawvideo", "-"], 2 * columns):
            self.numbers.append(crash.number_in(frame[:crash.BITS] + frame[columns:columns + crash.BITS]))
            for index, what in enumerate(PITCHES):
                first = crash.BITS + index * (columns - crash.BITS) // 2
                self.light[what].append(frame[first] > 127)
        if len(self.numbers) != len(self.times):
            raise crash.Failure(f"{len(self.times)} frames are in the movie, and {len(self.numbers)} come out of it")

    def flashes(self, what):
        light = self.light[what]
        return [self.times[index] for index in range(1, len(light)) if light[index] and not light[index - 1]]


def beeps_in(path, hertz):
    """When sound of that pitch begins: where its level passes half of a beep's. The filters delay all of them alike."""
    # One that is recorded at full level has 0.5 of the largest sample, and 0.64 of that as its mean.
    half = 0.5 * 0.64 / 2 * 32767
    filters = (f"pan=mono|c0=0.5*c0+0.5*c1,bandpass=f={hertz}:width_type=h:w=400,bandpass=f={hertz}:width_type=h:w=400,"
               f"aeval=abs(val(0)),lowpass=f=100,aresample={ENVELOPE_RATE}")
    beeps, before, quiet = [], 0.0, 0
    index = 0
    for piece in pieces_of(["ffmpeg", "-v", "error", "-i", path, "-map", "0:a:0", "-af", filters, "-f", "s16le", "-"], 2):
        level = int.from_bytes(piece, sys.byteorder, signed=True)
        if level >= half > before and quiet > ENVELOPE_RATE / 2:
            beeps.append((index - 1 + (half - before) / (level - before)) / ENVELOPE_RATE)
        quiet = 0 if level >= half else quiet + 1
        before, index = level, index + 1
    return beeps


def offsets_of(flashes, beeps, cuts):
    """(moment, milliseconds that a flash follows its beep); and how many flashes near no cut have no beep."""
    offsets, alone = [], 0
    for flash in flashes:
        near = bisect.bisect(cuts, flash)
        if any(abs(flash - cut) < 0.5 for cut in cuts[max(0, near - 1):near + 1]):
            continue
        place = bisect.bisect(beeps, flash)
        nearest = min(beeps[max(0, place - 1):place + 1], key=lambda beep: abs(beep - flash), default=-10)
        if abs(nearest - flash) < 0.5:
            offsets.append((flash, (flash - nearest) * 1000))
        else:
            alone += 1
    return offsets, alone


def clock_offsets(movie, came, pauses, parts):
    """(moment, milliseconds that a number's first frame follows the number), as if the pauses had not been."""
    offsets = []
    for number, part in enumerate(parts):
        paused = sum(pause.ended - pause.begun for pause in pauses[:number])
        for index, after in zip(part, part[1:]):
            if movie.numbers[after] != movie.numbers[index]:
                offsets.append((movie.times[after], (movie.times[after] - came[movie.numbers[after]] + paused) * 1000))
    return offsets


class Shown:
    """What parts_of() asks a stage."""

    def __init__(self, numbers):
        self.numbers = {int(number): came for number, came in numbers.items()}

    def times(self):
        return self.numbers


def streams_of(path):
    streams = json.loads(subprocess.check_output(["ffprobe", "-v", "error", "-show_entries", "stream=codec_type,duration",
                                                  "-of", "json", path]))["streams"]
    return {stream["codec_type"]: float(stream["duration"]) for stream in streams}


def look(folder):
    run = json.loads(pathlib.Path(f"{folder}/run.json").read_text())
    pauses, path = [Pause(*pause) for pause in run["pauses"]], f"{folder}/movie.mp4"
    movie, shown = LongMovie(path), Shown(run["numbers"])
    parts = parts_of(movie, shown, pauses)  # fails where a frame is of a paused moment
    cuts = [0.0] + [movie.times[part[0]] for part in parts[1:]]
    found = {"frames": len(movie.times), "parts": [len(part) for part in parts], "lengths": streams_of(path),
             "clock": clock_offsets(movie, shown.times(), pauses, parts), "offsets": {}, "alone": {}}
    for what, hertz in PITCHES.items():
        flashes, beeps = movie.flashes(what), beeps_in(path, hertz)
        found["offsets"][what], found["alone"][what] = offsets_of(flashes, beeps, cuts)
    pathlib.Path(f"{folder}/movie.json").write_text(json.dumps(found))


# --- the table --------------------------------------------------------------------------------------------------------

def medians_by_minute(offsets):
    minutes = {}
    for moment, offset in offsets:
        minutes.setdefault(int(moment / 60), []).append(offset)
    return [statistics.median(values) for _, values in sorted(minutes.items()) if len(values) >= 6]


def first_and_last(offsets):
    medians = medians_by_minute(offsets)
    return (f"{medians[0]:.1f}, {medians[-1]:.1f}, {min(medians):.1f} to {max(medians):.1f} in {len(medians)} minutes"
            if medians else "too few")


def slope(points):
    """Of the straight line through them, by least squares, and its standard error."""
    if len(points) < 3:
        return 0.0, math.inf
    mean_x, mean_y = (statistics.fmean(values) for values in zip(*points))
    spread = sum((x - mean_x) ** 2 for x, _ in points)
    rise = sum((x - mean_x) * (y - mean_y) for x, y in points) / spread
    rest = sum((y - mean_y - rise * (x - mean_x)) ** 2 for x, y in points)
    return rise, math.sqrt(rest / (len(points) - 2) / spread)


def an_hour(offsets):
    rise, error = slope([(moment / 3600, offset) for moment, offset in offsets])
    return f"{rise:+.1f}, standard error {error:.1f}"


def at_share(samples, seconds):
    return min(samples, key=lambda sample: abs(sample["recorded"] - seconds))


def at_three(samples, seconds, text):
    """At minute 2, at half and at the end."""
    return ", ".join(text(at_share(samples, at)) for at in [min(120, seconds / 4), seconds / 2, seconds])


def true_room(run, sample):
    """Seconds until the recording would have had to end, at the rates of the whole of it."""
    last = run["samples"][-1]
    movie_rate, spool_rate = run["movie bytes"] / last["recorded"], last["spool"] / last["recorded"]
    return (sample["free"] - KEPT_FREE - movie_rate * sample["recorded"]) / (movie_rate + spool_rate)


def told_room(sample):
    return sample["told"].rsplit("room for ", 1)[-1] or "nothing"


def rows(run, movie, said):
    samples, seconds = run["samples"], run["seconds"]
    settled = [sample for sample in samples if sample["recorded"] >= min(120, seconds / 4)]
    length = movie["lengths"]["video"]
    # Of the first frame, by the numbers of the first minute, which are seen half the time between two frames late.
    early = statistics.median(offset for moment, offset in movie["clock"] if moment < 60)
    first = FRAME / 2 - early / 1000
    recorded = run["stopped"] - first - sum(ended - begun for begun, _, ended in run["pauses"])
    last = samples[-1]
    yield "resident memory, MiB, at minute 2, half, end", at_three(samples, seconds, lambda s: f"{s['rss'] / 2**20:.1f}")
    yield "of it its own (anonymous)", at_three(samples, seconds, lambda s: f"{s['anonymous'] / 2**20:.1f}")
    yield "its growth from minute 2 on, MiB an hour", \
        f"{slope([(s['recorded'] / 3600, s['rss'] / 2**20) for s in settled])[0]:+.2f}, own " \
        f"{slope([(s['recorded'] / 3600, s['anonymous'] / 2**20) for s in settled])[0]:+.2f}"
    for name in ["threads", "descriptors"]:
        yield f"{name}, at minute 2, half, end; most", \
            f"{at_three(samples, seconds, lambda s, name=name: str(s[name]))}; {max(s[name] for s in samples)}"
    yield "processor time while recording, cores", \
        f"{(last['cpu'] - samples[0]['cpu']) / (last['recorded'] - samples[0]['recorded']):.3f}"
    for what, offsets in movie["offsets"].items():
        yield f"flash after beep, {what}, ms: median of the first minute, the last; all", first_and_last(offsets)
        yield f"its drift, {what}, ms an hour, by the line through all", an_hour(offsets)
        yield f"flashes measured, {what}; without a beep", f"{len(offsets)}; {movie['alone'][what]}"
    yield "picture after the clock, ms: median of the first minute, taken as 0, the last; all", \
        first_and_last([(moment, offset - early) for moment, offset in movie["clock"]])
    yield "its drift, ms an hour, by the line through all", an_hour(movie["clock"])
    yield "pauses; frames of a paused moment", f"{len(run['pauses'])}; 0"
    yield "length of picture, of sound, of what was recorded, s", \
        f"{length:.3f}, {movie['lengths']['audio']:.3f}, {recorded:.3f}"
    yield "frames grabbed a second; in the movie, where equal ones are one", \
        f"{int(re.search(r'^([0-9]+) frames grabbed', said, re.MULTILINE)[1]) / length:.1f}; {movie['frames'] / length:.1f}"
    yield "spool, movie", f"{last['spool'] / 1e9:.2f} GB, {run['movie bytes'] / 1e9:.2f} GB"
    yield "told last of the spool; spool then", f"{last['told'] or 'nothing'}; {last['spool'] / 1e9:.2f} GB"
    yield "room told at minute 2, half, end; by the rates of all of it", \
        at_three(samples, seconds, told_room) + "; " + at_three(
            samples, seconds, lambda s: f"{true_room(run, s) / 3600:.1f} h")
    yield "wait after the stop", f"{run['waited']:.1f} s, {run['waited'] / length:.3f} of the length"
    yield "load of the machine, median, most", \
        f"{statistics.median(s['load'] for s in samples):.1f}, {max(s['load'] for s in samples):.1f}"


def table(folder):
    run, movie = (json.loads(pathlib.Path(f"{folder}/{name}.json").read_text()) for name in ["run", "movie"])
    said = pathlib.Path(f"{folder}/recorder.log").read_text(encoding="utf-8", errors="replace")
    print(f"| {run['seconds'] / 60:g} minutes on {run['date']}, {run['cores']} cores | |\n|---|---|")
    for name, value in rows(run, movie, said):
        print(f"| {name} | {value} |", flush=True)


def end_with_signal(number, _frame):
    raise SystemExit(128 + number)


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("what", choices=["record", "look", "table"])
    parser.add_argument("folder", type=os.path.abspath)
    parser.add_argument("seconds", type=float, nargs="?", default=3600)
    parser.add_argument("--build", type=os.path.abspath, default=f"{crash.TREE}/build/release")
    parser.add_argument("--keep", action="store_true", help="keep the movie")
    arguments = parser.parse_args()
    for number in [signal.SIGTERM, signal.SIGHUP]:
        signal.signal(number, end_with_signal)
    try:
        if arguments.what == "record":
            record(arguments.folder, arguments.seconds, arguments.build)
        if arguments.what != "table":
            look(arguments.folder)
        table(arguments.folder)
    except crash.Failure as failure:
        sys.exit(f"record_hour.py: {failure}\nWhat was measured is in {arguments.folder}.")
    if arguments.what == "record" and not arguments.keep:
        os.remove(f"{arguments.folder}/movie.mp4")


if __name__ == "__main__":
    main()

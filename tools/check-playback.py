#!/usr/bin/env python3
"""tools/check-playback.py [--build FOLDER] [--still MINUTES [--text]] [PLAYER...]: whether movies play right.

Writes a movie of numbered pictures, whose times are known to the tick (vornic_write_numbers), and asks each PLAYER
what it shows; all of them where none is named:

    ffmpeg     decodes all: each number appears at its time within a tick of 1/90000 s and stays until the next one;
               no picture lasts longer than half a second where passes went on, and nothing changes between two key
               frames that are more than two seconds apart
    gstreamer  plays all, and shows the same numbers at the same times
    chromium   the browser, without a window: seeks to 20 places and draws the picture on a canvas; the number read
               there is the one that was on the screen at that time

With --still the movie is one of 1920 x 1080 that changes twelve times in all those minutes; --text has a page of text in
it. It is sought in, not decoded: a place is shown within a second, as a rule, and the file of an hour without text is
smaller than 10 MB. Ends with 77 where a player is not installed (tools/install-packages.sh players.txt).
"""
import argparse
import bisect
import contextlib
import http.server
import json
import os
import pathlib
import random
import re
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

TREE = pathlib.Path(__file__).resolve().parent.parent
TICKS = 90000
BITS = 16
PLACES = 20
MOST_BYTES_OF_AN_HOUR = 10_000_000
SKIPPED = 77

PAGE = """<!DOCTYPE html><video id="video" muted preload="auto" src="movie.mp4"></video><script>
const video = document.getElementById("video");
const canvas = document.createElement("canvas");
const context = canvas.getContext("2d", { willReadFrequently: true });
const pause = () => new Promise(done => setTimeout(done, 5));

// The number in the picture that is shown; -1 where a block is neither black nor white, or not its opposite's opposite.
function numberShown() {
  canvas.width = video.videoWidth;
  canvas.height = video.videoHeight;
  context.drawImage(video, 0, 0);
  let number = 0;
  for (let bit = 0; bit < BITS; ++bit) {
    const x = Math.floor((bit + 0.5) * canvas.width / BITS);
    const level = row => context.getImageData(x, Math.floor((row + 0.5) * canvas.height / 4), 1, 1).data[1];
    const [above, below] = [level(0), level(1)];
    if (Math.max(above, below) < 200 || Math.min(above, below) > 55) return -1;
    number = 2 * number + (above > below ? 1 : 0);
  }
  return number;
}

async function visit(place) {
  const start = performance.now();
  const sought = new Promise(done => video.addEventListener("seeked", done, { once: true }));
  video.currentTime = place.seconds;
  await sought;
  // A moment passes until what was decoded is what is drawn.
  let number = numberShown();
  while (number != place.number && performance.now() - start < 5000) {
    await pause();
    number = numberShown();
  }
  return { number: number, milliseconds: performance.now() - start };
}

async function run() {
  const places = await (await fetch("places")).json();
  const start = performance.now();
  while (video.readyState < 2 && !video.error) await pause();
  if (video.error) throw video.error.message;
  const ready = performance.now() - start;
  const visits = [];
  for (const place of places) visits.push(await visit(place));
  return { ready: ready, duration: video.duration, visits: visits };
}

run().catch(error => ({ error: String(error) })).then(
  result => fetch("result", { method: "POST", body: JSON.stringify(result) }));
</script>""".replace("BITS", str(BITS))


class Failure(Exception):
    """What is wrong with the movie, or with what plays it."""


class Missing(Exception):
    """A program that is not installed."""


def tool(name):
    path = shutil.which(name)
    if not path:
        raise Missing(name)
    return path


def output_of(command, **options):
    done = subprocess.run([str(part) for part in command], capture_output=True, **options)
    if done.returncode != 0:
        raise Failure(f"{command[0]} failed with {done.returncode}: {done.stderr.decode(errors='replace')[-2000:]}")
    return done.stdout


class Numbers:
    """Which number the screen showed when: [(ticks, number)], and the end of the movie in ticks."""

    def __init__(self, text):
        *lines, last = [line.split() for line in text.splitlines()]
        self.changes = [(int(ticks), int(number)) for number, ticks in lines]
        self.end = int(last[1])

    def at(self, ticks):
        return self.changes[bisect.bisect_right(self.changes, (ticks, 1 << BITS)) - 1][1]

    def stretches(self):
        """(first tick, tick behind the last) of each number."""
        times = [ticks for ticks, _ in self.changes] + [self.end]
        return list(zip(times, times[1:]))


def number_of(above, below):
    """Of the levels of both rows of blocks."""
    number = 0
    for a, b in zip(above, below):
        if max(a, b) < 200 or min(a, b) > 55:
            return -1
        number = 2 * number + (1 if a > b else 0)
    return number


def check_shown(shown, numbers):
    """shown: (ticks, number) of each decoded picture, in order."""
    first = {}
    for ticks, number in shown:
        first.setdefault(number, ticks)
    for ticks, number in numbers.changes:
        if number not in first:
            raise Failure(f"{number}, recorded at {ticks}, is never shown")
        if abs(first[number] - ticks) > 1:
            raise Failure(f"{number} appears at {first[number]} and was recorded at {ticks}")
    unknown = set(first) - {number for _, number in numbers.changes}
    if unknown:
        raise Failure(f"numbers that never were are shown: {sorted((first[number], number) for number in unknown)[:5]}")
    for (_, before), (ticks, number) in zip(shown, shown[1:]):
        if number < before:
            raise Failure(f"at {ticks} {number} is shown again, behind {before}")


def check_with_ffmpeg(movie, numbers):
    packets = json.loads(output_of([tool("ffprobe"), "-v", "error", "-select_streams", "v", "-show_entries",
                                    "packet=pts,duration,flags", "-of", "json", movie]))["packets"]
    blocks = output_of([tool("ffmpeg"), "-v", "error", "-i", movie, "-vf",
                        f"crop=iw:ih/2:0:0,scale={BITS}:2:flags=area:out_range=pc,format=gray", "-vsync", "passthrough",
                        "-f", "rawvideo", "-"])
    if len(blocks) != len(packets) * 2 * BITS:
        raise Failure(f"there are {len(packets)} packets, and {len(blocks) / 2 / BITS:g} decoded pictures")
    times = [packet["pts"] for packet in packets]
    read = [number_of(blocks[i:i + BITS], blocks[i + BITS:i + 2 * BITS]) for i in range(0, len(blocks), 2 * BITS)]
    check_shown(list(zip(times, read)), numbers)
    end = times[-1] + packets[-1]["duration"]
    if abs(end - numbers.end) > 1:
        raise Failure(f"the movie ends at {end} instead of {numbers.end}")
    gaps = [(b - a, a) for a, b in zip(times, times[1:])]
    # The scene has one such gap, of more than five seconds.
    too_long = [gap for gap in gaps if TICKS / 2 < gap[0] < 5 * TICKS]
    if too_long:
        raise Failure(f"pictures last longer than half a second: {too_long[:5]} (ticks, at)")
    keys = [packet["pts"] for packet in packets if "K" in packet["flags"]]
    for before, key in zip(keys, keys[1:] + [end]):
        if key - before > 2 * TICKS and any(before < ticks < key for ticks, _ in numbers.changes):
            raise Failure(f"there is no key frame between {before} and {key}, where something changes")
    return f"{len(times)} pictures, {len(keys)} key frames"


def check_with_gstreamer(movie, numbers):
    size = [int(part) for part in output_of([tool("ffprobe"), "-v", "error", "-select_streams", "v", "-show_entries",
                                              "stream=width,height", "-of", "csv=p=0", movie]).decode().split(",")]
    with tempfile.TemporaryDirectory() as folder:
        raw = pathlib.Path(folder, "pictures")
        told = output_of([tool("gst-launch-1.0"), "-v", "filesrc", f"location={movie}", "!", "decodebin", "!",
                          "videoconvert", "!", "video/x-raw,format=GRAY8", "!", "identity", "name=shown", "silent=false",
                          "!", "filesink", f"location={raw}"], env=dict(os.environ, LC_ALL="C")).decode()
        pictures = raw.read_bytes()
    times = [((int(hours) * 60 + int(minutes)) * 60 + float(seconds)) * TICKS for hours, minutes, seconds
             in re.findall(r"\(shown:sink\).* pts: (\d+):(\d+):([\d.]+),", told)]
    width, height = size[0], size[1]
    if len(pictures) != len(times) * width * height:
        raise Failure(f"{len(times)} pictures are told, {len(pictures) / width / height:g} came")
    shown = []
    columns = [int((bit + 0.5) * width / BITS) for bit in range(BITS)]
    for i, ticks in enumerate(times):
        above, below = [(i * height + int((row + 0.5) * height / 4)) * width for row in (0, 1)]
        shown.append((round(ticks), number_of([pictures[above + x] for x in columns],
                                              [pictures[below + x] for x in columns])))
    check_shown(shown, numbers)
    return f"{len(times)} pictures"


def places_in(numbers, seed):
    """20 of them, in no order: [(ticks, number)]. The first and the last picture, places at the edges and in the depth
    of long stretches, and pictures that stand for a moment only."""
    stretches = numbers.stretches()
    middle = lambda stretch: (stretch[0] + stretch[1]) // 2
    wanted = [middle(stretches[0]), middle(stretches[-1])]
    for begin, end in [stretch for stretch in stretches if stretch[1] - stretch[0] > 5 * TICKS][:4]:
        wanted += [begin + TICKS // 500, begin + 3 * TICKS // 5, end - TICKS // 500]
    chance = random.Random(seed)
    short = [stretch for stretch in stretches if TICKS / 100 < stretch[1] - stretch[0]]
    while len(wanted) < PLACES:
        begin, end = chance.choice(short)
        wanted.append(chance.randrange(begin + TICKS // 500, end - TICKS // 500))
    chance.shuffle(wanted)
    return [(ticks, numbers.at(ticks)) for ticks in wanted]


class Player(http.server.BaseHTTPRequestHandler):
    """Gives the browser the page, the places and ranges of the movie, and takes what it has seen."""

    protocol_version = "HTTP/1.1"

    def log_message(self, *arguments):
        pass

    def answer(self, body, kind, status=200, **headers):
        self.send_response(status)
        for name, value in {"Content-Type": kind, "Content-Length": len(body), **headers}.items():
            self.send_header(name.replace("_", "-"), str(value))
        self.end_headers()
        self.wfile.write(body)

    def do_GET(self):
        if self.path == "/":
            self.answer(PAGE.encode(), "text/html; charset=utf-8")
        elif self.path == "/places":
            self.answer(json.dumps(self.server.places).encode(), "application/json")
        elif self.path == "/movie.mp4":
            self.send_movie()
        else:
            self.answer(b"", "text/plain", 404)

    def send_movie(self):
        movie = self.server.movie
        match = re.fullmatch(r"bytes=(\d+)-(\d*)", self.headers.get("Range", "bytes=0-"))
        first = int(match[1])
        last = min(int(match[2] or len(movie) - 1), len(movie) - 1)
        self.answer(movie[first:last + 1], "video/mp4", 206, Accept_Ranges="bytes",
                    Content_Range=f"bytes {first}-{last}/{len(movie)}")

    def do_POST(self):
        self.server.result = json.loads(self.rfile.read(int(self.headers["Content-Length"])))
        self.answer(b"", "text/plain")
        self.server.has_result.set()


class Server(http.server.ThreadingHTTPServer):
    def handle_error(self, request, client_address):
        """The browser hangs up as it likes."""
        if not isinstance(sys.exc_info()[1], ConnectionError):
            super().handle_error(request, client_address)


@contextlib.contextmanager
def serving(movie, places):
    server = Server(("127.0.0.1", 0), Player)
    server.movie = movie.read_bytes()
    server.places = [{"seconds": ticks / TICKS, "number": number} for ticks, number in places]
    server.has_result = threading.Event()
    threading.Thread(target=server.serve_forever, daemon=True).start()
    try:
        yield server
    finally:
        server.shutdown()
        server.server_close()


@contextlib.contextmanager
def browsing(browser, address):
    """A browser without a window and with a profile of its own that shows the page until the end."""
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        command = [browser, "--headless", "--disable-gpu", "--disable-dev-shm-usage", "--disable-extensions",
                   "--disable-background-networking", "--disable-component-update", "--no-first-run", "--mute-audio",
                   f"--user-data-dir={profile}"]
        if os.geteuid() == 0:
            command.append("--no-sandbox")  # which it refuses to root
        with open(pathlib.Path(profile, "errors"), "w+b") as errors:
            process = subprocess.Popen([*command, address], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                                       stderr=errors, start_new_session=True)
            try:
                yield process
            finally:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(process.pid, signal.SIGKILL)
                process.wait()


def check_with_chromium(movie, numbers, seed):
    browser = shutil.which("chromium") or tool("chromium-browser")
    places = places_in(numbers, seed)
    with serving(movie, places) as server:
        with browsing(browser, f"http://127.0.0.1:{server.server_port}/") as process:
            end = time.monotonic() + 150
            while not server.has_result.wait(0.2):
                if process.poll() is not None:
                    raise Failure(f"the browser ended with {process.returncode}")
                if time.monotonic() > end:
                    raise Failure("the browser does not answer")
    result = server.result
    if "error" in result:
        raise Failure(f"the browser says: {result['error']}")
    wrong = [f"{ticks / TICKS:.4f} s: {visit['number']} instead of {number}"
             for (ticks, number), visit in zip(places, result["visits"]) if visit["number"] != number]
    if wrong:
        raise Failure("the browser shows\n    " + "\n    ".join(wrong))
    if abs(result["duration"] * TICKS - numbers.end) > 1:
        raise Failure(f"for the browser the movie has {result['duration']} s instead of {numbers.end / TICKS}")
    times = [visit["milliseconds"] for visit in result["visits"]]
    usual = statistics.median(times)
    text = f"ready after {result['ready']:.0f} ms, a seek takes {usual:.0f} ms, the slowest took {max(times):.0f}"
    return f"{len(places)} places, {text}", usual


def write_movie(build, scene, movie):
    """scene: what vornic_write_numbers is told, beside the file."""
    with tempfile.TemporaryDirectory() as home:
        environment = dict(os.environ, XDG_CONFIG_HOME=home)
        start = time.monotonic()
        text = output_of([pathlib.Path(build, "tests/playback/vornic_write_numbers"), scene[0], movie, *scene[1:]],
                         env=environment)
        print(f"written in {time.monotonic() - start:.1f} s, {movie.stat().st_size} bytes", flush=True)
    return Numbers(text.decode())


def check(player, arguments, movie, numbers):
    if player == "ffmpeg":
        return check_with_ffmpeg(movie, numbers)
    if player == "gstreamer":
        return check_with_gstreamer(movie, numbers)
    text, usual = check_with_chromium(movie, numbers, arguments.seed)
    if arguments.still and usual > 1000:
        raise Failure(f"a place is shown only after {usual:.0f} ms")
    return text


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--build", default=TREE / "build/release", help="the folder of the built tree")
    parser.add_argument("--still", type=int, metavar="MINUTES", help="a movie that hardly changes")
    parser.add_argument("--text", action="store_true", help="with a page of text")
    parser.add_argument("--seed", type=int, default=1, help="of the places that are sought")
    parser.add_argument("--movie", type=pathlib.Path, help="keep the movie in this file")
    parser.add_argument("players", nargs="*", metavar="PLAYER", choices=["ffmpeg", "gstreamer", "chromium", []])
    arguments = parser.parse_args()
    players = arguments.players or (["chromium"] if arguments.still else ["ffmpeg", "gstreamer", "chromium"])
    scene = ["page" if arguments.text else "still", str(arguments.still)] if arguments.still else ["mixed"]
    status = 0
    with tempfile.TemporaryDirectory() as folder:
        movie = (arguments.movie or pathlib.Path(folder, "movie.mp4")).absolute()
        numbers = write_movie(arguments.build, scene, movie)
        if scene[0] == "still" and movie.stat().st_size >= MOST_BYTES_OF_AN_HOUR * arguments.still / 60:
            print("FAIL: the file is too large")
            status = 1
        for player in players:
            try:
                print(f"{player}: {check(player, arguments, movie, numbers)}", flush=True)
            except Missing as missing:
                print(f"{player}: {missing} is not installed")
                status = status or SKIPPED
            except Failure as failure:
                print(f"FAIL: {player}: {failure}")
                status = 1
    return status


if __name__ == "__main__":
    sys.exit(main())

#!/usr/bin/python3
"""Recorders of a Wayland desktop in one private session, in turns; and what a still screen costs there and on X11.

    compare_wayland.py PROGRAM IN_SWAY_SESSION SHOW_NUMBERS [seconds] [turns]

The monitor, 1280 x 720, shows a number that is another each time the compositor draws, all of it anew. Each recorder
takes it at 30 frames a second: vornic, wf-recorder, and a GStreamer pipeline on the same portal; those that are not
installed are left out. Of each is measured:

  kept     different numbers a second in the movie
  cores    processor time while it records, of the recorder with its children, and of the desktop's own programs
  in all   processor seconds for each recorded second, with the writing of the movie at the end
  lag      how much later than in its quickest frame a number stands in the movie than it was drawn: median and 95 %
  at stop  how old the last number of the movie was when the recorder was told to stop

Figures are medians of the turns.
"""
import bisect
import os
import pathlib
import shutil
import signal
import statistics
import subprocess
import sys
import tempfile
import threading
import time

TICKS = os.sysconf("SC_CLK_TCK")
SIZE = (1280, 720)
NUMBER_BITS, SQUARE = 16, 32
SETTLED = 1.5  # seconds, by when every recorder has begun
DESKTOP = {"sway", "pipewire", "wireplumber", "xdg-desktop-por"}


def stat_fields(pid):
    return pathlib.Path(f"/proc/{pid}/stat").read_text().rsplit(")", 1)[1].split()


def processes():
    """(pid, parent) of all that run."""
    found = []
    for entry in pathlib.Path("/proc").iterdir():
        if entry.name.isdigit():
            try:
                found.append((int(entry.name), int(stat_fields(entry.name)[1])))
            except (OSError, IndexError):
                pass
    return found


def cpu_seconds(pid):
    """Of a process and of those of its children that have ended."""
    try:
        return sum(int(field) for field in stat_fields(pid)[11:15]) / TICKS
    except OSError:
        return 0


def tree(pid):
    members, all_processes = {pid}, processes()
    while True:
        more = {child for child, parent in all_processes if parent in members} - members
        if not more:
            return members
        members |= more


def desktop_processes():
    """The programs of this session, of which other sessions on the machine have some, too."""
    own = f"XDG_RUNTIME_DIR={os.environ['XDG_RUNTIME_DIR']}".encode()
    found = []
    for pid, _ in processes():
        try:
            if (pathlib.Path(f"/proc/{pid}/comm").read_text().strip() in DESKTOP
                    and own in pathlib.Path(f"/proc/{pid}/environ").read_bytes().split(b"\0")):
                found.append(pid)
        except OSError:
            pass
    return found


class Numbers:
    """What the monitor shows, and when each number was drawn."""

    def __init__(self, show_numbers, *options):
        self.drawn = {}
        self.process = subprocess.Popen([show_numbers, *options], stdout=subprocess.PIPE, text=True)
        self.read(self.process.stdout.readline())
        threading.Thread(target=lambda: [self.read(line) for line in self.process.stdout], daemon=True).start()

    def read(self, line):
        number, seconds = line.split()
        self.drawn[int(number)] = float(seconds)

    def stop(self):
        self.process.kill()
        self.process.wait()


class Vornic:
    name = "vornic"

    def __init__(self, program):
        self.program = program

    def is_there(self):
        return True

    def start(self, movie, environment=None):
        return subprocess.Popen([self.program, "record", "--overwrite", "--ignore-low-space", movie], env=environment,
                                stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def ended(self):
        pass


class WfRecorder:
    name = "wf-recorder"

    def is_there(self):
        return shutil.which("wf-recorder") is not None

    def start(self, movie):
        return subprocess.Popen(["wf-recorder", "-o", "HEADLESS-1", "-c", "libx264", "-p", "preset=ultrafast", "-F", "fps=30",
                                 "-f", movie], stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def ended(self):
        pass


class PortalCast:
    """A session of the screen cast portal: the number of its stream in PipeWire is in `node`."""

    sessions = 0

    def __init__(self):
        from gi.repository import Gio, GLib
        self.gio, self.glib = Gio, GLib
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        self.sender = self.bus.get_unique_name()[1:].replace(".", "_")
        self.requests = 0
        PortalCast.sessions += 1
        name = f"benchmark{PortalCast.sessions}"
        self.session = f"/org/freedesktop/portal/desktop/session/{self.sender}/{name}"
        text = GLib.Variant.new_string
        self.ask("CreateSession", [], {"session_handle_token": text(name)})
        session = GLib.Variant.new_object_path(self.session)
        self.ask("SelectSources", [session], {"types": GLib.Variant.new_uint32(1), "cursor_mode": GLib.Variant.new_uint32(2)})
        self.node = self.ask("Start", [session, text("")], {})["streams"][0][0]

    def ask(self, method, arguments, options):
        self.requests += 1
        token = f"{self.session.rsplit('/', 1)[1]}_{self.requests}"
        loop, answers = self.glib.MainLoop(), []

        def responded(_bus, _sender, _path, _interface, _signal, parameters):
            answers.append(parameters.unpack())
            loop.quit()

        handle = self.bus.signal_subscribe(
            None, "org.freedesktop.portal.Request", "Response",
            f"/org/freedesktop/portal/desktop/request/{self.sender}/{token}", None, self.gio.DBusSignalFlags.NONE, responded)
        options = dict(options, handle_token=self.glib.Variant.new_string(token))
        parameters = self.glib.Variant.new_tuple(*arguments, self.glib.Variant("a{sv}", options))
        self.bus.call_sync("org.freedesktop.portal.Desktop", "/org/freedesktop/portal/desktop",
                           "org.freedesktop.portal.ScreenCast", method, parameters, None, self.gio.DBusCallFlags.NONE, -1)
        self.glib.timeout_add_seconds(10, loop.quit)
        loop.run()
        self.bus.signal_unsubscribe(handle)
        response, results = answers[0]
        if response != 0:
            raise RuntimeError(f"the portal refuses {method}")
        return results

    def close(self):
        self.bus.call_sync("org.freedesktop.portal.Desktop", self.session, "org.freedesktop.portal.Session", "Close", None, None,
                           self.gio.DBusCallFlags.NONE, -1)


class GStreamer:
    name = "GStreamer"

    def is_there(self):
        if not shutil.which("gst-inspect-1.0"):
            return False
        try:
            from gi.repository import Gio  # noqa: F401
        except ImportError:
            return False
        return all(subprocess.run(["gst-inspect-1.0", element], stdout=subprocess.DEVNULL).returncode == 0
                   for element in ["pipewiresrc", "videorate", "videoconvert", "x264enc", "h264parse", "mp4mux"])

    def start(self, movie):
        self.cast = PortalCast()
        pipeline = (f"pipewiresrc path={self.cast.node} do-timestamp=true ! videorate ! video/x-raw,framerate=30/1 ! "
                    "videoconvert ! queue ! x264enc speed-preset=ultrafast ! h264parse ! mp4mux ! "
                    f"filesink location={movie}")
        return subprocess.Popen(["gst-launch-1.0", "-q", "-e", *pipeline.split()], stdin=subprocess.DEVNULL,
                                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)

    def ended(self):
        self.cast.close()


class Load:
    """Cores that processes have used since it was made; other_pids() may change meanwhile."""

    def __init__(self, pids):
        self.pids = pids
        self.began = time.monotonic()
        self.before = self.total()

    def total(self):
        return sum(cpu_seconds(pid) for pid in self.pids())

    def cores(self):
        return (self.total() - self.before) / (time.monotonic() - self.began)


def numbers_in(movie):
    """(seconds, number) for each frame."""
    times = subprocess.run(["ffprobe", "-v", "error", "-select_streams", "v", "-show_entries", "frame=best_effort_timestamp_time",
                            "-of", "csv=p=0", movie], capture_output=True, text=True, check=True).stdout.split()
    width = NUMBER_BITS * SQUARE
    pixels = subprocess.run(["ffmpeg", "-v", "fatal", "-i", movie, "-vf", f"crop={width}:{SQUARE}:0:0,format=gray", "-vsync",
                             "passthrough", "-f", "rawvideo", "-"], capture_output=True, check=True).stdout
    frames = []
    for index, seconds in enumerate(times):
        row = index * width * SQUARE + SQUARE // 2 * width
        number = sum((pixels[row + bit * SQUARE + SQUARE // 2] > 127) << bit for bit in range(NUMBER_BITS))
        frames.append((float(seconds.rstrip(",")), number))
    return frames


def facts_of(movie, drawn, stopped):
    newest, frames = -1, []
    for seconds, number in numbers_in(movie):
        if number > newest and number in drawn:
            newest = number
            frames.append((seconds, drawn[number]))
    passed = frames[-1][1] - frames[0][1]
    late = sorted(seconds - shown for seconds, shown in frames)
    late = [1000 * (value - late[0]) for value in late]
    times = sorted(drawn.values())
    return {"drawn": (bisect.bisect(times, frames[-1][1]) - bisect.bisect(times, frames[0][1])) / passed,
            "kept": (len(frames) - 1) / passed,
            "lag": statistics.median(late), "lag 95 %": late[len(late) * 95 // 100],
            "at stop": 1000 * (stopped - frames[-1][1])}


def record(recorder, movie, seconds, desktop, environment=None):
    """What the recorder and the desktop cost; when it was told to stop."""
    process = recorder.start(movie, environment) if environment else recorder.start(movie)
    began = time.monotonic()
    time.sleep(SETTLED)
    recorders, others = Load(lambda: tree(process.pid)), Load(lambda: desktop)
    time.sleep(seconds)
    costs = {"cores": recorders.cores(), "desktop": others.cores()}
    stopped = time.monotonic()
    if process.poll() is not None:
        raise RuntimeError(f"{recorder.name} has ended by itself")
    process.send_signal(signal.SIGINT)
    _, status, used = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    recorder.ended()
    costs["in all"] = (used.ru_utime + used.ru_stime) / (stopped - began)
    return costs, stopped


def medians(rows):
    return {name: statistics.median(row[name] for row in rows) for name in rows[0]}


def compare_recorders(recorders, show_numbers, seconds, turns, folder):
    numbers = Numbers(show_numbers)
    desktop = desktop_processes()
    rows = {recorder.name: [] for recorder in recorders}
    for turn in range(turns):
        for recorder in recorders:
            movie = f"{folder}/{recorder.name}-{turn}.mp4"
            costs, stopped = record(recorder, movie, seconds, desktop)
            rows[recorder.name].append({**costs, **facts_of(movie, dict(numbers.drawn), stopped)})
    numbers.stop()
    print("| | drawn a second | kept a second | cores | desktop, cores | in all | lag, ms: median, 95 % | at stop, ms |")
    print("|---|---|---|---|---|---|---|---|")
    for name, values in rows.items():
        m = medians(values)
        print(f"| {name} | {m['drawn']:.1f} | {m['kept']:.1f} | {m['cores']:.2f} | {m['desktop']:.2f} | {m['in all']:.2f} | "
              f"{m['lag']:.0f}, {m['lag 95 %']:.0f} | {m['at stop']:.0f} |", flush=True)


def start_x_server():
    read, write = os.pipe()
    server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", f"{SIZE[0]}x{SIZE[1]}x24", "-nolisten", "tcp",
                               "-noreset"], pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    environment = dict(os.environ, DISPLAY=f":{os.read(read, 16).decode().strip()}", VORNIC_DISPLAY="x11")
    for name in ["WAYLAND_DISPLAY", "XDG_SESSION_TYPE"]:
        environment.pop(name, None)
    return server, environment


def compare_still_screens(vornic, show_numbers, seconds, turns, folder):
    numbers = Numbers(show_numbers, "--still")
    server, on_x11 = start_x_server()
    wayland, x11 = [], []
    for _ in range(turns):
        wayland.append(record(vornic, f"{folder}/still.mp4", seconds, desktop_processes())[0])
        x11.append(record(vornic, f"{folder}/still.mp4", seconds, [server.pid], on_x11)[0])
    server.kill()
    server.wait()
    numbers.stop()
    print("\n| a still screen | cores | desktop, cores | in all |\n|---|---|---|---|")
    for name, values in [("Wayland", wayland), ("X11", x11)]:
        m = medians(values)
        print(f"| {name} | {m['cores']:.3f} | {m['desktop']:.3f} | {m['in all']:.3f} |", flush=True)


def inside(program, show_numbers, seconds, turns):
    vornic = Vornic(program)
    recorders = [vornic]
    for other in [WfRecorder(), GStreamer()]:
        if other.is_there():
            recorders.append(other)
        else:
            print(f"{other.name} is not installed", flush=True)
    with tempfile.TemporaryDirectory() as folder:
        compare_recorders(recorders, show_numbers, seconds, turns, folder)
        compare_still_screens(vornic, show_numbers, seconds, turns, folder)


def main():
    arguments = sys.argv[1:]
    if arguments[0] == "--inside":
        inside(arguments[1], arguments[2], float(arguments[3]), int(arguments[4]))
        return
    program, in_session, show_numbers = (os.path.abspath(path) for path in arguments[:3])
    seconds, turns = (arguments[3:] + ["10", "3"][len(arguments) - 3:])[:2]
    sys.exit(subprocess.run([in_session, "--size", f"{SIZE[0]}x{SIZE[1]}", sys.executable, os.path.abspath(__file__), "--inside",
                             program, show_numbers, seconds, turns]).returncode)


if __name__ == "__main__":
    main()

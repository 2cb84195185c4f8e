"""The faults that random_faults.py draws from. Each does one thing to a recorder, or to what it stands on."""
import contextlib
import os
import resource
import signal
import subprocess

from fault_stage import expect

MOMENTS = ("starting", "recording", "stopping", "writing")
TOOLS = ("xrandr", "prlimit", "setpriv", "xdotool", "pulseaudio")


class Fault:
    """The fault of one run; made by the run that it happens to."""

    FACES = ("command", "window")
    MOMENTS = MOMENTS
    SOUND = False  # it is about sound
    ENDS = False  # the program ends without being asked
    CUTS = False  # the recording may end with it
    IS_SILENT = False  # nobody is left who could tell, or hear, of it
    MAY_CRASH = False
    NEEDS_MOUNTS = False
    LOSS = 0.5  # seconds at the end of the recording
    LEAVES_DESKTOP = True  # the program can be talked to by another one

    def __init__(self, run):
        self.run = run
        self.random = run.random

    def prepare(self):
        """Before the program is started."""

    def inject(self):
        pass

    def after_end(self):
        """Before anything is recovered: what a user would do about the fault."""


# ---- signals


class Signal(Fault):
    ENDS = True
    NUMBERS = ()

    def inject(self):
        for index, number in enumerate(self.NUMBERS):
            if index:
                self.run.pause(0, 0.3)
            self.run.signal(number)


class Killed(Signal):
    """SIGKILL"""
    NUMBERS = (signal.SIGKILL,)
    IS_SILENT = True


class Terminated(Signal):
    """SIGTERM"""
    NUMBERS = (signal.SIGTERM,)


class Interrupted(Signal):
    """SIGINT"""
    NUMBERS = (signal.SIGINT,)


class InterruptedTwice(Signal):
    """SIGINT, twice"""
    NUMBERS = (signal.SIGINT, signal.SIGINT)


class HungUp(Signal):
    """SIGHUP"""
    NUMBERS = (signal.SIGHUP,)


class Quit(Signal):
    """SIGQUIT"""
    NUMBERS = (signal.SIGQUIT,)


class KilledAndDamaged(Killed):
    """SIGKILL, and bytes turned over in the recording"""
    MOMENTS = ("recording", "stopping", "writing")
    LOSS = 2.5  # a damaged picture costs those up to the next whole one

    def after_end(self):
        folder = os.path.dirname(self.run.stage.spool())
        names = [name for name in ("vornicvideo.tmp", "vornicaudio.tmp", "journal")
                 if folder and os.path.exists(f"{folder}/{name}") and os.path.getsize(f"{folder}/{name}")]
        if not names:
            return
        with open(f"{folder}/{self.random.choice(names)}", "r+b") as file:
            contents = bytearray(file.read())
            for _ in range(self.random.randint(1, 4)):
                contents[self.random.randrange(len(contents))] ^= 0xFF
            file.seek(0)
            file.write(contents)


# ---- servers


class DeadDisplay(Fault):
    """X server killed"""
    MOMENTS = ("before",) + MOMENTS
    ENDS = True
    LEAVES_DESKTOP = False

    def inject(self):
        self.run.stage.server.kill()
        self.run.stage.server.wait()


class FrozenDisplay(Fault):
    """X server stopped for good"""
    MOMENTS = ("before",) + MOMENTS
    CUTS = True
    LEAVES_DESKTOP = False

    def inject(self):
        self.run.stage.server.send_signal(signal.SIGSTOP)


class ResizedDisplay(Fault):
    """Display given another size"""

    SIZES = ("160x90", "240x180", "320x100")

    def prepare(self):
        self.size = self.random.choice(self.SIZES)
        width, height = self.size.split("x")
        self._xrandr("--newmode", self.size, "60", *[width] * 4, *[height] * 4)
        self._xrandr("--addmode", "screen", self.size)

    def inject(self):
        self._xrandr("--output", "screen", "--mode", self.size)

    def _xrandr(self, *arguments):
        subprocess.run(["xrandr", *arguments], env=self.run.stage.environment, check=True, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, timeout=20)


class SoundFault(Fault):
    MOMENTS = ("before",) + MOMENTS
    SOUND = True

    @property
    def server(self):
        return self.run.stage.stage.sound_server


class DeadSound(SoundFault):
    """Sound server killed"""

    def inject(self):
        self.server.kill()
        self.server.wait()


class FrozenSound(SoundFault):
    """Sound server stopped for good"""

    def inject(self):
        self.server.send_signal(signal.SIGSTOP)


class RestartedSound(DeadSound):
    """Sound server killed and started again"""
    MOMENTS = MOMENTS

    def inject(self):
        super().inject()
        self.run.pause(0, 1)
        self.run.stage.stage.start_sound_server()


class DeadBus(Fault):
    """Session bus killed"""
    MOMENTS = ("before",) + MOMENTS
    LEAVES_DESKTOP = False

    def inject(self):
        self.run.stage.bus.kill()
        self.run.stage.bus.wait()


class FrozenBus(Fault):
    """Session bus stopped for good"""
    MOMENTS = ("before",) + MOMENTS
    LEAVES_DESKTOP = False

    def inject(self):
        self.run.stage.bus.send_signal(signal.SIGSTOP)


# ---- files


class FullVolume(Fault):
    """A volume becomes as small as what is on it."""
    MOMENTS = ("before",) + MOMENTS
    CUTS = True
    NEEDS_MOUNTS = True
    SIZE = "12g"  # no memory is taken for it; the program asks for 10 GiB

    def volume(self):
        raise NotImplementedError

    def prepare(self):
        os.makedirs(self.volume(), exist_ok=True)
        self._mount("-t", "tmpfs", "-o", f"size={self.SIZE},mode=0700", "none")
        self.run.when_closed(["umount", "-l", self.volume()])

    def inject(self):
        while True:
            status = os.statvfs(self.volume())
            used = (status.f_blocks - status.f_bfree) * status.f_frsize
            with contextlib.suppress(subprocess.CalledProcessError):  # it has grown meanwhile
                self._mount("-o", f"remount,size={max(used, 4096)}")
                return

    def after_end(self):
        self._mount("-o", f"remount,size={self.SIZE}")

    def _mount(self, *arguments):
        subprocess.run(["mount", *arguments, self.volume()], check=True, stderr=subprocess.DEVNULL)


class FullMovieVolume(FullVolume):
    """Movie's volume full"""

    def volume(self):
        return self.run.movies


class FullSpoolVolume(FullVolume):
    """Recording's volume full"""

    def volume(self):
        return self.run.cache


class FullVolumeOfBoth(FullVolume):
    """Volume of both full"""

    def volume(self):
        return self.run.disk


class NoFolder(Fault):
    """Movie's folder removed"""
    MOMENTS = ("before",) + MOMENTS

    def inject(self):
        """A movie that is in it already is put elsewhere, and counts."""
        gone = self.run.stage.folder + "/gone"
        os.rename(self.run.movies, gone)
        while os.path.exists(gone):
            for name in os.listdir(gone):
                with contextlib.suppress(FileNotFoundError):
                    if name.endswith(".mp4"):
                        os.rename(f"{gone}/{name}", f"{self.run.saved}/{name}")
                    else:
                        os.remove(f"{gone}/{name}")
            with contextlib.suppress(OSError):  # something has come meanwhile
                os.rmdir(gone)

    def after_end(self):
        os.makedirs(self.run.movies, exist_ok=True)


class ReadOnlyFolder(Fault):
    """Movie's folder made read-only"""
    MOMENTS = ("before",) + MOMENTS

    def inject(self):
        os.chmod(self.run.movies, 0o555)

    def after_end(self):
        os.chmod(self.run.movies, 0o755)


class OtherFile(Fault):
    """Another file at the movie's name"""
    MOMENTS = ("before",) + MOMENTS

    def inject(self):
        with contextlib.suppress(FileExistsError):  # the movie was quicker
            with open(self.run.movie, "x", encoding="ascii") as file:
                file.write("another\n")
            self.run.foreign[self.run.movie] = "another\n"


# ---- other programs


class SecondStart(Fault):
    """A second start, or --stop"""
    MOMENTS = ("recording", "stopping", "writing")

    def inject(self):
        if self.run.face == "command":
            self._record_too()
        elif self.run.stopped is None and self.random.random() < 0.7:
            self.run.stage.second_start(*self.random.choice([(), ("--record=full", self.run.movies + "/other.mp4")]))
        else:
            self.run.stop_by_command()

    def _record_too(self):
        """To the same name."""
        done = self.run.stage.second_start("record", "--ignore-low-space", "--duration", "1", self.run.movie)
        said = done.stdout.decode("utf-8", "replace")
        if done.returncode == 0:
            self.run.movies_of_others.append([line for line in said.splitlines() if line.endswith(".mp4")][-1])
        else:
            expect("exists" in said, "the second recording failed: " + said)


# ---- what the system gives


class NoThreads(Fault):
    """No more threads"""
    MOMENTS = ("before",) + MOMENTS
    CUTS = True

    def prepare(self):
        self.run.environment.update(LD_PRELOAD=self.run.limiter, THREADS_UNTIL=self.run.work + "/no-more")

    def inject(self):
        if self.run.moment == "before":
            self.run.environment.update(THREADS_AT_MOST=str(self.random.randint(0, 24)))
        else:
            with open(self.run.work + "/no-more", "w", encoding="ascii"):
                pass


class NoDescriptors(Fault):
    """No more descriptors"""
    MOMENTS = ("before",) + MOMENTS
    CUTS = True

    def inject(self):
        if self.run.moment == "before":
            self.run.prefix += ["prlimit", f"--nofile={self.random.randint(4, 60)}"]
            return
        pid = self.run.stage.program.pid
        with contextlib.suppress(OSError):  # the program may have ended
            count = max((int(name) for name in os.listdir(f"/proc/{pid}/fd")), default=0) + 1
            resource.prlimit(pid, resource.RLIMIT_NOFILE, (count, count))


class NoMemory(Fault):
    """No more memory"""
    MAY_CRASH = True  # libraries end a program that they can give no memory to
    MOMENTS = ("before",) + MOMENTS
    CUTS = True

    def inject(self):
        if self.run.moment == "before":
            self.run.prefix += ["prlimit", f"--as={self.random.randint(250, 1000) << 20}"]
            return
        pid = self.run.stage.program.pid
        with contextlib.suppress(OSError, ValueError):
            with open(f"/proc/{pid}/statm", encoding="ascii") as file:
                pages = int(file.read().split()[0])
            resource.prlimit(pid, resource.RLIMIT_AS, (pages * resource.getpagesize(),) * 2)


class ClosedStreams(Fault):
    """Standard streams closed"""
    MOMENTS = ("before",) + MOMENTS
    IS_SILENT = True

    def prepare(self):
        if self.run.moment == "before":
            self.run.prefix += ["sh", "-c", 'exec "$0" "$@" <&- >&- 2>&-']
        else:
            self.reader, self.run.output = os.pipe()

    def inject(self):
        """Whoever read what the program says has gone."""
        if self.run.moment != "before":
            os.close(self.reader)


FAULTS = (Killed, Terminated, Interrupted, InterruptedTwice, HungUp, Quit, KilledAndDamaged, DeadDisplay, FrozenDisplay,
          ResizedDisplay, DeadSound, FrozenSound, RestartedSound, DeadBus, FrozenBus, FullMovieVolume, FullSpoolVolume,
          FullVolumeOfBoth, NoFolder, ReadOnlyFolder, OtherFile, SecondStart, NoThreads, NoDescriptors, NoMemory,
          ClosedStreams)

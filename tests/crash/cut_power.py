#!/usr/bin/env python3
"""cut_power.py [N] [--seed S]: cuts the power N times while `vornic record` runs, and looks for what is left.

The disk is one that forgets what was not synced. The recorder is loaded with libforget_unsynced.so, which copies a
file's bytes, or a folder's names, to a store whenever the program syncs that file or that folder, and makes the copy
count just before the call returns (20 to 120 ms later, as long as a disk takes). A cut is a SIGKILL; then the cache
and the folder of the movie are built anew from the store alone:
- a name is there only where its folder was synced while it had that name, up from the folder that stood before;
- a file has only the bytes that it had when it was synced last; one that never was is empty;
- in half of the cuts a disk that has written some things early is played: each 4096-byte page that was written but
  not synced is there or not, by chance; a file is as long as it was synced or as it was written; each folder's list of
  names is the synced or the newest one.
Every third recorder meets no cache folder at all, as a user's first one does. `vornic recover` then works on what was built. At most 2 s before the cut may be lost; where the movie is already
durable at its name, it must be whole. The spool may not be gone before that. What is not asked for: that the beginning
of a movie is removed where the recording was too young for its journal, which tells of that file, to be on the disk.

Why this is honest: the store knows nothing but what the program itself asked the system to make durable, while the
system promises no less (POSIX: fsync and fdatasync return once the data, and what is needed to get at them, are on the
device; a name needs the sync of its folder). Each of the three rules above takes away all that is not promised, which
no real file system does at once. The recorder under test is the one that is shipped.
What it does not model: a disk that lies about syncs, sectors torn within a page (checksums are tested elsewhere:
bytes turned over), errors told by a sync, what a file system loses of its own structure, and syncs by other means
(syncfs, O_SYNC, msync): were the recorder to use those, the store would not see it and this test would fail.

Needs what kill_recordings.py needs. Exit status: 0 nothing more was lost, 1 something was.
"""
import ctypes
import os
import random
import shutil
import sys

import crash_stage as crash
import kill_recordings

PAGE = 4096


def identify(path):
    """What a file or folder is, whatever it is called, as libforget_unsynced.so says it: its number, and when it was
    made, which only the C library tells."""
    status = ctypes.create_string_buffer(256)
    no_follow, wanted = 0x100, 0x901
    if ctypes.CDLL(None, use_errno=True).statx(-100, os.fsencode(path), no_follow, wanted, status) != 0:
        raise OSError(ctypes.get_errno(), "statx", path)
    field = lambda kind, offset: kind.from_buffer(status, offset).value
    is_folder = field(ctypes.c_uint16, 28) & 0o170000 == 0o040000
    return (f"{'d' if is_folder else 'f'}{field(ctypes.c_uint64, 32)}-{field(ctypes.c_int64, 80)}"
            f"-{field(ctypes.c_uint32, 88)}")


def listing(folder):
    return {name: identify(folder + "/" + name) for name in os.listdir(folder)}


def store_all(root, store):
    """Everything that stands before the recorder starts is durable."""
    for path, _, files in os.walk(root):
        with open(f"{store}/{identify(path)}", "w", encoding="utf-8") as names:
            names.writelines(f"{identity} {name}\n" for name, identity in listing(path).items())
        for name in files:
            shutil.copyfile(path + "/" + name, f"{store}/{identify(path + '/' + name)}")


class Disk:
    """What a cut leaves of the folder `root`. Without a random generator nothing that was not synced is there."""

    def __init__(self, root, store, random_):
        self.root = identify(root)
        self.store = store
        self.random = random_
        self.written = {identify(path): path for path, _, _ in os.walk(root)}
        for path in list(self.written.values()):
            self.written.update({identity: path + "/" + name for name, identity in listing(path).items()})

    def synced(self, identity):
        try:
            with open(f"{self.store}/{identity}", "rb") as file:
                return file.read()
        except FileNotFoundError:
            return b""

    def is_early(self):
        return self.random is not None and self.random.random() < 0.5

    def names_in(self, identity):
        if identity in self.written and self.is_early():
            return listing(self.written[identity])
        return {name: inner for inner, name in
                (line.split(" ", 1) for line in self.synced(identity).decode().splitlines())}

    def bytes_of(self, identity):
        synced = self.synced(identity)
        if self.random is None or identity not in self.written:
            return synced
        with open(self.written[identity], "rb") as file:
            written = file.read()
        length = len(self.random.choice((synced, written)))
        pages = []
        for start in range(0, length, PAGE):
            size = min(PAGE, length - start)
            source = written if self.is_early() else synced
            pages.append(source[start:start + size].ljust(size, b"\0"))
        return b"".join(pages)

    def build(self, target, identity=None):
        os.mkdir(target, mode=0o700)
        for name, inner in self.names_in(identity or self.root).items():
            path = target + "/" + name
            if inner.startswith("d"):
                self.build(path, inner)
            else:
                with open(os.open(path, os.O_WRONLY | os.O_CREAT, 0o600), "wb") as file:
                    file.write(self.bytes_of(inner))
            if inner in self.written:
                shutil.copymode(self.written[inner], path)


class Cut(kill_recordings.Case):
    """As when the power is cut in place of the kill."""

    MOMENTS = ("recording", "starting", "recording", "stopping", "encoding", "finishing")
    LOSS = 2.0
    FINISH_PAUSE = 0.6
    MAY_SKIP = True
    WHAT = "cuts"

    def __init__(self, workshop, seed, number):
        super().__init__(workshop, seed, number)
        self.store = self.work + ".store"
        if number % 3 == 2:
            shutil.rmtree(self.work + "/cache/com.kavlor.vornic")

    def start(self):
        os.mkdir(self.store)
        store_all(self.work, self.store)
        preload = {"LD_PRELOAD": self.workshop.programs.forget, "FORGET_ROOT": self.work,
                   "FORGET_STORE": self.store, "FORGET_SYNC_MS": str(self.random.randint(20, 120))}
        return crash.Recorder(self.workshop.programs, self.stage, self.work, self.sound, preload)

    def after_kill(self):
        disk = Disk(self.work, self.store, self.random if self.random.random() < 0.5 else None)
        disk.build(self.work + ".left")
        os.rename(self.work, self.work + ".before")
        os.rename(self.work + ".left", self.work)
        shutil.copy(self.work + ".before/errors", self.recorder.errors)


if __name__ == "__main__":
    sys.exit(kill_recordings.run_all(Cut, __doc__))

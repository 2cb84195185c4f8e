#!/usr/bin/env python3
"""random_faults.py [N] [--seed S] [--jobs J] [--only "NAME"]: starts and ends N recordings, with a fault at a random
moment of each.

Each run has an X server, a sound server, a session bus and folders of its own. Drawn are: the fault (those of
injected_faults.py in turn, in an order that is drawn, too), its moment (before the program is started, while it starts,
records, stops, writes the movie), `vornic record` or the window, with or without sound, and how long is recorded.
Whatever happens, the program must end within a bound and tell of what went wrong. What was recorded must be a movie at
once, or `vornic recover` must make it, with what the screen showed up to the fault or the stop, but for half a second. No
process may be left, and no file but the movie. A recording may be missing only where the program was ended, or refused
to begin, before the first picture was stored.

Prints a row for each run, and a table of all at the end. One seed draws the same again; how the load of the machine moves
the moments, no seed tells. Mounts are made in a name space of their own and go with it; where none can be made, the
faults that need them are left out.

Exit status: 0 nothing was lost, 1 something was.
"""
import argparse
import collections
import contextlib
import os
import queue
import random
import shutil
import subprocess
import sys
import threading
import time
import traceback

import injected_faults
from fault_stage import FaultStage, crash, expect
from crash_stage import Failure
from random_run import Run
from random_verdict import Result, Verdict

IN_NAME_SPACE = "VORNIC_RANDOM_FAULTS_MAY_MOUNT"
TOOLS = ("Xvfb", "openbox", "xprop", "dbus-daemon", "dbus-monitor", "ffmpeg", "ffprobe", "unshare", *injected_faults.TOOLS)


def run_one(arguments, options, number):
    run = None
    try:
        run = Run(arguments, options, number)
        return Verdict(run, run.execute()).result()
    except Exception as failure:  # whatever it is, the others go on
        note = str(failure) if isinstance(failure, Failure) else traceback.format_exc()
        if run is None:
            return Result("?", "", "", False, 0, "FAILED", None, 0, "", note)
        if arguments.keep:
            note += f" [{keep(run, f'{arguments.keep}/{number + 1}')}]"
        return Result(run.name, run.face, run.moment, run.sound, 0, "FAILED", None, 0, "", note)
    finally:
        if run:
            run.close()


def keep(run, folder):
    """What a run has left, but for sockets."""
    def others(path, names):
        return [name for name in names if not os.path.isdir(f"{path}/{name}") and not os.path.isfile(f"{path}/{name}")]
    run.keep_stacks()
    return shutil.copytree(run.work, folder, symlinks=True, ignore=others)


def row(number, result):
    lost = "" if result.lost is None else f"{result.lost:.2f}"
    return (f"{number + 1:4}  {result.fault:50}{result.face:8}{'sound' if result.sound else '':6}{result.moment:10}"
            f"{result.seconds:6.1f}  {result.outcome:12}{lost:>5}{result.late:6.2f}  "
            f"{result.note or result.told}").rstrip()


def work_off(numbers, results, arguments, options):
    while True:
        try:
            number = numbers.get_nowait()
        except queue.Empty:
            return
        result = run_one(arguments, options, number)
        results.append(result)
        print(row(number, result), flush=True)


def options_with_sound(build):
    """What the window stores, but with sound switched on."""
    with contextlib.closing(FaultStage(crash.Programs(build))) as stage:
        stage.run()
        stage.wait_for_window("^Vornic$")
        stage.program.terminate()
        expect(stage.wait_for_end() == 0, "the window did not end well")
        with open(stage.folder + "/config/kavlor/Vornic.conf", encoding="ascii") as file:
            stored = file.read()
    # A boolean of the archive: false is the byte f4, true is f5.
    expect(stored.count(r"_enableAudio\xf4") == 1, "the options' archive has another form")
    return stored.replace(r"_enableAudio\xf4", r"_enableAudio\xf5")


def table(faults, results):
    """In the form that docs/reliability.md has it."""
    lines = ["| fault | runs | movie at once | recovered | nothing yet | lost at most | told most often |",
             "|---|---|---|---|---|---|---|"]
    lines += [table_row(kind.__doc__, [result for result in results if result.fault == kind.__doc__]) for kind in faults]
    return "\n".join(lines + [table_row("all", results, "")])


def table_row(name, results, words=None):
    count = collections.Counter(result.outcome for result in results)
    lost = max((result.lost for result in results if result.lost is not None), default=None)
    if words is None:
        told = collections.Counter(result.told for result in results if result.told).most_common(1)
        words = told[0][0] if told else "–"
    return (f"| {name} | {len(results)} | {count['movie']} | {count['recovered']} | {count['nothing yet']} | "
            f"{'–' if lost is None else f'{lost:.1f} s'} | {words} |")


def enter_name_space():
    """Goes on where mounts may be made, if that can be had."""
    if IN_NAME_SPACE in os.environ:
        return True
    for options in (["--mount"], ["--mount", "--map-root-user"]):
        command = ["unshare", *options, "sh", "-c", "mount -t tmpfs none /mnt"]
        if subprocess.run(command, check=False, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode == 0:
            os.environ[IN_NAME_SPACE] = "1"
            os.execvp("unshare", ["unshare", *options, sys.executable, "-B", *sys.argv])
    return False


def hide_shared_memory():
    """Other programs' of the machine; returns how to tell what is left in it. Sound servers that are killed leave theirs."""
    subprocess.run(["mount", "-t", "tmpfs", "none", "/dev/shm"], check=True)
    return lambda: [name for name in os.listdir("/dev/shm") if not name.startswith("pulse-shm-")]


def parse(may_mount):
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("count", nargs="?", type=int, default=300)
    parser.add_argument("--seed", type=int, default=random.randrange(1_000_000), help="the same seed draws the same")
    parser.add_argument("--build", default=os.path.join(crash.TREE, "build/release"), help="where the tree was built")
    parser.add_argument("--jobs", type=int, default=3, help="how many run side by side")
    parser.add_argument("--only", help="this fault, by its name in the table")
    parser.add_argument("--number", type=int, help="only the run of this number")
    parser.add_argument("--keep", help="keep what is left of failed runs in this folder")
    arguments = parser.parse_args()
    arguments.faults = [kind for kind in injected_faults.FAULTS
                        if (may_mount or not kind.NEEDS_MOUNTS) and arguments.only in (None, kind.__doc__)]
    return arguments


def main():
    missing = [tool for tool in TOOLS if not shutil.which(tool)]
    if missing:
        print("not installed: " + ", ".join(missing))
        return 77
    may_mount = enter_name_space()
    arguments = parse(may_mount)
    print(f"{arguments.count} runs, seed {arguments.seed}{'' if may_mount else '; no mounts can be made here'}", flush=True)
    left_in_memory = hide_shared_memory() if may_mount else list
    options = options_with_sound(arguments.build)
    numbers = queue.Queue()
    for number in range(arguments.count) if arguments.number is None else [arguments.number - 1]:
        numbers.put(number)
    begin = time.monotonic()
    results = []
    workers = [threading.Thread(target=work_off, args=(numbers, results, arguments, options))
               for _ in range(arguments.jobs)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    failed = sum(result.outcome == "FAILED" for result in results)
    if left := left_in_memory():
        failed += 1
        print("left behind in /dev/shm: " + ", ".join(left))
    minutes = (time.monotonic() - begin) / 60
    print(f"\n{table(arguments.faults, results)}\n\n{len(results)} runs in {minutes:.1f} minutes, {failed} failed; "
          f"seed {arguments.seed}")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())

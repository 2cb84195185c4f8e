#!/usr/bin/env python3
"""How long it takes from the start of the program to its visible window, beside another recorder.

    compare_start.py PROGRAM [turns]

Starts vornic and simplescreenrecorder in turns on a private virtual display with a window manager, each warm, and
polls for a mapped window of theirs. Prints the medians and their ratio.
"""
import os
import shutil
import statistics
import subprocess
import sys
import tempfile
import time

from compare_recording import start_server


def seconds_to_window(command, title, environment):
    started = time.monotonic()
    process = subprocess.Popen(command, env=environment, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    try:
        while time.monotonic() - started < 20:
            found = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title], env=environment,
                                   capture_output=True, text=True, check=False).stdout
            if found.strip():
                return time.monotonic() - started
        raise SystemExit(f"{command[0]} showed no window within 20 s")
    finally:
        process.terminate()
        process.wait()
        time.sleep(0.5)


def main():
    program = sys.argv[1]
    turns = int(sys.argv[2]) if len(sys.argv) > 2 else 7
    peer = shutil.which("simplescreenrecorder")
    with tempfile.TemporaryDirectory() as folder:
        server, environment = start_server(folder)
        environment.update(HOME=folder, XDG_CONFIG_HOME=folder, XDG_CACHE_HOME=folder, QT_QPA_PLATFORM="xcb",
                           PULSE_SERVER="unix:/nonexistent", DBUS_SESSION_BUS_ADDRESS="unix:path=/nonexistent")
        manager = subprocess.Popen(["openbox"], env=environment, stderr=subprocess.DEVNULL)
        time.sleep(1)
        ours, theirs = [], []
        for turn in range(turns + 1):  # the first warms the caches
            ours.append(seconds_to_window([program], "^Vornic$", environment))
            if peer:
                theirs.append(seconds_to_window([peer], "SimpleScreenRecorder", environment))
            if turn == 0:
                ours.clear()
                theirs.clear()
        for process in (manager, server):
            process.kill()
            process.wait()
    own = statistics.median(ours)
    print(f"start to visible window: {own:.3f} s")
    if theirs:
        print(f"simplescreenrecorder: {statistics.median(theirs):.3f} s; ratio {own / statistics.median(theirs):.2f}")
    else:
        print("simplescreenrecorder is not installed: nothing to compare with")


if __name__ == "__main__":
    main()

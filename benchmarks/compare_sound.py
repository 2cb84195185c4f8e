#!/usr/bin/env python3
"""What sound adds to the processor time of a recording.

    compare_sound.py PROGRAM SHOW_SCENE PLAY_SOUND [seconds] [turns]

Lets the program record a changing screen of 1920 x 1080 with and without sound, in turns, beside a private
PulseAudio server that plays a tone. The ratio is of the medians of both.
"""
import os
import statistics
import subprocess
import sys
import tempfile
import time

from compare_recording import measure, start_server


def start_sound(folder):
    """The server, and the environment that leads to it."""
    address = f"unix:{folder}/native"
    private = dict(os.environ, HOME=folder, XDG_RUNTIME_DIR=folder)
    server = subprocess.Popen(["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                               f"--load=module-native-protocol-unix auth-anonymous=1 socket={folder}/native",
                               "--load=module-null-sink rate=48000"],
                              env=private, stderr=subprocess.DEVNULL)
    while not os.path.exists(f"{folder}/native"):
        time.sleep(0.1)
    return server, address


def main():
    program, show_scene, play_sound = sys.argv[1:4]
    seconds = float(sys.argv[4]) if len(sys.argv) > 4 else 10
    turns = int(sys.argv[5]) if len(sys.argv) > 5 else 5
    with tempfile.TemporaryDirectory() as folder:
        display, environment = start_server(folder)
        sound, address = start_sound(folder)
        environment["PULSE_SERVER"] = address
        shown = subprocess.Popen([show_scene, "video", "--fps", "30", "--seconds", "100000"], env=environment,
                                 stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
        shown.stdout.readline()
        player = subprocess.Popen([play_sound, "tone", "100000", "440", "0.3"], env=environment,
                                  stdout=subprocess.DEVNULL)
        base = [program, "record", "--overwrite", "--ignore-low-space", f"{folder}/movie.mp4"]
        silent, heard = [], []
        for _ in range(turns):
            silent.append(measure(base, environment, seconds)[0])
            heard.append(measure(base + ["--audio"], environment, seconds)[0])
        for process in (player, shown, sound, display):
            process.kill()
            process.wait()
    without, with_sound = statistics.median(silent), statistics.median(heard)
    print(f"moving picture: {without:.3f} cores without sound, {with_sound:.3f} with it: ratio "
          f"{with_sound / without:.3f}")


if __name__ == "__main__":
    main()

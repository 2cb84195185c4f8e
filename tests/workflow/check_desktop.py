#!/usr/bin/python3
"""check_desktop.py PROGRAM: the program among the desktop's services: a second start reaches the first, actions come
from outside, the session stays awake while it records and while it writes the movie, and a notification ends it."""
import os
import subprocess
import sys
import threading
import time

from desktop_session import Program, accept_panel, active_window_but, key, run_inside, wait, xdotool

MOVIE = os.environ.get("VORNIC_TEST_SESSION", "") + "/Untitled.mp4"
SERVICES = """<node>
<interface name="org.freedesktop.ScreenSaver">
 <method name="Inhibit"><arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="u" direction="out"/></method>
 <method name="UnInhibit"><arg type="u" direction="in"/></method>
</interface>
<interface name="org.freedesktop.Notifications">
 <method name="GetCapabilities"><arg type="as" direction="out"/></method>
 <method name="Notify"><arg type="s" direction="in"/><arg type="u" direction="in"/><arg type="s" direction="in"/>
  <arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="as" direction="in"/>
  <arg type="a{sv}" direction="in"/><arg type="i" direction="in"/><arg type="u" direction="out"/></method>
 <signal name="ActionInvoked"><arg type="u"/><arg type="s"/></signal>
</interface>
<interface name="org.freedesktop.FileManager1">
 <method name="ShowItems"><arg type="as" direction="in"/><arg type="s" direction="in"/></method>
</interface>
</node>"""


class Services:
    """The desktop's services, which write down what they are asked."""

    def __init__(self):
        from gi.repository import Gio, GLib
        self.gio, self.glib = Gio, GLib
        self.calls = []
        self.bus = Gio.bus_get_sync(Gio.BusType.SESSION)
        for interface in Gio.DBusNodeInfo.new_for_xml(SERVICES).interfaces:
            path = "/" + interface.name.replace(".", "/")
            self.bus.register_object(path, interface, self.called, None, None)
            Gio.bus_own_name_on_connection(self.bus, interface.name, Gio.BusNameOwnerFlags.NONE, None, None)
        loop = GLib.MainLoop()
        threading.Thread(target=loop.run, daemon=True).start()

    def called(self, _bus, _sender, _path, _interface, method, arguments, invocation):
        self.calls.append((method, arguments.unpack()))
        answer = {"Inhibit": ("(u)", (7,)), "Notify": ("(u)", (42,)),
                  "GetCapabilities": ("(as)", (["body", "actions"],))}.get(method)
        invocation.return_value(self.glib.Variant(*answer) if answer else None)

    def count(self, method):
        return sum(1 for call in self.calls if call[0] == method)

    def invoke_action(self, action):
        self.bus.emit_signal(None, "/org/freedesktop/Notifications", "org.freedesktop.Notifications", "ActionInvoked",
                             self.glib.Variant("(us)", (42, action)))


def start_again(*arguments):
    return subprocess.run([sys.argv[1], *arguments], timeout=20, capture_output=True, text=True, check=False)


def check_second_start(program):
    other = subprocess.Popen(["xterm", "-geometry", "20x5+0+0"])
    wait(lambda: "Vornic" not in xdotool("getactivewindow", "getwindowname"))
    assert start_again().returncode == 0
    wait(lambda: xdotool("getactivewindow", "getwindowname") == "Vornic")
    assert program.process.poll() is None
    other.kill()
    other.wait()


def record(program, services):
    window = active_window_but()
    assert start_again("--record=full").returncode == 0
    program.wait_for("Save the recording as", "dialog", "file chooser")
    panel = active_window_but(window)
    accept_panel(panel)
    program.wait_for("Start recording", "push button")
    assert services.count("Inhibit") == 0
    active_window_but(window, panel)
    key("Return")
    wait(lambda: services.count("Inhibit") == 1)
    time.sleep(1.2)  # what is recorded
    assert services.count("UnInhibit") == 0
    assert start_again("--stop").returncode == 0
    wait(lambda: os.path.exists(MOVIE), 40)
    wait(lambda: services.count("UnInhibit") == 1)
    assert ("UnInhibit", (7,)) in services.calls


def movie_seconds():
    return float(subprocess.run(["ffprobe", "-v", "error", "-show_entries", "format=duration", "-of", "csv=p=0", MOVIE],
                                capture_output=True, text=True, check=True).stdout)


def check_notification(services):
    wait(lambda: services.count("Notify") == 1)
    name, _, icon, title, body, actions, hints, _ = next(call[1] for call in services.calls if call[0] == "Notify")
    length = f"0:{int(movie_seconds()):02} long"
    assert icon == "com.kavlor.vornic" and hints["desktop-entry"] == "com.kavlor.vornic", (name, icon, hints)
    assert title == "The recording is finished" and body.startswith(f"Untitled.mp4: {length}, "), (title, body)
    # The movie is shown in its folder when it is finished, and again when the notification is asked to.
    wait(lambda: services.count("ShowItems") == 1)
    services.invoke_action(actions[0])
    wait(lambda: services.count("ShowItems") == 2)
    for call in services.calls:
        assert call[0] != "ShowItems" or call[1][0] == ["file://" + MOVIE], call


def main():
    run_inside(services=("openbox",))
    alone = start_again("--stop")
    assert alone.returncode == 1 and "not recording" in alone.stderr, alone
    import gi
    gi.require_version("Gio", "2.0")
    services = Services()
    program = Program(sys.argv[1])
    try:
        check_second_start(program)
        record(program, services)
        check_notification(services)
        print("all of the desktop's services were met")
    finally:
        program.kill()


if __name__ == "__main__":
    main()

"""A private desktop for a test: X server, window manager, sound server, session bus and accessibility bus.

A test calls run_inside() first: it starts the session, and the same script again inside it. There, the program's
controls are found over the accessibility bus, as a screen reader finds them, and worked with xdotool, as a person
does.
"""
import atexit
import contextlib
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time

INSIDE = "VORNIC_TEST_SESSION"


def run_inside(size="1280x800", services=()):
    """Returns inside the session only; outside, ends with the exit status of the script inside."""
    if INSIDE in os.environ:
        start_xfce(services)
        if {"openbox", "xfwm4"} & set(services):
            wait(has_window_manager)
        return
    if "xfwm4" in services and not (shutil.which("xfwm4") and shutil.which("xfce4-panel")
                                    and os.path.exists(service_file("org.xfce.Xfconf"))):
        sys.exit(77)  # nobody who builds the program needs Xfce
    with contextlib.ExitStack() as started:
        folder = tempfile.mkdtemp()
        started.callback(remove, folder)
        read, write = os.pipe()
        # A server that resets turns away who comes just when another was the last to leave.
        server = subprocess.Popen(["Xvfb", "-displayfd", str(write), "-screen", "0", size + "x24",
                                   "-nolisten", "tcp", "-noreset"], pass_fds=[write], stderr=subprocess.DEVNULL)
        started.callback(end, server)
        os.close(write)
        environment = dict(os.environ, DISPLAY=":" + os.read(read, 16).decode().strip(), HOME=folder,
                           XDG_RUNTIME_DIR=folder, XDG_CONFIG_HOME=folder + "/config", XDG_CACHE_HOME=folder + "/cache",
                           XDG_DATA_HOME=folder + "/data", LC_ALL="C.UTF-8", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                           QT_QPA_PLATFORM="xcb", PULSE_SERVER="unix:" + folder + "/native")
        environment[INSIDE] = folder
        for name in ("AT_SPI_BUS_ADDRESS", "DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY", "XDG_CURRENT_DESKTOP"):
            environment.pop(name, None)
        environment["PATH"] = silent_launcher(folder) + ":" + environment["PATH"]
        if "sound" in services:
            if not shutil.which("pulseaudio"):
                sys.exit(77)  # the desktop of this machine has another sound server
            sound = subprocess.Popen(["pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
                                      f"--load=module-native-protocol-unix auth-anonymous=1 socket={folder}/native",
                                      "--load=module-null-sink rate=48000"],
                                     env=environment, stderr=subprocess.DEVNULL)
            started.callback(end, sound)
            wait(lambda: os.path.exists(folder + "/native"))
        for service in ("openbox", "tint2"):
            if service in services:
                started.callback(end, subprocess.Popen([service], env=environment, stdout=subprocess.DEVNULL,
                                                       stderr=subprocess.DEVNULL))
        inside = subprocess.Popen(["dbus-run-session", "--config-file", bus_configuration(folder, services), "--",
                                   sys.executable] + sys.argv, env=environment)
        started.callback(end, inside)
        sys.exit(inside.wait(timeout=150))


def has_window_manager():
    """A window that is there before its manager gets no keyboard."""
    return "window id" in subprocess.run(["xprop", "-root", "_NET_SUPPORTING_WM_CHECK"], capture_output=True, text=True,
                                         check=False).stdout


def service_file(name):
    """What tells a bus how to start the service."""
    return f"/usr/share/dbus-1/services/{name}.service"


def bus_configuration(folder, wanted):
    """A session bus that starts nothing but the accessibility bus, and what Xfce keeps its settings with: this machine
    may have a file manager, a notification server, and more that would take part."""
    services = folder + "/services"
    os.mkdir(services)
    for name in ("org.a11y.Bus",) + (("org.xfce.Xfconf",) if "xfwm4" in wanted else ()):
        shutil.copy(service_file(name), services)
    path = folder + "/bus.conf"
    with open(path, "w", encoding="utf-8") as file:
        file.write(f"""<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-Bus Bus Configuration 1.0//EN"
 "http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd">
<busconfig>
  <type>session</type>
  <listen>unix:dir={folder}</listen>
  <servicedir>{services}</servicedir>
  <policy context="default">
    <allow send_destination="*"/>
    <allow receive_sender="*"/>
    <allow own="*"/>
  </policy>
</busconfig>
""")
    return path


PANEL = """<channel name="xfce4-panel" version="1.0">
 <property name="configver" type="int" value="2"/>
 <property name="panels" type="array"><value type="int" value="1"/>
  <property name="panel-1" type="empty">
   <property name="position" type="string" value="p=8;x=0;y=0"/>
   <property name="position-locked" type="bool" value="true"/>
   <property name="length" type="uint" value="100"/>
   <property name="size" type="uint" value="30"/>
   <property name="plugin-ids" type="array"><value type="int" value="1"/></property>
  </property>
 </property>
 <property name="plugins" type="empty">
  <property name="plugin-1" type="string" value="tasklist"/>
 </property>
</channel>
"""


def start_xfce(services):
    """The window manager xfwm4, and a panel at the lower edge that lists the windows; both talk on the session bus."""
    if "xfce4-panel" in services:
        settings = os.environ["XDG_CONFIG_HOME"] + "/xfce4/xfconf/xfce-perchannel-xml"
        os.makedirs(settings)
        with open(settings + "/xfce4-panel.xml", "w", encoding="ascii") as file:
            file.write(PANEL)
    for service in ("xfwm4", "xfce4-panel"):
        if service in services:
            process = subprocess.Popen([service], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            atexit.register(end, process)


def silent_launcher(folder):
    """Where a program stands that would open files and folders with whatever this machine has for them."""
    launcher = folder + "/bin/xdg-open"
    os.mkdir(folder + "/bin")
    with open(launcher, "w", encoding="utf-8") as file:
        file.write("#!/bin/sh\n")
    os.chmod(launcher, 0o755)
    return folder + "/bin"


def remove(folder):
    """What the bus has started may write there until it has seen that the bus is gone."""
    def is_gone():
        shutil.rmtree(folder, ignore_errors=True)
        return not os.path.exists(folder)
    wait(is_gone)


def end(process):
    if process.poll() is None:
        process.terminate()
        try:
            process.wait(timeout=5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def wait(holds, seconds=20):
    """The first true answer; fails when there is none in that time. Asks every 50 ms at first, then less and less often:
    a walk over a program's widgets takes about as long, in this process and in the program."""
    start = time.monotonic()
    while True:
        answer = holds()
        if answer:
            return answer
        waited = time.monotonic() - start
        if waited > seconds:
            raise AssertionError("waited in vain for " + getattr(holds, "what", "an answer"))
        time.sleep(min(max(waited / 8, 0.05), 0.3))


def xdotool(*arguments):
    return subprocess.run(["xdotool"] + [str(argument) for argument in arguments], capture_output=True, text=True,
                          check=False).stdout.strip()


def active_window_but(*others):
    """The window that has the keyboard, once that is none of the others."""
    def active():
        window = xdotool("getactivewindow")
        return window if window not in ("",) + others else None
    active.what = "another active window"
    return wait(active)


def accept_panel(panel):
    """Presses Return until the file panel has closed. A key goes astray where the panel shows its completions, or does
    not take keys yet."""
    def has_closed():
        return xdotool("getactivewindow") not in ("", panel)
    for _ in range(4):
        key("Return")
        with contextlib.suppress(AssertionError):
            wait(has_closed, 5)
            return
    raise AssertionError("the file panel did not close")


def walk(node):
    """The node and all beneath it; a spin button is one control, whatever it is made of."""
    yield node
    if node.get_role_name() == "spin button":
        return
    for index in range(node.get_child_count()):
        child = node.get_child_at_index(index)
        if child is not None:
            yield from walk(child)


class Program:
    """The program, found over the accessibility bus and worked with mouse and keyboard."""

    def __init__(self, path, *arguments):
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        Atspi.init()
        self.atspi = Atspi
        self.process = subprocess.Popen([path] + list(arguments))
        self.window = self.wait_for("Vornic", "frame")

    def applications(self):
        desktop = self.atspi.get_desktop(0)
        return [desktop.get_child_at_index(index) for index in range(desktop.get_child_count())]

    def states(self, node):
        return {self.atspi.StateType(state).value_nick for state in node.get_state_set().get_states()}

    def find(self, name, *roles):
        """What is shown with that name and one of the roles; of several the one that came last."""
        found = None
        with contextlib.suppress(Exception):  # what is walked over may end meanwhile
            for application in self.applications():
                for node in walk(application):
                    if node.get_name().replace("&", "") == name and (not roles or node.get_role_name() in roles) \
                            and "showing" in self.states(node):
                        found = node
        return found

    def wait_for(self, name, *roles):
        def holds():
            return self.find(name, *roles)
        holds.what = f"\"{name}\" {roles}"
        return wait(holds)

    def place(self, node):
        """The middle of the node on the screen."""
        box = node.get_extents(self.atspi.CoordType.SCREEN)
        return box.x + box.width // 2, box.y + box.height // 2

    def click(self, name, *roles):
        x, y = self.place(self.wait_for(name, *roles))
        xdotool("mousemove", x, y)
        time.sleep(0.1)
        xdotool("click", 1)
        time.sleep(0.3)

    def is_checked(self, name, *roles):
        return "checked" in self.states(self.wait_for(name, *roles))

    def value(self, name):
        return self.wait_for(name, "spin button").get_value_iface().get_current_value()

    def text(self, name, *roles):
        node = self.wait_for(name, *roles)
        return node.get_text_iface().get_text(0, -1)

    def wait_for_end(self):
        return self.process.wait(timeout=60)

    def kill(self):
        if self.process.poll() is None:
            self.process.send_signal(signal.SIGKILL)
            self.process.wait()


def key(*keys):
    for one in keys:
        xdotool("key", "--clearmodifiers", one)
        time.sleep(0.2)


def type_text(text):
    xdotool("type", "--clearmodifiers", "--delay", "20", text)
    time.sleep(0.2)

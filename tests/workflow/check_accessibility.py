#!/usr/bin/python3
"""check_accessibility.py PROGRAM: fails where a screen reader learns no name, another role, or a wrong state of a
control of the main window."""
import glob
import os
import subprocess
import sys

from desktop_session import Program, run_inside, wait, walk

# name, role, states that it has, states that it has not; without a logo, and without an audio input
EXPECTED = [
    ("Full display", "radio button", {"checked", "enabled"}, set()),
    ("Selected rectangle", "radio button", {"enabled"}, {"checked"}),
    ("Left edge of the rectangle, in pixels", "spin button", set(), {"enabled"}),
    ("Top edge of the rectangle, in pixels from the top of the display", "spin button", set(), {"enabled"}),
    ("Bottom edge of the rectangle, in pixels from the bottom of the display", "spin button", set(), {"enabled"}),
    ("Width of the rectangle, in pixels", "spin button", set(), {"enabled"}),
    ("Height of the rectangle, in pixels", "spin button", set(), {"enabled"}),
    ("Size of the rectangle", "combo box", set(), {"enabled"}),
    ("Select on screen…", "push button", {"enabled"}, set()),
    ("Quality", "combo box", {"enabled"}, set()),
    ("Sound", "check box", set(), {"checked", "enabled"}),
    ("Audio input device", "combo box", set(), {"enabled"}),
    ("Countdown before a recording", "combo box", {"enabled"}, set()),
    ("Key that starts and stops a recording", "text", {"enabled"}, set()),
    ("Show the movie in its folder", "check box", {"enabled", "checked"}, set()),
    ("Open the movie", "check box", {"enabled"}, {"checked"}),
    ("Logo", "check box", {"enabled"}, {"checked"}),
    ("Record", "push button", {"enabled", "focusable"}, set()),
]
# With a logo.
EXPECTED_OF_LOGO = [
    ("Text", "radio button", {"checked", "enabled"}, set()),
    ("Picture", "radio button", {"enabled"}, {"checked"}),
    ("The logo's text", "text", {"enabled"}, set()),
    ("Font…", "push button", {"enabled"}, set()),
    ("Fill colour", "push button", {"enabled"}, set()),
    ("Outline colour", "push button", {"enabled"}, set()),
    ("Left edge of the logo, in pixels", "spin button", {"enabled"}, set()),
    ("Bottom edge of the logo, in pixels", "spin button", {"enabled"}, set()),
    ("Scale of the logo", "slider", {"enabled"}, set()),
    ("Scale of the logo", "spin button", {"enabled"}, set()),
    ("Opacity of the logo, in percent", "slider", {"enabled"}, set()),
    ("Opacity of the logo, in percent", "spin button", {"enabled"}, set()),
    ("Rotation of the logo, in degrees", "slider", {"enabled"}, set()),
]
# With a recording that was not finished.
EXPECTED_OF_UNFINISHED = [
    ("Make the movie", "push button", {"enabled", "focusable"}, set()),
    ("Keep", "push button", {"enabled", "focusable"}, set()),
    ("Delete", "push button", {"enabled", "focusable"}, set()),
]
CONTROLS = {"radio button", "check box", "push button", "spin button", "combo box", "slider", "text"}


def problems(program, expected):
    nodes = [(node.get_name().replace("&", ""), node.get_role_name(), program.states(node))
             for node in walk(program.window)]
    shown = [node for node in nodes if "showing" in node[2]]
    for name, role, has, has_not in expected:
        found = [node for node in shown if node[:2] == (name, role)]
        if not found:
            yield f"no {role} \"{name}\"; of that name: {[node[1] for node in shown if node[0] == name]}"
        elif has - found[0][2] or has_not & found[0][2]:
            yield f"{role} \"{name}\" has the states {sorted(found[0][2])}, not {sorted(has)} without {sorted(has_not)}"
    for name, role, _ in shown:
        if role in CONTROLS and not name:
            yield f"a {role} without a name"


def leave_recording(path):
    """Kills a recording of which something is in its files."""
    process = subprocess.Popen([path, "record", "--ignore-low-space", "--region", "0,0,320,200", "never.mp4"],
                               cwd=os.environ["HOME"], stderr=subprocess.DEVNULL)
    spools = os.environ["XDG_CACHE_HOME"] + "/com.kavlor.vornic/recordings/*/vornicvideo.tmp"
    wait(lambda: any(os.path.getsize(spool) > 0 for spool in glob.glob(spools)))
    process.kill()
    process.wait()


def problems_of_unfinished(program):
    program.wait_for("Make the movie", "push button")
    yield from problems(program, EXPECTED_OF_UNFINISHED)
    told = [node.get_name() for node in walk(program.window) if node.get_role_name() == "label"]
    if not any(name.startswith("A recording of 0:0") for name in told):
        yield f"no sentence on the recording that was not finished among {told}"
    for node in walk(program.window):
        if node.get_name() == "Unfinished recordings…":
            node.get_action_iface().do_action(0)
            break
    rows = program.wait_for("Unfinished recordings", "list")
    row = rows.get_child_at_index(0)
    if row.get_role_name() != "list item" or not row.get_name().startswith("Today, "):
        yield f"a {row.get_role_name()} \"{row.get_name()}\" in the list of recordings"
    program.find("Keep", "push button").get_action_iface().do_action(0)  # that of the list came last


def main():
    run_inside()
    leave_recording(sys.argv[1])
    program = Program(sys.argv[1])
    try:
        found = list(problems_of_unfinished(program))
        found += problems(program, EXPECTED)
        for name, role, _, _ in EXPECTED_OF_LOGO:
            if program.find(name, role):
                found.append(f"{role} \"{name}\" is shown without a logo")
        program.find("Logo", "check box").get_action_iface().do_action(0)
        program.wait_for("Text", "radio button")
        found += problems(program, EXPECTED_OF_LOGO)
        print("\n".join(found) or "every control has its name, role and state")
        return 1 if found else 0
    finally:
        program.kill()


if __name__ == "__main__":
    sys.exit(main())

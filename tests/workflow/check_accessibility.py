#!/usr/bin/python3
"""check_accessibility.py PROGRAM: fails where a screen reader learns no name, another role, or a wrong state of a
control of the main window."""
import sys

from desktop_session import Program, run_inside, walk

# name, role, states that it has, states that it has not
EXPECTED = [
    ("Full display", "radio button", {"checked", "enabled"}, set()),
    ("Selected rectangle", "radio button", {"enabled"}, {"checked"}),
    ("Left edge of the rectangle, in pixels", "spin button", set(), {"enabled"}),
    ("Bottom edge of the rectangle, in pixels from the bottom of the display", "spin button", set(), {"enabled"}),
    ("Width of the rectangle, in pixels", "spin button", set(), {"enabled"}),
    ("Height of the rectangle, in pixels", "spin button", set(), {"enabled"}),
    ("Quality", "combo box", {"enabled"}, set()),
    ("Sound", "check box", {"enabled"}, {"checked"}),
    ("Audio input device", "combo box", set(), {"enabled"}),
    ("Show the movie in its folder", "check box", {"enabled", "checked"}, set()),
    ("Open the movie", "check box", {"enabled"}, {"checked"}),
    ("Logo", "check box", {"enabled"}, {"checked"}),
    ("Text", "radio button", {"checked"}, {"enabled"}),
    ("Picture", "radio button", set(), {"checked", "enabled"}),
    ("The logo's text", "text", set(), {"enabled"}),
    ("Font…", "push button", set(), {"enabled"}),
    ("Fill colour", "push button", set(), {"enabled"}),
    ("Outline colour", "push button", set(), {"enabled"}),
    ("Left edge of the logo, in pixels", "spin button", set(), {"enabled"}),
    ("Bottom edge of the logo, in pixels", "spin button", set(), {"enabled"}),
    ("Scale of the logo", "slider", set(), {"enabled"}),
    ("Scale of the logo", "spin button", set(), {"enabled"}),
    ("Opacity of the logo, 0 to 255", "slider", set(), {"enabled"}),
    ("Rotation of the logo, in degrees", "slider", set(), {"enabled"}),
    ("Record", "push button", {"enabled", "focusable"}, set()),
]
CONTROLS = {"radio button", "check box", "push button", "spin button", "combo box", "slider", "text"}


def problems(program):
    nodes = [(node.get_name().replace("&", ""), node.get_role_name(), program.states(node))
             for node in walk(program.window)]
    shown = [node for node in nodes if "showing" in node[2]]
    for name, role, has, has_not in EXPECTED:
        found = [node for node in shown if node[:2] == (name, role)]
        if not found:
            yield f"no {role} \"{name}\"; of that name: {[node[1] for node in shown if node[0] == name]}"
        elif has - found[0][2] or has_not & found[0][2]:
            yield f"{role} \"{name}\" has the states {sorted(found[0][2])}, not {sorted(has)} without {sorted(has_not)}"
    for name, role, _ in shown:
        if role in CONTROLS and not name:
            yield f"a {role} without a name"


def main():
    run_inside()
    program = Program(sys.argv[1])
    try:
        found = list(problems(program))
        print("\n".join(found) or "every control has its name, role and state")
        return 1 if found else 0
    finally:
        program.kill()


if __name__ == "__main__":
    sys.exit(main())

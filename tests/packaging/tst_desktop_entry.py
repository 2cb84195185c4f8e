"""tst_desktop_entry.py SOURCE PROGRAM: the desktop file is true of the program and of what lies beside it."""

import configparser
import pathlib
import re
import subprocess
import sys
import unittest

ID = "com.kavlor.vornic"


class DesktopEntry(unittest.TestCase):
    def setUp(self):
        self.file = configparser.RawConfigParser(interpolation=None)
        self.file.optionxform = str
        self.file.read(SOURCE / f"packaging/{ID}.desktop", encoding="utf-8")
        self.entry = self.file["Desktop Entry"]

    def actions(self):
        return [name for name in self.entry["Actions"].split(";") if name]

    def test_has_the_two_record_actions(self):
        self.assertEqual(self.actions(), ["record-full", "record-rectangle"])
        for action in self.actions():
            self.assertIn(f"Desktop Action {action}", self.file)

    def test_names_the_icon_that_is_installed(self):
        self.assertEqual(self.entry["Icon"], ID)
        self.assertTrue((SOURCE / f"resources/icons/{ID}.svg").is_file())

    def test_every_text_is_in_german_too(self):
        for group in self.file.sections():
            for key in ("Name", "GenericName", "Comment", "Keywords"):
                if key in self.file[group] and self.file[group][key] != "Vornic":
                    self.assertIn(f"{key}[de]", self.file[group], group)
                    self.assertNotEqual(self.file[group][f"{key}[de]"], self.file[group][key])

    def test_the_program_knows_what_it_is_started_with(self):
        for group in self.file.sections():
            words = self.file[group]["Exec"].split()
            self.assertEqual(words[0], "vornic")
            # Reading the options comes before opening a display: wrong usage is told apart from no display.
            ended = subprocess.run([PROGRAM, *words[1:]], env={"VORNIC_DISPLAY": "null"}, capture_output=True)
            self.assertEqual(ended.returncode, 1, (words, ended.stderr))

    def test_the_bus_knows_the_actions_by_the_same_names(self):
        # The desktop activates an action by its name; the program's own second start uses the same ones.
        text = (SOURCE / "src/app/window/window_program.h").read_text(encoding="utf-8")
        for action in self.actions():
            self.assertIn(f'"{action}"', text)

    def test_the_bus_service_has_the_same_name(self):
        self.assertEqual(self.entry["DBusActivatable"], "true")
        service = (SOURCE / f"packaging/{ID}.service.in").read_text(encoding="utf-8")
        self.assertRegex(service, re.compile(rf"^Name={re.escape(ID)}$", re.MULTILINE))


if __name__ == "__main__":
    SOURCE, PROGRAM = pathlib.Path(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)

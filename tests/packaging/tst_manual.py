"""tst_manual.py SOURCE PROGRAM: the manual page is well-formed and leaves out no option."""

import pathlib
import re
import shutil
import subprocess
import sys
import unittest

import program_help


class Manual(unittest.TestCase):
    def setUp(self):
        self.page = SOURCE / "packaging/vornic.1"

    def formatted(self):
        if not shutil.which("man"):
            self.skipTest("there is no man")
        ended = subprocess.run(
            ["man", "--warnings", "-E", "UTF-8", "-l", self.page],
            env={"PATH": "/usr/bin:/bin", "MANWIDTH": "300", "LC_ALL": "C.UTF-8", "MAN_KEEP_FORMATTING": ""},
            capture_output=True,
            text=True,
        )
        self.assertEqual(ended.returncode, 0, ended.stderr)
        self.assertEqual(ended.stderr, "")
        return re.sub(".\b", "", ended.stdout)

    def test_every_option_has_a_paragraph(self):
        text = self.formatted()
        for option in program_help.options(PROGRAM):
            self.assertRegex(text, re.compile(rf"^ +(-\w, )?{option}\b", re.MULTILINE), option)

    def test_names_no_option_that_there_is_not(self):
        named = set(re.findall(r"(?<![\w-])--[a-z][a-z-]*", self.formatted()))
        self.assertEqual(named - program_help.options(PROGRAM), set())

    def test_names_every_exit_status(self):
        self.assertRegex(self.formatted(), r"(?s)EXIT STATUS.*\n +0 .*\n +1 .*\n +2 ")

    def test_nothing_is_malformed(self):
        if not shutil.which("mandoc"):
            self.skipTest("there is no mandoc")
        ended = subprocess.run(
            ["mandoc", "-T", "lint", "-W", "warning", self.page], capture_output=True, text=True
        )
        self.assertEqual((ended.returncode, ended.stdout), (0, ""))


if __name__ == "__main__":
    SOURCE, PROGRAM = pathlib.Path(sys.argv[1]), sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)

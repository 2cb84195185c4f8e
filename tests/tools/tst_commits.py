#!/usr/bin/env python3
"""The checks of commits refuse what CONTRIBUTING.md rules out, and nothing else."""
import os
import pathlib
import shutil
import subprocess
import tempfile
import unittest

TOOLS = pathlib.Path(__file__).resolve().parents[2] / "tools"
TITLE = "codec: measure the gap between frames"


class Messages(unittest.TestCase):
    def check(self, message):
        with tempfile.NamedTemporaryFile("w", encoding="utf-8") as file:
            file.write(message)
            file.flush()
            run = subprocess.run([TOOLS / "check-commit-msg.sh", file.name], capture_output=True, text=True, check=False)
        return run.returncode, run.stderr

    def test_what_is_right(self):
        for message in (TITLE, f"{TITLE}\n\nWhy.\n", f"{TITLE}\n# a comment of git's, however long it may be" + 40 * "x",
                        "app/cli: X11 is asked once", "C++: go on", "overlay: VNRecoderView keeps its frame",
                        "a: " + 69 * "x", "a: " + 69 * "ü", f"{TITLE}\n\n" + 80 * "x",
                        f"{TITLE}\n\nhttps://example.org/" + 80 * "x", f"{TITLE}\n\n| a |" + 80 * " " + "|",
                        f"{TITLE}\n\n    " + 80 * "x", f"{TITLE}\n# ------------------------ >8 ------------------------\n"
                        "+" + 90 * "x", 'Revert "codec: measure"', "fixup! " + TITLE):
            with self.subTest(message):
                self.assertEqual(self.check(message), (0, ""))

    def test_what_is_wrong(self):
        for message, complaint in {
                "": "not \"area:", "measure the gap": "not \"area:", "two areas: measure": "not \"area:",
                "codec:measure": "not \"area:", "codec: ": "not \"area:", "fix: measure": "not the kind", "feat(codec): x": "not the kind",
                "codec: Measure the gap": "lower case", "codec: A gap": "lower case", "a: " + 70 * "x": "73 columns",
                TITLE + ".": "full stop", f"{TITLE}\nWhy.": "second line", f"{TITLE}\n\n" + 81 * "x": "81 columns"}.items():
            with self.subTest(message):
                status, said = self.check(message)
                self.assertEqual(status, 1)
                self.assertIn(complaint, said)


class Range(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.folder = pathlib.Path(holder.name)
        self.environment = {name: value for name, value in os.environ.items() if not name.startswith("GIT_")} | {
            "GIT_CONFIG_GLOBAL": os.devnull, "GIT_CONFIG_SYSTEM": os.devnull, "GIT_AUTHOR_NAME": "a", "GIT_AUTHOR_EMAIL": "a@b",
            "GIT_COMMITTER_NAME": "a", "GIT_COMMITTER_EMAIL": "a@b"}
        shutil.copytree(TOOLS, self.folder / "tools", ignore=shutil.ignore_patterns("help"))
        self.git("init", "-q", "-b", "main")
        self.commit("tree: begin", {"old.txt": "".join(f"the line of the number {i}\n" for i in range(900))})

    def git(self, *arguments):
        subprocess.run(["git", *arguments], cwd=self.folder, env=self.environment, check=True, capture_output=True)

    def commit(self, title, files):
        for name, text in files.items():
            (self.folder / name).write_text(text)
        self.git("add", "-A")
        self.git("commit", "-q", "-m", title)

    def check(self, *arguments):
        run = subprocess.run([self.folder / "tools" / "check-commits.sh", *arguments], cwd=self.folder, env=self.environment,
                             capture_output=True, text=True, check=False)
        return run.returncode, run.stdout + run.stderr

    def test_small_commits_pass(self):
        self.commit(TITLE, {"new.txt": "new\n" * 800})
        self.assertEqual(self.check("HEAD~..HEAD"), (0, ""))

    def test_a_commit_in_the_middle_with_a_wrong_message(self):
        self.commit("Measure the gap", {"new.txt": "1\n"})
        self.commit(TITLE, {"new.txt": "2\n"})
        status, said = self.check("HEAD~2..HEAD")
        self.assertEqual(status, 1)
        self.assertIn("Measure the gap", said)

    def test_a_fixup_that_was_left(self):
        self.commit("fixup! " + TITLE, {"new.txt": "1\n"})
        status, said = self.check("HEAD~..HEAD")
        self.assertEqual(status, 1)
        self.assertIn("melted", said)

    def test_too_many_added_lines(self):
        self.commit(TITLE, {"new.txt": "".join(f"{i}\n" for i in range(801))})
        status, said = self.check("HEAD~..HEAD")
        self.assertEqual(status, 1)
        self.assertIn("adds 801 lines", said)

    def test_moved_lines_do_not_count(self):
        self.git("mv", "old.txt", "renamed.txt")
        self.commit("tree: rename", {})
        text = (self.folder / "renamed.txt").read_text()
        self.commit("tree: move lines to a new file", {"renamed.txt": "", "part.txt": "one more\n" + text})
        self.assertEqual(self.check("HEAD~2..HEAD"), (0, ""))

    def test_a_tree_without_the_history_says_so_and_passes(self):
        status, said = self.check()
        self.assertEqual(status, 0)
        self.assertIn("nothing was checked", said)
        shutil.rmtree(self.folder / ".git")
        status, said = self.check()
        self.assertEqual(status, 0)
        self.assertIn("nothing was checked", said)


if __name__ == "__main__":
    unittest.main()

"""tst_completion.py SHELL FOLDER PROGRAM: what a shell offers after the beginning of a command line.

The shells run their own completion. The program is one of the test's own, which knows two audio devices and two
unfinished recordings.
"""

import os
import pathlib
import pty
import shutil
import subprocess
import sys
import tempfile
import unittest

import program_help

FAKE = """#!/bin/sh
[ "$1" = devices ] && printf '%s\\n' 'Built-in Microphone' 'Monitor of Speakers'
[ "$1" = recover ] && printf '%s  2026-11-22 14:05:12  00:42:10  1.9 GiB  75900 frames\\n' \
    20261122-140512-3fa9 20261123-090000-00ff
exit 0
"""


class Place:
    """A folder to work in, and an environment in which "vornic" is the test's own program."""

    def __init__(self, folder):
        self.folder = folder / "work"
        (self.folder / "sub").mkdir(parents=True)
        for name in ("old.mp4", "notes.txt"):
            (self.folder / name).touch()
        programs = folder / "programs"
        programs.mkdir()
        (programs / "vornic").write_text(FAKE)
        (programs / "vornic").chmod(0o755)
        self.result = folder / "result"
        home = folder / "home"
        home.mkdir()
        self.environment = {
            "PATH": f"{programs}:/usr/bin:/bin", "HOME": str(home), "TERM": "dumb", "LC_ALL": "C.UTF-8",
        }

    def run(self, *command):
        ended = subprocess.run(
            command, cwd=self.folder, env=self.environment, capture_output=True, text=True, check=True
        )
        return ended.stdout.splitlines()


def bash_words(line):
    """As bash hands them over: "=" is a word."""
    words = []
    for word in line.split(" "):
        before, equals, after = word.partition("=")
        words += [part for part in (before, equals, after) if part] or [""]
    return words


def offered_by_bash(place, line):
    script = (
        'source "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
        '[[ $(complete -p vornic) == "complete -F _vornic vornic" ]] || exit 1; '
        '_vornic; printf "%s\\n" "${COMPREPLY[@]}"'
    )
    found = place.run("bash", "--norc", "-c", script, "bash", FOLDER / "vornic.bash", *bash_words(line))
    return {word.replace("\\", "") for word in found if word}


def offered_by_fish(place, line):
    found = place.run("fish", "--no-config", "-c", f"source {FOLDER}/vornic.fish; complete -C $argv[1]", line)
    typed = line.split(" ")[-1].partition("=")
    prefix = typed[0] + typed[1] if typed[1] else ""
    return {word.split("\t")[0].removeprefix(prefix) for word in found}


# Completion runs in the line editor only: each match is written down on its way there.
ZSH = """
unsetopt beep
fpath=({folder} $fpath)
autoload -U compinit
# What it has found is read again by the next shell, which is quicker than to look for it.
compinit -C -d {dump}
compadd() {{
  local -a found
  if [[ " ${{(j: :)@[1,(i)(-|--)]}}" != *' -'[OAD]* ]]; then
    builtin compadd -O found "$@"
    (( $#found )) && print -rl -- $found >>{result}
  fi
  builtin compadd "$@"
}}
offer() {{
  BUFFER={line}
  CURSOR=$#BUFFER
  zle list-choices
  exit
}}
zle -N offer
zle -N zle-line-init offer
"""


ZSH_DUMP = tempfile.TemporaryDirectory()


def offered_by_zsh(place, line):
    place.result.write_text("")
    setup = place.folder.parent / "home/.zshrc"
    setup.write_text(ZSH.format(folder=FOLDER, result=place.result, line=f"'{line}'", dump=f"'{ZSH_DUMP.name}/dump'"))
    child, descriptor = pty.fork()
    if child == 0:
        os.chdir(place.folder)
        os.execvpe("zsh", ["zsh", "-d", "-i"], place.environment)
    try:
        while os.read(descriptor, 65536):
            pass
    except OSError:  # the shell has ended
        pass
    os.waitpid(child, 0)
    os.close(descriptor)
    return set(place.result.read_text().splitlines())


SHELLS = {"bash": offered_by_bash, "fish": offered_by_fish, "zsh": offered_by_zsh}


class Completion(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.place = Place(pathlib.Path(folder.name))

    def offered(self, line):
        return {word.rstrip("=/ ") for word in SHELLS[NAME](self.place, line)}

    def test_the_commands(self):
        self.assertLessEqual({"record", "recover", "devices"}, self.offered("vornic "))
        self.assertEqual(self.offered("vornic reco"), {"record", "recover"})
        self.assertEqual(self.offered("vornic recor"), {"record"})

    def test_every_option_of_the_window(self):
        everywhere = {"--help", "--version"}
        self.assertEqual(self.offered("vornic --"), program_help.options_below(PROGRAM, "") | everywhere)

    def test_every_option_of_record(self):
        expected = program_help.options_below(PROGRAM, "record") | {"--help"}
        self.assertEqual(self.offered("vornic record --"), expected)
        self.assertEqual(self.offered("vornic record --o"), {"--overwrite"})

    def test_every_option_of_recover(self):
        expected = program_help.options_below(PROGRAM, "recover") | {"--help"}
        self.assertEqual(self.offered("vornic recover --"), expected)
        self.assertEqual(self.offered("vornic recover --o"), {"--overwrite"})
        self.assertEqual(self.offered("vornic recover --quality "), {"high", "medium"})

    def test_the_unfinished_recordings(self):
        both = {"20261122-140512-3fa9", "20261123-090000-00ff"}
        for line in ("vornic recover ", "vornic recover --overwrite ", "vornic recover --delete "):
            self.assertEqual(self.offered(line), both, line)
        self.assertEqual(self.offered("vornic recover 20261123"), {"20261123-090000-00ff"})
        found = self.offered("vornic recover 20261123-090000-00ff ")
        self.assertLessEqual({"old.mp4", "sub"}, found)
        self.assertTrue(found.isdisjoint(both), found)

    def test_the_values(self):
        self.assertEqual(self.offered("vornic --record="), {"full", "rectangle"})
        self.assertEqual(self.offered("vornic --record=f"), {"full"})
        self.assertEqual(self.offered("vornic record --quality "), {"high", "medium"})
        self.assertEqual(self.offered("vornic record --quality=m"), {"medium"})
        self.assertEqual(self.offered("vornic record --duration "), set())

    def test_the_audio_devices(self):
        self.assertEqual(
            self.offered("vornic record --audio="), {"Built-in Microphone", "Monitor of Speakers"}
        )
        self.assertEqual(self.offered("vornic record --audio=M"), {"Monitor of Speakers"})

    def test_movies_and_folders(self):
        self.assertLessEqual({"old.mp4", "sub"}, self.offered("vornic record "))
        self.assertEqual(self.offered("vornic record o"), {"old.mp4"})
        self.assertEqual(self.offered("vornic record --overwrite o"), {"old.mp4"})

    def test_movies_after_what_the_window_is_to_record(self):
        for choice in ("--record=full", "--record=rectangle"):
            found = self.offered(f"vornic {choice} ")
            self.assertLessEqual({"old.mp4", "sub"}, found)
            self.assertTrue(found.isdisjoint({"record", "devices"}), found)
            self.assertEqual(self.offered(f"vornic {choice} o"), {"old.mp4"})

    def test_nothing_more_after_devices(self):
        self.assertEqual(self.offered("vornic devices "), set())


if __name__ == "__main__":
    NAME, FOLDER, PROGRAM = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3]
    if not shutil.which(NAME):
        print(f"there is no {NAME}")
        sys.exit(77)
    unittest.main(argv=sys.argv[:1], verbosity=2)

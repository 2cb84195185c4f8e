"""tst_help.py SOURCE MAKER HELP: the help document holds the whole help text, and a broken text is no document."""

import collections
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unicodedata
import unittest


def normalized(text):
    """With letters apart that are one picture in the document, like "fi"."""
    return unicodedata.normalize("NFKC", text)


def words_of_text(markdown):
    """The words of a help text, without its marks and pictures."""
    text = re.sub(r"!\[[^\]]*\]\([^)]*\)", " ", markdown)
    text = re.sub(r"^\|[-|]+\|$", " ", text, flags=re.MULTILINE)
    text = re.sub(r"^(#+|-|\d+\.) ", " ", text, flags=re.MULTILINE)
    return normalized(re.sub(r"[*`]", "", text).replace("|", " ")).split()


def words_of_document(path):
    text = subprocess.run(["pdftotext", "-layout", path, "-"], check=True, capture_output=True, text=True).stdout
    return normalized(text).split()


def lines_of_pages(path):
    """The lines of each page, without those that are empty."""
    text = subprocess.run(["pdftotext", "-layout", path, "-"], check=True, capture_output=True, text=True).stdout
    return [[line.strip() for line in page.splitlines() if line.strip()] for page in text.split("\f") if page]


def make(text, look=lambda document: None):
    """The maker's exit status, what it said, and what LOOK finds in the document."""
    with tempfile.TemporaryDirectory() as folder:
        place = pathlib.Path(folder)
        (place / "help.md").write_text(text, encoding="utf-8")
        environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "ASAN_OPTIONS": "detect_leaks=0"}
        icon = SOURCE / "resources/icons/png/256.png"
        ended = subprocess.run(
            [MAKER, place / "help.md", icon, place / "help.pdf"], env=environment, capture_output=True, text=True
        )
        return ended.returncode, ended.stderr, look(place / "help.pdf")


class Help(unittest.TestCase):
    def setUp(self):
        self.text = (SOURCE / "docs/help.md").read_text(encoding="utf-8")

    def test_no_word_is_lost(self):
        if not shutil.which("pdftotext"):
            self.skipTest("there is no pdftotext")
        in_document = collections.Counter(words_of_document(HELP))
        self.assertEqual(collections.Counter(words_of_text(self.text)) - in_document, collections.Counter())

    def test_the_pictures_are_in_it(self):
        if not shutil.which("pdfimages"):
            self.skipTest("there is no pdfimages")
        listed = subprocess.run(["pdfimages", "-list", HELP], check=True, capture_output=True, text=True).stdout
        sizes = {tuple(line.split()[3:5]) for line in listed.splitlines()[2:] if line.split()[2] == "image"}
        # The icon in the banner is one more.
        self.assertGreaterEqual(len(sizes), 1 + len(set(re.findall(r"!\[", self.text))))

    def test_a_picture_that_is_missing_is_told(self):
        status, said, _ = make("# A\n\nB.\n\n## C\n\n![D](nowhere.png)\n")
        self.assertEqual(status, 1)
        self.assertIn("nowhere.png", said)

    def test_no_heading_stands_alone_at_the_end_of_a_page(self):
        if not shutil.which("pdftotext"):
            self.skipTest("there is no pdftotext")
        sections = "".join(f"## Heading\n\n{paragraphs}" for paragraphs in ("Text.\n\n" * lines for lines in range(20)))
        _, _, pages = make(f"# A\n\n{sections}", lines_of_pages)
        self.assertGreater(len(pages), 4)
        for page in pages:
            self.assertNotIn("Heading", page[-2:], "the last line, and the number of the page")

    def test_a_text_without_a_title_is_no_help(self):
        self.assertEqual(make("Some text.\n\nAnd more.\n\n")[0], 1)
        self.assertEqual(make("# A\n\nB.\n\n## C\n\nD.\n")[0], 0)

    def test_names_the_commands_for_keys_as_the_program_has_them(self):
        for command in ("vornic --record=full", "vornic --record=rectangle", "vornic --stop", "vornic --toggle",
                        "vornic --pause"):
            self.assertIn(f"`{command}`", self.text)

    def test_tells_how_desktops_without_keys_for_programs_are_given_one(self):
        section = self.text.split("## On Wayland")[1].split("\n## ")[0]
        for desktop in ("GNOME", "KDE Plasma", "sway"):
            self.assertRegex(section, rf"(?s)- \*\*{desktop}\*\*.*?`[^`]*vornic --toggle`", desktop)

    def test_no_text_says_that_only_x11_is_recorded(self):
        pages = ["README.md", "docs/help.md", "packaging/vornic.1", "cmake/Packaging.cmake"]
        for page in pages + ["packaging/com.kavlor.vornic.metainfo.xml.in"]:
            text = " ".join((SOURCE / page).read_text(encoding="utf-8").split())
            self.assertIn("Wayland", text, page)
            for wrong in ("X11 only,", "needs an X11 session", "No Wayland", "records X11 sessions."):
                self.assertNotIn(wrong, text, page)

    def test_names_the_keys_and_the_countdowns_that_the_program_has(self):
        settings = SOURCE / "src/app/session"
        keys = re.findall(r'QStringLiteral\("(\w+(?:\+\w+)+)"\)', (settings / "start_settings.cpp").read_text())
        self.assertEqual(len(keys), 2, "one starts and stops, the other one pauses")
        for page in ("docs/help.md", "README.md", "packaging/vornic.1"):
            for key in keys:
                self.assertIn(key, (SOURCE / page).read_text(encoding="utf-8"), page)
        seconds = re.search(r"countdowns[^{]*{([^}]*)}", (settings / "start_settings.h").read_text()).group(1)
        without, *rest, last = [number.strip() for number in seconds.split(",")]
        self.assertEqual(without, "0")
        self.assertIn(f"{', '.join(rest)} or {last} seconds", " ".join(self.text.split()))


if __name__ == "__main__":
    SOURCE, MAKER, HELP = pathlib.Path(sys.argv[1]), sys.argv[2], sys.argv[3]
    unittest.main(argv=sys.argv[:1], verbosity=2)

"""tst_installation.py BUILD CMAKE: everything is installed where the desktop looks for it."""

import gzip
import os
import pathlib
import struct
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

ID = "com.kavlor.vornic"
SIDES = (16, 24, 32, 48, 64, 128, 256)


def png_size(path):
    header = path.read_bytes()[:24]
    assert header[:8] == b"\x89PNG\r\n\x1a\n", path
    return struct.unpack(">II", header[16:24])


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(cls.folder.cleanup)
        cls.prefix = pathlib.Path(cls.folder.name) / "prefix"
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", cls.prefix], check=True, capture_output=True)
        cls.share = cls.prefix / "share"

    def test_the_program_starts(self):
        said = subprocess.run([self.prefix / "bin/vornic", "--version"], check=True, capture_output=True, text=True)
        self.assertRegex(said.stdout, r"^vornic \d+\.\d+\.\d+\n$")

    def test_the_desktop_file_and_the_metainfo_bear_the_id(self):
        self.assertTrue((self.share / f"applications/{ID}.desktop").is_file())
        metainfo = ElementTree.parse(self.share / f"metainfo/{ID}.metainfo.xml").getroot()
        self.assertEqual(metainfo.findtext("id"), ID)
        self.assertEqual(metainfo.findtext("launchable"), f"{ID}.desktop")
        self.assertTrue(metainfo.findall("releases/release"))

    def test_the_icons_have_the_sizes_of_their_folders(self):
        theme = self.share / "icons/hicolor"
        for side in SIDES:
            self.assertEqual(png_size(theme / f"{side}x{side}/apps/{ID}.png"), (side, side))
        for icon in (f"scalable/apps/{ID}.svg", f"symbolic/apps/{ID}-symbolic.svg"):
            drawing = ElementTree.parse(theme / icon).getroot()
            self.assertEqual(drawing.get("width"), drawing.get("height"))

    def test_the_bus_service_starts_the_installed_program(self):
        lines = (self.share / f"dbus-1/services/{ID}.service").read_text().splitlines()
        self.assertIn(f"Name={ID}", lines)
        command = next(line for line in lines if line.startswith("Exec=")).removeprefix("Exec=")
        self.assertEqual(command, str(self.prefix / "bin/vornic"))
        self.assertTrue(os.access(command, os.X_OK))

    def test_the_manual_is_compressed(self):
        page = gzip.decompress((self.share / "man/man1/vornic.1.gz").read_bytes())
        self.assertTrue(page.startswith(b".TH VORNIC 1"))

    def test_the_help_is_where_the_program_looks_for_it(self):
        self.assertTrue((self.share / "vornic/Help.pdf").read_bytes().startswith(b"%PDF-"))

    def test_the_shells_find_their_completions(self):
        for path in (
            "bash-completion/completions/vornic",
            "zsh/site-functions/_vornic",
            "fish/vendor_completions.d/vornic.fish",
        ):
            self.assertTrue((self.share / path).is_file(), path)

    def test_the_licence_comes_with_it(self):
        self.assertIn("GNU GENERAL PUBLIC LICENSE", (self.share / "doc/vornic/LICENSE").read_text())

    def test_nothing_else_is_installed(self):
        folders = {path.relative_to(self.prefix).parts[0] for path in self.prefix.rglob("*")}
        self.assertEqual(folders, {"bin", "share"})
        self.assertEqual([path.name for path in (self.prefix / "bin").iterdir()], ["vornic"])


if __name__ == "__main__":
    BUILD, CMAKE = sys.argv[1], sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)

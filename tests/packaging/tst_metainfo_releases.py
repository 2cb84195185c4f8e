"""tst_metainfo_releases.py SOURCE CMAKE: the changelog becomes the releases of the metainfo."""

import pathlib
import subprocess
import sys
import tempfile
import unittest
import xml.etree.ElementTree as ElementTree

SCRIPT = """
include("{source}/cmake/MetainfoReleases.cmake")
set(PROJECT_VERSION {version})
vornic_metainfo_releases(releases "{changelog}")
file(WRITE "{result}" "<releases>${{releases}}</releases>")
"""


def releases(changelog, version):
    """The releases, or None where the changelog is refused."""
    with tempfile.TemporaryDirectory() as folder:
        place = pathlib.Path(folder)
        (place / "CHANGELOG.md").write_text(changelog, encoding="utf-8")
        result = place / "releases.xml"
        (place / "script.cmake").write_text(
            SCRIPT.format(source=SOURCE, version=version, changelog=place / "CHANGELOG.md", result=result),
            encoding="utf-8",
        )
        ended = subprocess.run([CMAKE, "-P", place / "script.cmake"], capture_output=True)
        return list(ElementTree.parse(result).getroot()) if ended.returncode == 0 else None


class MetainfoReleases(unittest.TestCase):
    def test_what_is_not_released_is_the_version_in_development(self):
        found = releases("# Changelog\n\n## Unreleased\n\n- One.\n- Two.\n", "0.1.0")
        self.assertEqual([(r.get("version"), r.get("type")) for r in found], [("0.1.0", "development")])
        self.assertEqual([item.text for item in found[0].iter("li")], ["One.", "Two."])

    def test_releases_come_in_order_with_their_dates(self):
        found = releases("## Unreleased\n- c\n\n## 0.2.0 (2027-03-04)\n\n- b\n\n## 0.1.0 (2027-01-02)\n\n- a\n", "0.3.0")
        self.assertEqual([r.get("version") for r in found], ["0.3.0", "0.2.0", "0.1.0"])
        self.assertEqual([r.get("date") for r in found[1:]], ["2027-03-04", "2027-01-02"])
        self.assertEqual([[item.text for item in r.iter("li")] for r in found], [["c"], ["b"], ["a"]])

    def test_a_version_is_not_in_development_once_it_is_released(self):
        found = releases("## Unreleased\n- b\n\n## 0.1.0 (2027-01-02)\n- a\n", "0.1.0")
        self.assertEqual([(r.get("version"), r.get("type")) for r in found], [("0.1.0", None)])

    def test_an_empty_section_is_no_release(self):
        found = releases("## Unreleased\n\n## 0.1.0 (2027-01-02)\n- a\n", "0.2.0")
        self.assertEqual([r.get("version") for r in found], ["0.1.0"])

    def test_every_character_survives(self):
        found = releases("## Unreleased\n- a; b & c < d > e [f]; \"g\" `--h; i`\n  next line\n", "0.1.0")
        item = next(found[0].iter("li"))
        self.assertEqual("".join(item.itertext()), 'a; b & c < d > e [f]; "g" --h; i next line')
        self.assertEqual([code.text for code in item.iter("code")], ["--h; i"])

    def test_an_unreadable_heading_is_refused(self):
        self.assertIsNone(releases("## Soon\n- a\n", "0.1.0"))

    def test_the_changelog_of_the_program_is_read(self):
        text = (pathlib.Path(SOURCE) / "CHANGELOG.md").read_text(encoding="utf-8")
        self.assertTrue(releases(text, "0.1.0"))


if __name__ == "__main__":
    SOURCE, CMAKE = sys.argv[1], sys.argv[2]
    unittest.main(argv=sys.argv[:1], verbosity=2)

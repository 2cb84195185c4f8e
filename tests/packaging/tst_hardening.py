"""tst_hardening.py BUILD CMAKE PROGRAM: the program has what compiler and linker do against the abuse of its faults, as
it is built and as it is in the package.

tst_hardening.py --program PROGRAM looks at any other one.
"""

import json
import pathlib
import shutil
import struct
import subprocess
import sys
import tempfile
import unittest

PT_LOAD, PT_DYNAMIC, PT_GNU_STACK, PT_GNU_RELRO = 1, 2, 0x6474E551, 0x6474E552
DT_STRTAB, DT_STRSZ, DT_BIND_NOW, DT_FLAGS, DT_FLAGS_1 = 5, 10, 24, 30, 0x6FFFFFFB
DF_BIND_NOW, DF_1_NOW, DF_1_PIE = 0x8, 0x1, 0x08000000
ET_DYN, EM_X86_64, EM_AARCH64, PF_X, PF_W = 3, 62, 183, 0x1, 0x2
# Where an indirect jump may land. The system's start files may lack it, so that the program's note cannot promise it.
LANDING = {EM_X86_64: "f30f1efa", EM_AARCH64: "3f2303d5"}  # endbr64, paciasp


class Elf:
    """A program for 64-bit processors of the usual byte order, as far as the checks need it."""

    def __init__(self, path):
        self.bytes = pathlib.Path(path).read_bytes()
        assert self.bytes[:6] == b"\x7fELF\x02\x01", path
        self.type, self.machine = struct.unpack_from("<HH", self.bytes, 16)
        segments_at, sections_at = struct.unpack_from("<QQ", self.bytes, 32)
        segment_size, segment_count, section_size, section_count, names = struct.unpack_from("<HHHHH", self.bytes, 54)
        # kind, flags, offset, address, (physical address), size in the file
        self.segments = [struct.unpack_from("<IIQQQQ", self.bytes, segments_at + segment_size * index)
                         for index in range(segment_count)]
        # name, kind, flags, address, offset, size
        self.sections = [struct.unpack_from("<IIQQQQ", self.bytes, sections_at + section_size * index)
                         for index in range(section_count)]
        self.names_at = self.sections[names][4]
        self.dynamic = dict(struct.iter_unpack("<QQ", self.contents(PT_DYNAMIC)))

    def segment(self, kind):
        return next((segment for segment in self.segments if segment[0] == kind), None)

    def contents(self, kind):
        segment = self.segment(kind)
        return self.bytes[segment[2]:segment[2] + segment[5]] if segment else b""

    def offset_of(self, address):
        for _, _, offset, start, _, size in self.segments:
            if start <= address < start + size:
                return offset + address - start
        raise ValueError(f"nothing is at {address:#x}")

    def dynamic_names(self):
        """Names that it shares with its libraries: among them what it calls there."""
        first = self.offset_of(self.dynamic[DT_STRTAB])
        names = self.bytes[first:first + self.dynamic[DT_STRSZ]]
        return {name.decode() for name in names.split(b"\0")}

    def code(self):
        """Of the program itself, without the linker's jumps into libraries."""
        for name, _, _, _, offset, size in self.sections:
            if self.bytes[self.names_at + name:].startswith(b".text\0"):
                return self.bytes[offset:offset + size]
        raise ValueError("it has no code")

    def count(self, instructions):
        """How often the instruction for its processor is in its code; None where it is not known."""
        known = instructions.get(self.machine)
        return self.code().count(bytes.fromhex(known)) if known else None


class Protections:
    """What holds for a program wherever it is; a test case says which."""

    program = None

    @classmethod
    def setUpClass(cls):
        cls.elf = Elf(cls.program)

    def test_its_code_stands_at_a_random_place(self):
        self.assertEqual(self.elf.type, ET_DYN)
        self.assertTrue(self.elf.dynamic.get(DT_FLAGS_1, 0) & DF_1_PIE)

    def test_tables_of_functions_are_bound_at_the_start_and_read_only_then(self):
        self.assertIsNotNone(self.elf.segment(PT_GNU_RELRO))
        self.assertTrue(DT_BIND_NOW in self.elf.dynamic or self.elf.dynamic.get(DT_FLAGS, 0) & DF_BIND_NOW
                        or self.elf.dynamic.get(DT_FLAGS_1, 0) & DF_1_NOW)

    def test_the_stack_holds_no_code(self):
        self.assertIsNotNone(self.elf.segment(PT_GNU_STACK))
        self.assertFalse(self.elf.segment(PT_GNU_STACK)[1] & PF_X)

    def test_nothing_is_both_writable_and_code(self):
        flags = [segment[1] for segment in self.elf.segments if segment[0] == PT_LOAD]
        self.assertFalse([both for both in flags if both & PF_W and both & PF_X])

    def test_functions_find_out_when_their_stack_was_overwritten(self):
        self.assertTrue("__stack_chk_fail" in self.elf.dynamic_names())

    def test_the_library_checks_the_size_of_what_it_fills(self):
        checked = {name for name in self.elf.dynamic_names() if name.startswith("__") and name.endswith("_chk")}
        self.assertTrue(checked - {"__stack_chk_fail"})

    def test_jumps_and_returns_are_checked(self):
        count = self.elf.count(LANDING)
        if count is None:
            self.skipTest("not known for this processor")
        self.assertGreater(count, len(self.elf.code()) // 2000)


class Built(Protections, unittest.TestCase):
    """As it was linked, and its sources as they were compiled."""

    def test_a_large_stack_frame_touches_every_page(self):
        if not BUILD:
            self.skipTest("how it was compiled is not known")
        # Which functions have such a frame, if any, is up to the compiler: the program need not show it.
        commands = json.loads(pathlib.Path(BUILD, "compile_commands.json").read_text())
        without = [command["file"] for command in commands if "-fstack-clash-protection" not in command["command"]]
        self.assertTrue(commands)
        self.assertEqual(without, [])


class Packaged(Protections, unittest.TestCase):
    """Installed, stripped and packed as a release is; nothing is built for it."""

    @classmethod
    def setUpClass(cls):
        if not BUILD or not shutil.which("dpkg-deb"):
            raise unittest.SkipTest("no package is to be made")
        folder = tempfile.TemporaryDirectory()
        cls.addClassCleanup(folder.cleanup)
        work = pathlib.Path(folder.name)
        subprocess.run([CMAKE, "--install", BUILD, "--prefix", work / "installed"], check=True, capture_output=True)
        # What is installed already, so that no target of the build is brought up to date.
        subprocess.run([pathlib.Path(CMAKE).with_name("cpack"), "-G", "DEB", "-B", work / "package",
                        "--config", f"{BUILD}/CPackConfig.cmake", "-D", "CPACK_INSTALL_CMAKE_PROJECTS=",
                        "-D", f"CPACK_INSTALLED_DIRECTORIES={work}/installed;/usr",
                        "-D", "CPACK_DEBIAN_PACKAGE_SHLIBDEPS=OFF"], check=True, capture_output=True)
        package = next((work / "package").glob("*.deb"))
        subprocess.run(["dpkg-deb", "-x", package, work / "unpacked"], check=True, capture_output=True)
        cls.program = work / "unpacked/usr/bin/vornic"
        super().setUpClass()


if __name__ == "__main__":
    if sys.argv[1] == "--program":
        BUILD, CMAKE, Built.program = None, None, sys.argv[2]
    else:
        BUILD, CMAKE, Built.program = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1], verbosity=2)

#!/usr/bin/env python3
"""The check of braces finds those around one statement on one line, and no others."""
import pathlib
import subprocess
import sys
import tempfile
import unittest

CHECK = pathlib.Path(__file__).resolve().parents[2] / "tools" / "check-braces.py"


class Braces(unittest.TestCase):
    def complaints(self, text):
        with tempfile.NamedTemporaryFile("w", suffix=".cpp") as file:
            file.write(text)
            file.flush()
            run = subprocess.run([sys.executable, "-B", CHECK, file.name], capture_output=True, text=True, check=False)
        lines = [int(line.split(":")[1]) for line in run.stderr.splitlines()]
        self.assertEqual(run.returncode, bool(lines), run.stderr)
        return lines

    def test_superfluous(self):
        for text in ("if (a) {\n    b();\n}\n", "for (;;) {\n    b();\n}\n", "while (a) {\n    b();\n}\n",
                     "if (a) {\n    b();\n} else {\n    c();\n}\n",
                     "if (a) {\n    b();\n} else if (d) {\n    e();\n} else {\n    c();\n}\n",
                     "if constexpr (a) {\n    return;\n}\n", "if (const auto a = b(); a) {\n    return a;\n}\n"):
            with self.subTest(text):
                self.assertEqual(self.complaints(text), [1])
        self.assertEqual(self.complaints("{\n    if (a) {\n        b();\n    }\n}\n"), [2])

    def test_needed(self):
        for text in ("if (a)\n    b();\n", "if (a) {\n    b();\n    c();\n}\n", "if (a) {\n    b(1,\n      2);\n}\n",
                     "if (a\n    && b) {\n    c();\n}\n", "for (;;) {\n    if (a)\n        b();\n}\n", "if (a) {\n}\n",
                     "if (a) {\n    if (b) c();\n}\n", "if (a) {\n    EXPECT_TRUE(b);\n}\n",
                     "if (a) {\n    b();\n} else {\n    c();\n    d();\n}\n", "if (a) {\n    // why\n    b();\n}\n",
                     "if (a) {\n    b();\n    c();\n} else {\n    d();\n}\n", "do {\n    b();\n} while (a);\n",
                     "auto a = [&] {\n    b();\n};\n", "void a() {\n    b();\n}\n"):
            with self.subTest(text):
                self.assertEqual(self.complaints(text), [])


if __name__ == "__main__":
    unittest.main()

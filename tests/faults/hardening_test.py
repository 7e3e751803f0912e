#!/usr/bin/python3
"""What the loader and the compiler do for the program's safety, as its files tell.

usage: hardening_test.py KORVEX FAILING_CALLS
"""
import os
import pathlib
import stat
import subprocess
import unittest

from support import KORVEX

LIBRARIES = pathlib.Path(KORVEX).parent.parent / "src"


def readelf(option, path):
    return subprocess.run(
        ["readelf", "-W", option, path], capture_output=True, check=True, text=True
    ).stdout


class Binaries(unittest.TestCase):
    FILES = [KORVEX, str(LIBRARIES / "libkorvex.so"), str(LIBRARIES / "libpreprocess.so")]

    def test_may_lie_anywhere(self):
        for path in self.FILES:
            self.assertRegex(readelf("-h", path), r"Type:\s+DYN")

    def test_tables_of_addresses_cannot_be_written_to(self):
        for path in self.FILES:
            self.assertIn("GNU_RELRO", readelf("-l", path))
            self.assertRegex(readelf("-d", path), r"BIND_NOW|FLAGS_1.*\bNOW\b")

    def test_stack_is_not_run_and_is_watched(self):
        for path in self.FILES:
            self.assertRegex(readelf("-l", path), r"GNU_STACK.* RW +0x")
            self.assertIn("__stack_chk_fail", readelf("--dyn-syms", path))

    def test_calls_that_copy_are_checked(self):
        checked = "".join(readelf("--dyn-syms", path) for path in self.FILES)
        self.assertRegex(checked, r"__\w+_chk@")

    def test_no_file_takes_the_rights_of_its_owner(self):
        for path in self.FILES:
            self.assertEqual(os.stat(path).st_mode & (stat.S_ISUID | stat.S_ISGID), 0)


if __name__ == "__main__":
    unittest.main()

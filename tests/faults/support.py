"""What the tests of faults share: runs of the program, with this or that taken from it."""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

KORVEX = os.path.abspath(sys.argv.pop(1))
FAILING_CALLS = os.path.abspath(sys.argv.pop(1))
DATA = pathlib.Path(__file__).resolve().parent.parent.parent / "data" / "proteins"
PROTEIN = str(DATA / "2efv_CA.pdb")
GAPS = str(DATA / "1ztu.pdb")  # costs a warning
NUCLEAR_RESONANCE = str(DATA / "1l2y.pdb")

DONE, SOME_INPUTS_FAILED, USAGE, INTERNAL = 0, 1, 2, 3


class Faults(unittest.TestCase):
    """Each test has a directory of its own."""

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.directory = holder.name

    def path(self, name):
        return os.path.join(self.directory, name)

    def write(self, name, content):
        with open(self.path(name), "wb") as file:
            file.write(content)
        return self.path(name)

    def content(self, name):
        with open(self.path(name), "rb") as file:
            return file.read()

    def names(self):
        return sorted(os.listdir(self.directory))

    def korvex(self, *arguments, without=(), environment=None, **options):
        """A finished run in the directory; `without`: descriptors that are closed in it."""

        def close():
            for descriptor in without:
                os.close(descriptor)

        options.setdefault("stdin", subprocess.DEVNULL)
        options.setdefault("stdout", subprocess.PIPE)
        options.setdefault("stderr", subprocess.PIPE)
        if without:
            options["preexec_fn"] = close
        return subprocess.run(
            [KORVEX, *arguments],
            cwd=self.directory,
            env={**os.environ, **(environment or {})},
            check=False,
            timeout=120,
            **options,
        )

    def assert_one_line(self, text, *parts):
        self.assertRegex(text, rb"\Akorvex: [^\n]*\n\Z")
        for part in parts:
            self.assertIn(part, text)

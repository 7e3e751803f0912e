#!/usr/bin/python3
"""What a session in a file cannot show: interrupts, and progress on a terminal.

usage: terminal_test.py KORVEX
"""
import os
import pathlib
import pty
import signal
import subprocess
import sys
import tempfile
import unittest

KORVEX = os.path.abspath(sys.argv.pop(1))
DATA = pathlib.Path(__file__).resolve().parent.parent.parent / "data"
PROTEIN = str(DATA / "proteins" / "2efv_CA.pdb")
ENDLESS = ["--trials", "100000", "--step", "1"]


def on_terminal(arguments, directory):
    """(exit status, standard output, what standard error showed on a terminal)."""
    master, slave = pty.openpty()
    process = subprocess.Popen(
        [KORVEX, *arguments],
        cwd=directory,
        stdin=subprocess.DEVNULL,
        stdout=subprocess.PIPE,
        stderr=slave,
    )
    os.close(slave)
    shown = b""
    try:
        while block := os.read(master, 65536):
            shown += block
    except OSError:  # the terminal's other side is closed
        pass
    os.close(master)
    output = process.stdout.read()
    process.stdout.close()
    return process.wait(), output.decode(), shown.decode()


class InTemporaryDirectory(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.directory = holder.name

    def left_behind(self):
        return os.listdir(self.directory)


class Interrupts(InTemporaryDirectory):
    def interrupted(self, number):
        """Exit status of a fingerprint that was sent a signal as soon as it had begun."""
        process = subprocess.Popen(
            [KORVEX, "fingerprint", "--classic", PROTEIN, "-o", "out", "--verbose", *ENDLESS],
            cwd=self.directory,
            stderr=subprocess.PIPE,
        )
        process.stderr.readline()
        self.assertEqual(len(self.left_behind()), 1)
        process.send_signal(number)
        status = process.wait()
        process.stderr.close()
        return status

    def test_interrupt_ends_with_130_and_leaves_nothing(self):
        self.assertEqual(self.interrupted(signal.SIGINT), 130)
        self.assertEqual(self.left_behind(), [])

    def test_termination_leaves_nothing(self):
        self.assertEqual(self.interrupted(signal.SIGTERM), -signal.SIGTERM)
        self.assertEqual(self.left_behind(), [])

    def test_knot_ends_with_130(self):
        process = subprocess.Popen(
            [KORVEX, "knot", "--classic", PROTEIN, "--trials", "2000000000"], stdout=subprocess.PIPE
        )
        process.stdout.readline()
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        process.stdout.close()


class Progress(InTemporaryDirectory):
    ARGUMENTS = ["fingerprint", "--classic", PROTEIN, "-o", "out", "--trials", "10", "--seed", "1"]

    def test_terminal_shows_progress_and_erases_it(self):
        status, output, shown = on_terminal([*self.ARGUMENTS, "--memory", "64K"], self.directory)
        self.assertEqual(status, 0)
        self.assertRegex(shown, r"net: \d+ of 45 sub-chains \(\d+ %\)")
        self.assertTrue(shown.endswith("\r\033[K"), repr(shown[-40:]))
        self.assertTrue(output.startswith("# "))

    def test_pipe_shows_none(self):
        result = subprocess.run(
            [KORVEX, *self.ARGUMENTS], cwd=self.directory, capture_output=True, check=True
        )
        self.assertEqual(result.stderr, b"")

    def test_knot_shows_trials(self):
        _, output, shown = on_terminal(["knot", "--classic", PROTEIN, "--seed", "1"], self.directory)
        self.assertRegex(shown, r"2efv_CA\.pdb: \d+ of 100 trials")
        self.assertIn("3_1(", output)


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""What a session in a file cannot show: interrupts, and progress on a terminal.

usage: terminal_test.py KORVEX
"""
import fcntl
import os
import pathlib
import pty
import random
import re
import resource
import signal
import struct
import subprocess
import sys
import tempfile
import termios
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


def all_on_terminal(arguments, directory, columns):
    """What a terminal of that width was sent by both streams."""
    master, slave = pty.openpty()
    fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))
    process = subprocess.Popen(
        [KORVEX, *arguments], cwd=directory, stdin=subprocess.DEVNULL, stdout=slave, stderr=slave
    )
    os.close(slave)
    shown = b""
    try:
        while block := os.read(master, 65536):
            shown += block
    except OSError:  # the terminal's other side is closed
        pass
    os.close(master)
    process.wait()
    return shown.decode().replace("\r\n", "\n")


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
        self.assertLessEqual(len(self.left_behind()), 1)  # none where files need no name
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


class EngineInterrupts(InTemporaryDirectory):
    """On a terminal the progress line tells that the work has begun."""

    def interrupted(self, *arguments, number=signal.SIGINT):
        """(exit status, standard output, standard error) of a run that is sent a signal."""
        master, slave = pty.openpty()
        process = subprocess.Popen(
            [KORVEX, *arguments],
            cwd=self.directory,
            stdin=subprocess.DEVNULL,
            stdout=subprocess.PIPE,
            stderr=slave,
        )
        os.close(slave)
        shown = b""
        try:
            while b"[" not in shown:
                shown += os.read(master, 65536)
            process.send_signal(number)
            while block := os.read(master, 65536):
                shown += block
        except OSError:  # the terminal's other side is closed
            pass
        os.close(master)
        output = process.stdout.read()
        process.stdout.close()
        return process.wait(), output.decode(), shown.decode()

    def long_chain(self):
        """A random walk of 20,000 points."""
        generator = random.Random(1)
        point = [0.0, 0.0, 0.0]
        with open(os.path.join(self.directory, "long.txt"), "w", encoding="ascii") as file:
            for _ in range(20000):
                point = [x + generator.gauss(0, 1) for x in point]
                print(*point, file=file)
        return "long.txt"

    def expect_interrupted(self, *arguments):
        before = self.left_behind()
        status, output, shown = self.interrupted(*arguments)
        self.assertEqual(status, 130)
        self.assertEqual(output, "")
        self.assertEqual(self.left_behind(), before)
        self.assertIn("[", shown)
        self.assertTrue(shown.endswith("\r\033[K"), repr(shown[-40:]))

    def test_commands_end_with_130_and_leave_nothing(self):
        endless = ["--directions", "1000000"]
        self.expect_interrupted("knot", PROTEIN, "--trials", "10000000")
        self.expect_interrupted("locate", PROTEIN, *endless)
        self.expect_interrupted("locate", PROTEIN, *endless, "--format", "json")
        self.expect_interrupted("fingerprint", PROTEIN, "-o", "out.npz", *endless)
        self.expect_interrupted("fingerprint", PROTEIN, "-o", "-", "--format", "tsv", *endless)

    def test_long_chains_end_with_130_and_leave_nothing(self):
        chain = self.long_chain()
        self.expect_interrupted("knot", chain, "--trials", "10000")
        self.expect_interrupted("locate", chain, "--step", "200")
        self.expect_interrupted("fingerprint", chain, "-o", "out.npz", "--step", "200")

    def test_file_that_was_there_stays(self):
        with open(os.path.join(self.directory, "out.tsv"), "w", encoding="ascii") as file:
            file.write("precious")
        self.expect_interrupted("fingerprint", PROTEIN, "-o", "out.tsv", "--directions", "1000000")
        with open(os.path.join(self.directory, "out.tsv"), encoding="ascii") as file:
            self.assertEqual(file.read(), "precious")

    def test_answers_before_the_interrupt_are_kept(self):
        process = subprocess.Popen(
            [KORVEX, "knot", PROTEIN, "-"], stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.assertIn(b"-3_1", process.stdout.readline())
        process.send_signal(signal.SIGINT)
        self.assertEqual(process.wait(), 130)
        process.stdin.close()
        process.stdout.close()

    def test_termination_leaves_nothing(self):
        status, _, _ = self.interrupted(
            "fingerprint", PROTEIN, "-o", "out", "--directions", "1000000", number=signal.SIGTERM
        )
        self.assertEqual(status, -signal.SIGTERM)
        self.assertEqual(self.left_behind(), [])


class ReadersThatGoAway(InTemporaryDirectory):
    def test_standard_output_leaves_no_partial_file(self):
        reading, writing = os.pipe()
        os.close(reading)
        result = subprocess.Popen(
            [KORVEX, "fingerprint", PROTEIN, "-o", "-", "--format", "tsv"],
            env={**os.environ, "TMPDIR": self.directory},
            stdout=writing,
        )
        os.close(writing)
        self.assertEqual(result.wait(), -signal.SIGPIPE)
        self.assertEqual(self.left_behind(), [])

    def test_standard_error_leaves_no_partial_file(self):
        gap = str(DATA / "proteins" / "1ztu.pdb")
        reading, writing = os.pipe()
        os.close(reading)
        result = subprocess.Popen(
            [KORVEX, "fingerprint", gap, "-o", "out.npz"], cwd=self.directory, stderr=writing
        )
        os.close(writing)
        self.assertEqual(result.wait(), -signal.SIGPIPE)
        self.assertEqual(self.left_behind(), [])

    def test_file_size_limit_leaves_no_partial_file(self):
        def limit():
            resource.setrlimit(resource.RLIMIT_FSIZE, (1000, 1000))

        result = subprocess.run(
            [KORVEX, "fingerprint", PROTEIN, "-o", "out.tsv"],
            cwd=self.directory,
            preexec_fn=limit,
            check=False,
        )
        self.assertEqual(result.returncode, -signal.SIGXFSZ)
        self.assertEqual(self.left_behind(), [])


class EngineProgress(InTemporaryDirectory):
    RUNS = [
        ["knot", PROTEIN, "--trials", "20000"],
        ["locate", PROTEIN, "--directions", "3000"],
        ["fingerprint", PROTEIN, "-o", "out.tsv", "--directions", "3000"],
    ]

    def test_terminal_shows_a_bar_with_rate_and_time_left_and_erases_it(self):
        for arguments in self.RUNS:
            status, _, shown = on_terminal(arguments, self.directory)
            self.assertEqual(status, 0)
            self.assertRegex(
                shown,
                r"2efv_CA\.pdb chain A \[#* *\] +\d+ % \d[\d.]* (closures|directions)/s, \d+ s left",
            )
            self.assertTrue(shown.endswith("\r\033[K"), repr(shown[-40:]))

    def test_answers_stand_in_lines_of_their_own(self):
        for arguments in ["knot", PROTEIN, PROTEIN], ["locate", PROTEIN], ["knot", PROTEIN, "--classic"]:
            shown = all_on_terminal(arguments, self.directory, 200)
            self.assertIn("3_1", shown)
            for line in shown.split("\n"):
                left = line.rpartition("\r\033[K")[2]
                self.assertNotRegex(left, r"\[#* *\]|trials$", repr(line))

    def test_bar_keeps_to_one_line_of_a_narrow_terminal(self):
        for columns in (80, 50, 20, 3):
            shown = all_on_terminal(["locate", PROTEIN, "--directions", "1000"], self.directory, columns)
            bars = [text.split("\n")[0] for text in shown.split("\r\033[K")[1:-1]]
            self.assertGreater(len(bars), 1)
            for bar in bars:
                self.assertLess(len(bar), columns)

    def test_bar_never_falls(self):
        _, _, shown = on_terminal(self.RUNS[2], self.directory)
        percents = [int(percent) for percent in re.findall(r"(\d+) %", shown)]
        self.assertGreater(len(percents), 1)
        self.assertEqual(percents, sorted(percents))

    def test_pipe_shows_none(self):
        for arguments in self.RUNS:
            result = subprocess.run(
                [KORVEX, *arguments], cwd=self.directory, capture_output=True, check=True
            )
            self.assertEqual(result.stderr, b"")


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

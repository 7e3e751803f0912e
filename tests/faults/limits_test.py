#!/usr/bin/python3
"""Runs in a limited address space: at every limit the answer, or one line.

usage: limits_test.py KORVEX FAILING_CALLS
"""
import collections
import resource
import unittest

from support import DONE, GAPS, INTERNAL, PROTEIN, SOME_INPUTS_FAILED, Faults

MIB = 1 << 20
LOADER_FAILED = 127  # the libraries found no room: the loader has told so


class LimitedAddressSpace(Faults):
    def limited(self, limit, *command):
        def set_limit():
            resource.setrlimit(resource.RLIMIT_AS, (limit, limit))

        return self.korvex(*command, preexec_fn=set_limit)

    def expect_answer_or_one_line(self, *command, limits, output=None):
        whole = self.korvex(*command)
        self.assertEqual(whole.returncode, DONE)
        content = self.content(output) if output else b""
        statuses = collections.Counter()
        for limit in limits:
            with self.subTest(command=command, mebibytes=limit):
                if output:
                    self.write(output, b"before")
                result = self.limited(limit * MIB, *command)
                statuses[result.returncode] += 1
                if result.returncode == DONE:
                    self.assertEqual((result.stdout, result.stderr), (whole.stdout, whole.stderr))
                    if output:
                        self.assertEqual(self.content(output), content)
                    continue
                self.assertIn(result.returncode, (SOME_INPUTS_FAILED, INTERNAL, LOADER_FAILED))
                self.assertEqual(result.stdout, b"")
                if result.returncode != LOADER_FAILED:
                    self.assert_one_line(result.stderr)
                if output:
                    self.assertEqual(self.content(output), b"before")
        self.assertGreater(statuses[DONE], 0, statuses)
        self.assertGreater(len(statuses), 1, statuses)

    def test_knot(self):
        self.expect_answer_or_one_line(
            "knot", GAPS, "--threads", "2", "--format", "json", limits=[*range(10, 50, 3), 200, 1000]
        )

    def test_fingerprint(self):
        self.expect_answer_or_one_line(
            "fingerprint", PROTEIN, "--threads", "2", "-o", "out.npz",
            limits=[*range(10, 50, 4), 200, 1000], output="out.npz",
        )

    def test_long_chain(self):
        """A walk of 60,000 points: the reader and the ring's diagram are most of the memory."""
        steps = "0 0 1", "0 1 0", "1 0 0", "0 0 -1", "0 -1 0"
        at = [0, 0, 0]
        lines = []
        state = 1
        for _ in range(60000):
            state = state * 6364136223846793005 + 1442695040888963407 & (1 << 64) - 1
            for axis, step in enumerate(steps[(state >> 33) % 5].split()):
                at[axis] += int(step)
            lines.append("{} {} {}\n".format(*at))
        self.write("walk.txt", "".join(lines).encode())
        self.expect_answer_or_one_line(
            "knot", "walk.txt", "--closure", "direct", "--threads", "1",
            limits=[20, 25, 30, 35, 40, 50, 60, 80, 120, 1000],
        )


class LimitOfTheRun(Faults):
    """What --memory gives is all that a run takes, but for what every run may take."""

    def expect_bound(self, *command, output=None):
        """Runs whose reading takes most of the memory, with less and more of it."""
        line = "ATOM      1  CA  ALA {}{:4d}    {:8.3f}{:8.3f}{:8.3f}  1.00  0.00\n".format
        few = "".join(line("A", i, 3.8 * i, i % 2, 0) for i in range(9))
        many = "".join(line("B", i % 10000, 3.8 * (i % 1000), i / 1000, 0) for i in range(200_000))
        self.write("large.pdb", (few + "TER\n" + many).encode())
        whole = self.korvex(*command)
        self.assertEqual(whole.returncode, DONE, whole.stderr)
        content = self.content(output) if output else b""
        statuses = collections.Counter()
        for mebibytes in 1, 64, 90, 120, 1000:
            with self.subTest(command=command, mebibytes=mebibytes):
                if output:
                    self.write(output, b"before")
                result = self.korvex(*command, "--memory", f"{mebibytes}M")
                statuses[result.returncode] += 1
                if result.returncode == DONE:
                    self.assertEqual((result.stdout, result.stderr), (whole.stdout, whole.stderr))
                    if output:
                        self.assertEqual(self.content(output), content)
                    continue
                self.assertEqual(result.returncode, INTERNAL)
                self.assert_one_line(result.stderr, b"memory")
                self.assertEqual(result.stdout, b"")
                if output:
                    self.assertEqual(self.content(output), b"before")
        self.assertGreater(statuses[DONE], 0, statuses)
        self.assertGreater(statuses[INTERNAL], 0, statuses)

    def test_holds_what_is_read(self):
        self.expect_bound("locate", "large.pdb", "--chain", "A", "--threads", "1")
        self.expect_bound("fingerprint", "large.pdb", "--chain", "A", "--threads", "1",
                          "-o", "out.npz", output="out.npz")

    def test_leaves_small_runs_alone(self):
        command = ["locate", PROTEIN, "--directions", "1", "--threads", "8"]
        self.assertEqual(self.korvex(*command, "--memory", "1M").stdout, self.korvex(*command).stdout)


if __name__ == "__main__":
    unittest.main()

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


if __name__ == "__main__":
    unittest.main()

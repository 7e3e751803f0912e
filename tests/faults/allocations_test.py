#!/usr/bin/python3
"""Every allocation of small runs fails in turn, alone and with all that follow.

usage: allocations_test.py KORVEX FAILING_CALLS

With KORVEX_LONG_TESTS=1 in the environment it is every one, else the first 1000 and a part of the rest.
"""
import os
import unittest

from support import DONE, FAILING_CALLS, INTERNAL, NUCLEAR_RESONANCE, PROTEIN, Faults

LONG = os.environ.get("KORVEX_LONG_TESTS") == "1"
SHORT = ["--residues", "6-40"]


class FailingAllocations(Faults):
    def outcomes(self, *command, stride, all_after):
        """The run with all its memory; and of each that lacks some (number of the allocation that
        failed, wait status, bytes of standard output, standard error)."""
        environment = {"LD_PRELOAD": FAILING_CALLS, "KORVEX_FAIL_EACH": self.path("outcomes")}
        environment["KORVEX_FAIL_STRIDE"] = "1" if LONG else str(stride)
        if all_after:
            environment["KORVEX_FAIL_ALL_AFTER"] = "1"
        whole = self.korvex(*command, environment=environment)
        self.assertEqual(whole.returncode, DONE, whole.stderr)
        outcomes = []
        for line in self.content("outcomes").splitlines():
            number, status, size, message = line.split(b" ", 3)
            outcomes.append((int(number), int(status), int(size), message))
        os.remove(self.path("outcomes"))
        return whole, outcomes

    def expect_answer_or_one_line(self, *command, stride):
        for all_after in False, True:
            whole, outcomes = self.outcomes(*command, stride=stride, all_after=all_after)
            self.assertGreater(len(outcomes), 1000)
            failed = 0
            for number, status, size, message in outcomes:
                with self.subTest(command=command, number=number, all_after=all_after):
                    if status == DONE:  # it could do without
                        self.assertEqual((size, message), (len(whole.stdout), whole.stderr))
                        continue
                    failed += 1
                    self.assertEqual(os.waitstatus_to_exitcode(status), INTERNAL, message)
                    self.assertRegex(message, rb"\Akorvex: [^|]*memory[^|]*\|\Z")
                    self.assertLess(size, max(len(whole.stdout), 1))
            self.assertGreater(failed, len(outcomes) // 2)

    def test_table(self):
        self.expect_answer_or_one_line("table", "3_1#4_1", stride=20)

    def test_knot(self):
        self.expect_answer_or_one_line(
            "knot", PROTEIN, *SHORT, "--threads", "1", "--format", "json", stride=41
        )

    def test_votes(self):
        self.expect_answer_or_one_line(
            "knot", PROTEIN, *SHORT, "--threads", "1", "--trials", "5", stride=37
        )

    def test_locate(self):
        self.expect_answer_or_one_line(
            "locate", PROTEIN, *SHORT, "--step", "9", "--threads", "1", stride=79
        )

    def test_fingerprint_leaves_nothing(self):
        out = self.path("out.tsv")
        self.expect_answer_or_one_line(
            "fingerprint", PROTEIN, *SHORT, "--step", "15", "--directions", "3", "--threads", "1",
            "-o", out, stride=61,
        )
        self.assertEqual(self.names(), ["out.tsv"])

    def test_models(self):
        self.expect_answer_or_one_line("knot", NUCLEAR_RESONANCE, "--model", "38", "--threads", "1",
                                       "--closure", "direct", stride=71)

    def test_classic(self):
        self.expect_answer_or_one_line(
            "knot", "--classic", PROTEIN, "--seed", "1", "--trials", "2", stride=31
        )


if __name__ == "__main__":
    unittest.main()

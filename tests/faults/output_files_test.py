#!/usr/bin/python3
"""Output files: whole or not there, whatever ends the run; modes, links, inputs.

usage: output_files_test.py KORVEX FAILING_CALLS
"""
import os
import random
import signal
import stat
import subprocess
import unittest

from support import DONE, FAILING_CALLS, GAPS, KORVEX, PROTEIN, USAGE, Faults

WRITE = ["fingerprint", PROTEIN, "--step", "20", "-o"]
NAMED = {"LD_PRELOAD": FAILING_CALLS, "KORVEX_NO_UNNAMED_FILES": "1"}
KILLS = 60


class Replacing(Faults):
    """Once as files are collected usually, once as where they need a name."""

    environment = {}

    def written(self, name):
        result = self.korvex(*WRITE, name, environment=self.environment)
        self.assertEqual((result.returncode, result.stderr), (DONE, b""))
        return self.content(name)

    def mode(self, name):
        return stat.S_IMODE(os.stat(self.path(name)).st_mode)

    def setUp(self):
        super().setUp()
        self.whole = self.written("whole.tsv")
        self.assertIn(b"begin\tend", self.whole)
        self.assertEqual(self.names(), ["whole.tsv"])

    def test_new_file_has_the_usual_mode(self):
        mask = os.umask(0o027)
        self.addCleanup(os.umask, mask)
        self.written("new.tsv")
        self.assertEqual(self.mode("new.tsv"), 0o640)

    def test_replaced_file_keeps_its_mode_but_sets_no_user_or_group(self):
        for before, after in (0o640, 0o640), (0o4755, 0o755), (0o2755, 0o755), (0o1666, 0o666):
            self.write("out.tsv", b"before")
            os.chmod(self.path("out.tsv"), before)
            self.assertEqual(self.written("out.tsv"), self.whole)
            self.assertEqual(self.mode("out.tsv"), after)
        self.assertEqual(self.names(), ["out.tsv", "whole.tsv"])

    @unittest.skipIf(os.geteuid() != 0, "only root may give files away")
    def test_replaced_file_keeps_its_owner(self):
        self.write("out.tsv", b"before")
        os.chown(self.path("out.tsv"), 12345, 23456)
        os.chmod(self.path("out.tsv"), 0o4755)
        self.written("out.tsv")
        status = os.stat(self.path("out.tsv"))
        self.assertEqual((status.st_uid, status.st_gid), (12345, 23456))
        self.assertEqual(self.mode("out.tsv"), 0o755)

    def test_links_are_followed(self):
        os.mkdir(self.path("there"))
        self.write("there/target.tsv", b"before")
        os.symlink("there/target.tsv", self.path("one.tsv"))
        os.symlink("one.tsv", self.path("two.tsv"))
        os.symlink("there/missing.tsv", self.path("dangling.tsv"))
        self.assertEqual(self.written("two.tsv"), self.whole)
        self.assertEqual(self.content("there/target.tsv"), self.whole)
        self.assertEqual(self.written("dangling.tsv"), self.whole)
        self.assertEqual(self.content("there/missing.tsv"), self.whole)
        for name in "one.tsv", "two.tsv", "dangling.tsv":
            self.assertTrue(os.path.islink(self.path(name)))
        self.assertEqual(sorted(os.listdir(self.path("there"))), ["missing.tsv", "target.tsv"])

    def test_links_that_lead_nowhere_are_told(self):
        os.symlink("b.tsv", self.path("a.tsv"))
        os.symlink("a.tsv", self.path("b.tsv"))
        os.symlink("no/such/directory.tsv", self.path("c.tsv"))
        before = self.names()
        for name in "a.tsv", "b.tsv", "c.tsv":
            result = self.korvex(*WRITE, name, environment=self.environment)
            self.assertEqual(result.returncode, USAGE)
            self.assert_one_line(result.stderr, b"cannot write '" + name.encode())
        self.assertEqual(self.names(), before)

    def test_other_names_of_a_file_keep_what_it_was(self):
        self.write("out.tsv", b"before")
        os.link(self.path("out.tsv"), self.path("other.tsv"))
        self.assertEqual(self.written("out.tsv"), self.whole)
        self.assertEqual(self.content("other.tsv"), b"before")

    def test_input_is_never_replaced(self):
        with open(PROTEIN, "rb") as file:
            protein = file.read()
        self.write("in.pdb", protein)
        os.symlink("in.pdb", self.path("link.pdb"))
        write = ["--format", "tsv", "-o"]
        for name, output in ("-", "in.pdb"), ("-", "link.pdb"), ("link.pdb", "in.pdb"):
            with open(self.path("in.pdb"), "rb") as file:
                result = self.korvex(
                    "fingerprint", name, *write, output, stdin=file, environment=self.environment
                )
            self.assertEqual(result.returncode, USAGE)
            self.assert_one_line(result.stderr, b"the chain is read from it")
            self.assertEqual(self.content("in.pdb"), protein)


class ReplacingByNamedFiles(Replacing):
    environment = NAMED


class Ending(Faults):
    def ended(self, number, after, **options):
        """Sends a signal to a run that writes out.tsv, so many seconds after its start."""
        process = subprocess.Popen(
            [KORVEX, "fingerprint", GAPS, "--step", "20", "-o", "out.tsv"],
            cwd=self.directory,
            stderr=subprocess.DEVNULL,
            **options,
        )
        try:
            return process.wait(after)
        except subprocess.TimeoutExpired:
            process.send_signal(number)
            return process.wait()

    def seconds_of_a_run(self):
        before = os.times()
        self.assertEqual(self.ended(signal.SIGKILL, 60), DONE)
        after = os.times()
        return after.elapsed - before.elapsed

    def test_kills_at_random_moments_leave_nothing_but_whole_files(self):
        seconds = self.seconds_of_a_run()
        whole = self.content("out.tsv")
        generator = random.Random(1)
        killed = 0
        for i in range(KILLS):
            if i % 2 == 0:
                self.write("out.tsv", b"before")
            else:
                os.remove(self.path("out.tsv"))
            # Half of them about the time when the file is put in its place.
            moment = generator.uniform(0, 1) if i % 4 < 2 else generator.gauss(1, 0.05)
            killed += self.ended(signal.SIGKILL, max(0, moment * seconds)) == -signal.SIGKILL
            self.assertIn(self.names(), ([], ["out.tsv"]))
            if self.names():
                self.assertIn(self.content("out.tsv"), (b"before", whole) if i % 2 == 0 else (whole,))
            else:
                self.write("out.tsv", b"")
        self.assertGreater(killed, 0)

    def test_signals_remove_named_files(self):
        for number in signal.SIGINT, signal.SIGTERM, signal.SIGHUP:
            status = self.ended(number, 0.2, env={**os.environ, **NAMED})
            self.assertIn(status, (130, -number, DONE))
            self.assertNotIn(".korvex-", " ".join(self.names()))


class HostileNames(Faults):
    NAMES = [
        b"line\nbreak.pdb",
        b"tab\tand\rreturn.pdb",
        b"escape\x1b[2J\x1b]0;title\x07.pdb",
        b"=cmd|' -C calc'!A0.pdb",
        b"+1.pdb",
        b"@SUM(1).pdb",
        b"no utf8 \xff\xfe.pdb",
        "right to left \u202eBDP.pdb".encode(),
        b"line separator \xe2\x80\xa8.pdb",
        b"n" * 251 + b".pdb",
        b"quote\"'`$(touch hit);.pdb",
        b"%s%n.pdb",
    ]

    def test_names_are_data_in_every_answer(self):
        with open(PROTEIN, "rb") as file:
            protein = file.read()
        for name in self.NAMES:
            with open(os.path.join(self.directory.encode(), name), "wb") as file:
                file.write(protein)
            for command, rows in (["knot"], 1), (["knot", "--format", "tsv"], None), (["locate"], 2):
                with self.subTest(name=name, command=command):
                    result = self.korvex(*command, os.fsdecode(b"./" + name))
                    self.assertEqual((result.returncode, result.stderr), (DONE, b""))
                    lines = result.stdout.split(b"\n")
                    if rows is not None:
                        self.assertEqual(len(lines), rows + 1)
                    else:
                        self.assertEqual(len({line.count(b"\t") for line in lines[:-1]}), 1)
                    text = result.stdout.decode()  # all of it is UTF-8
                    self.assertTrue(all(c in "\n\t" or c.isprintable() or c == " " for c in text), text)
        self.assertEqual(len(self.names()), len(self.NAMES))

    def test_names_are_data_in_messages(self):
        for name in self.NAMES:
            with self.subTest(name=name):
                result = self.korvex("knot", os.fsdecode(b"missing " + name[:200]))
                self.assertEqual(result.returncode, 1)
                self.assert_one_line(result.stderr)
                self.assertTrue(result.stderr.decode()[:-1].isprintable(), result.stderr)


if __name__ == "__main__":
    unittest.main()

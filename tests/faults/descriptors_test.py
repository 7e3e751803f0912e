#!/usr/bin/python3
"""Closed descriptors, slow and broken pipes, full disks.

usage: descriptors_test.py KORVEX FAILING_CALLS
"""
import gzip
import io
import itertools
import os
import resource
import signal
import subprocess
import tarfile
import threading
import unittest

from support import DONE, GAPS, PROTEIN, SOME_INPUTS_FAILED, Faults

STDIN, STDOUT, STDERR = 0, 1, 2
SUBSETS = [
    subset for size in (1, 2, 3) for subset in itertools.combinations((STDIN, STDOUT, STDERR), size)
]


class ClosedDescriptors(Faults):
    def test_nothing_lands_in_the_output_file(self):
        write = ["fingerprint", GAPS, "--step", "30", "-o"]
        self.assertEqual(self.korvex(*write, "whole.tsv").returncode, DONE)
        for closed in SUBSETS:
            with self.subTest(closed=closed):
                self.assertEqual(self.korvex(*write, "out.tsv", without=closed).returncode, DONE)
                self.assertEqual(self.content("out.tsv"), self.content("whole.tsv"))
                os.remove(self.path("out.tsv"))

    def test_answer_that_nobody_gets_is_a_failure(self):
        for command in (
            ["knot", PROTEIN],
            ["knot", "--classic", PROTEIN],
            ["locate", PROTEIN],
            ["table", "3_1"],
            ["fingerprint", PROTEIN, "--step", "30", "-o", "-"],
            ["map", PROTEIN, "-o", "-"],
            ["--help"],
            ["--version"],
        ):
            with self.subTest(command=command):
                result = self.korvex(*command, without=[STDOUT])
                self.assertEqual(result.returncode, SOME_INPUTS_FAILED)
                self.assert_one_line(result.stderr, b"cannot write", b"Bad file descriptor")

    def test_answer_needs_no_standard_error(self):
        whole = self.korvex("knot", GAPS)
        result = self.korvex("knot", GAPS, without=[STDIN, STDERR])
        self.assertEqual((result.returncode, result.stdout), (DONE, whole.stdout))

    def test_closed_standard_input_cannot_be_read(self):
        for command in ["knot", "-"], ["locate", "-"], ["knot", "--classic", "-"]:
            with self.subTest(command=command):
                result = self.korvex(*command, without=[STDIN])
                self.assertEqual(result.returncode, SOME_INPUTS_FAILED)
                self.assertIn(b"korvex: ", result.stderr)
                self.assertNotIn(b"0_1", result.stdout)


class Pipes(Faults):
    def fed(self, command, chunks, **options):
        """The result of a run whose standard input is written chunk by chunk."""
        reading, writing = os.pipe()

        def feed():
            with os.fdopen(writing, "wb", buffering=0) as pipe:
                for chunk in chunks:
                    pipe.write(chunk)

        writer = threading.Thread(target=feed)
        writer.start()
        result = self.korvex(*command, stdin=reading, **options)
        os.close(reading)
        writer.join()
        return result

    def test_input_may_come_byte_by_byte(self):
        with open(PROTEIN, "rb") as file:
            text = file.read()
        bytes_of_it = [text[i : i + 1] for i in range(len(text))]
        whole = self.korvex("knot", PROTEIN).stdout
        for name in "-", "/dev/stdin":
            with self.subTest(name=name):
                result = self.fed(["knot", name], bytes_of_it)
                self.assertEqual(result.returncode, DONE)
                shown = {"-": b"standard input", "/dev/stdin": b"/dev/stdin"}[name]
                self.assertEqual(result.stdout, whole.replace(PROTEIN.encode(), shown))

    def test_reader_that_goes_away_ends_the_run_at_once(self):
        reading, writing = os.pipe()
        os.close(reading)
        result = self.korvex("table", stdout=writing)
        os.close(writing)
        self.assertEqual(result.returncode, -signal.SIGPIPE)
        self.assertEqual(result.stderr, b"")

    def test_reader_that_goes_away_is_told_where_the_signal_is_ignored(self):
        for command in ["table"], ["knot", PROTEIN], ["fingerprint", PROTEIN, "-o", "-"]:
            with self.subTest(command=command):
                reading, writing = os.pipe()
                os.close(reading)
                result = self.korvex(
                    *command,
                    stdout=writing,
                    restore_signals=False,  # Python ignores SIGPIPE
                )
                os.close(writing)
                self.assertEqual(result.returncode, SOME_INPUTS_FAILED)
                self.assert_one_line(result.stderr, b"Broken pipe")


class ManyInputs(Faults):
    COPIES = 12  # of every kind of input, each of which opens one descriptor or more
    MOST = 20

    def archive(self, name, members):
        with tarfile.open(self.path(name), "w:gz" if name.endswith("gz") else "w") as archive:
            for member, content in members.items():
                about = tarfile.TarInfo(member)
                about.size = len(content)
                archive.addfile(about, io.BytesIO(content))

    def inputs(self):
        """Small files, and such as are read in pieces and twice; sound ones and others."""
        line = b"ATOM  %5d  CA  ALA A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n"
        sound = b"".join(line % (i, i, 3.8 * i, i % 2, 0) for i in range(1, 6))
        broken = sound + b"ATOM      7  CA  ALA A   7    nowhere\n"
        water = b"HETATM    9  O   HOH W   9       0.000   0.000   0.000  1.00  0.00\n"
        padding = water * ((5 << 18) // len(water))
        contents = {
            "sound.pdb": sound, "broken.pdb": broken, "empty.pdb": b"", "binary.pdb": b"\x7fELF\0\1",
            "long.pdb": padding + sound, "long_broken.pdb": padding + broken,
            "sound.pdb.gz": gzip.compress(sound), "cut.pdb.gz": gzip.compress(sound)[:-12],
            "twice.pdb.gz": gzip.compress(gzip.compress(sound)),
            "long.pdb.gz": gzip.compress(padding + sound),
            "long_cut.pdb.gz": gzip.compress(padding + sound)[:-12],
        }
        for name, content in contents.items():
            self.write(name, content)
        os.mkdir(self.path("folder"))
        self.write("folder/sound.pdb", sound)
        self.write("folder/broken.pdb", broken)
        members = {"a.pdb": sound, "b.pdb": broken, "c.pdb.gz": contents["sound.pdb.gz"]}
        self.archive("members.tar", members)
        self.archive("members.tar.gz", members)
        self.write("cut.tar", self.content("members.tar")[:700])
        self.write("cut.tar.gz", self.content("members.tar.gz")[:-30])
        return [*contents, "folder", "missing.pdb", "members.tar", "members.tar.gz", "cut.tar", "cut.tar.gz"]

    def test_leave_no_descriptor_open(self):
        names = self.inputs() * self.COPIES

        def limit():
            resource.setrlimit(resource.RLIMIT_NOFILE, (self.MOST, self.MOST))

        arguments = ["knot", "--closure", "direct", "--threads", "1", *names]
        whole = self.korvex(*arguments)
        self.assertEqual(whole.returncode, SOME_INPUTS_FAILED)
        self.assertGreater(whole.stdout.count(b"0_1"), 8 * self.COPIES)
        self.assertGreater(whole.stderr.count(b"\nkorvex: "), 8 * self.COPIES)
        self.assertNotIn(b"Too many open files", whole.stderr)
        limited = self.korvex(*arguments, preexec_fn=limit)
        self.assertEqual((limited.stdout, limited.stderr), (whole.stdout, whole.stderr))
        self.assertEqual(limited.returncode, SOME_INPUTS_FAILED)


class FullDisk(Faults):
    COMMANDS = (
        ["fingerprint", PROTEIN, "-o", "out.tsv"],
        ["fingerprint", PROTEIN, "-o", "out.npz"],
        ["fingerprint", "--classic", PROTEIN, "--seed", "1", "--step", "30", "-o", "out"],
        ["map", PROTEIN, "-o", "out.svg"],
    )

    def limited(self, command, size):
        def limit():
            signal.signal(signal.SIGXFSZ, signal.SIG_IGN)
            resource.setrlimit(resource.RLIMIT_FSIZE, (size, size))

        return self.korvex(*command, preexec_fn=limit)

    def test_output_is_there_whole_or_not_at_all(self):
        for command in self.COMMANDS:
            self.assertEqual(self.korvex(*command).returncode, DONE)
            name = command[-1]
            whole = self.content(name)
            os.remove(self.path(name))
            for size in 0, 1, 100, len(whole) // 2, len(whole) - 1:
                with self.subTest(command=command, size=size):
                    result = self.limited(command, size)
                    self.assertEqual(result.returncode, SOME_INPUTS_FAILED)
                    self.assert_one_line(result.stderr, b"File too large")
                    self.assertEqual(self.names(), [])
            self.assertEqual(self.limited(command, len(whole)).returncode, DONE)
            self.assertEqual(self.content(name), whole)
            os.remove(self.path(name))

    def test_what_was_there_stays(self):
        self.write("out.tsv", b"precious")
        self.assertEqual(self.limited(self.COMMANDS[0], 100).returncode, SOME_INPUTS_FAILED)
        self.assertEqual(self.content("out.tsv"), b"precious")
        self.assertEqual(self.names(), ["out.tsv"])

    def test_answers_to_a_full_device_fail(self):
        for command in ["knot", PROTEIN], ["table"], ["locate", PROTEIN, "--format", "json"]:
            with open("/dev/full", "wb") as full:
                result = self.korvex(*command, stdout=full)
            self.assertEqual(result.returncode, SOME_INPUTS_FAILED)
            self.assert_one_line(result.stderr, b"No space left on device")


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""A scan that is killed, and killed again, ends with the bytes of one that nothing disturbed.

usage: scan_kill_test.py KORVEX

Kills it at 12 random moments, or with KORVEX_LONG_TESTS=1 in the environment at 50.
"""
import os
import pathlib
import random
import signal
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from model_archive import ModelArchiveCase  # noqa: E402

KORVEX = os.path.abspath(sys.argv.pop(1))
FAST = ["--trials", "50", "--step", "12"]
KILLS = 50 if os.environ.get("KORVEX_LONG_TESTS") == "1" else 12


def parts_in(directory):
    """{part: (inode, time of writing)} of the parts that are there whole."""
    found = {}
    for path in pathlib.Path(directory).glob("parts/*/*.tsv"):
        status = path.stat()
        found[path.name] = (status.st_ino, status.st_mtime_ns)
    return found


class KilledScans(ModelArchiveCase):
    COPIES = 24
    MEMBERS = ("1ubq.pdb", "1crn.cif", "2efv_CA.pdb")

    def command(self, output, *more):
        return [KORVEX, "scan", self.archive, "-o", output, "--piece", "3", *FAST, *more]

    def test_killed_scans_end_with_the_same_bytes(self):
        start = time.monotonic()
        subprocess.run(self.command(self.directory / "whole"), check=True, capture_output=True)
        duration = time.monotonic() - start
        whole = (self.directory / "whole" / "results.tsv").read_bytes()
        self.assertEqual(whole.count(b"\n"), 2 + 24 * 3)

        generator = random.Random(1)
        kills = 0
        while kills < KILLS:
            output = self.directory / f"killed-{kills}"
            kept = {}
            while True:
                process = subprocess.Popen(
                    self.command(output, "--resume"), stdout=subprocess.PIPE, text=True
                )
                try:
                    summary, _ = process.communicate(timeout=generator.uniform(0, duration))
                except subprocess.TimeoutExpired:
                    process.send_signal(signal.SIGKILL)
                    process.communicate()
                    kills += 1
                    summary = None
                parts = parts_in(output)
                for name, written in kept.items():
                    self.assertEqual(parts[name], written, "a whole piece was written again")
                kept = parts
                if summary is not None:
                    break
            self.assertEqual(process.returncode, 0)
            self.assertIn("72 files, 72 chains: 24 knotted, 0 slipknots, 0 failed", summary)
            self.assertEqual((output / "results.tsv").read_bytes(), whole)
            left = [path for path in output.rglob("*") if path.is_file()]
            self.assertEqual({path.suffix for path in left}, {".json", ".tsv"})
        print(f"{kills} kills")

    def test_an_interrupt_ends_it_with_whole_pieces(self):
        output = self.directory / "interrupted"
        long = ["--slipknots", "--directions", "100"]
        process = subprocess.Popen(
            self.command(output, *long), stdout=subprocess.PIPE, stderr=subprocess.PIPE
        )
        while not parts_in(output):
            self.assertIsNone(process.poll())
        process.send_signal(signal.SIGINT)
        _, complaint = process.communicate()
        self.assertEqual(process.returncode, 130)
        self.assertIn(b"--resume goes on with what is whole in", complaint)
        for path in output.rglob("*"):
            self.assertTrue(path.is_dir() or path.suffix in (".json", ".tsv"), path)
        subprocess.run(self.command(output, *long, "--resume"), check=True, capture_output=True)


if __name__ == "__main__":
    unittest.main()

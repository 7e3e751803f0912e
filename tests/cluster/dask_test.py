#!/usr/bin/python3
"""A Dask cluster that loses a worker in the middle of a scan makes the bytes of one scan.

usage: PYTHONPATH=BUILD/python dask_test.py KORVEX

Starts a scheduler and two workers of its own. Skipped where dask.distributed is missing.
"""
import os
import pathlib
import signal
import subprocess
import sys
import threading
import time
import unittest

try:
    import distributed

    from korvex import scan
except ImportError:
    print("distributed is not there: skipped")
    sys.exit(77)

KORVEX = os.path.abspath(sys.argv.pop(1))
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
ENVIRONMENT = {**os.environ, "PATH": f"{os.path.dirname(KORVEX)}:{os.environ['PATH']}"}
PATIENCE = 120  # seconds until what does not come is given up

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from model_archive import ModelArchiveCase  # noqa: E402


def wait_for(what, condition):
    end = time.monotonic() + PATIENCE
    while not condition():
        if time.monotonic() > end:
            raise AssertionError(f"{what} did not come")
        time.sleep(0.02)


class ScanOnDask(ModelArchiveCase):
    COPIES = 5
    MEMBERS = ("1ubq.pdb", "2efv_CA.pdb", "1xd3_A_bound.pdb")

    def start(self, *arguments):
        process = subprocess.Popen(
            [sys.executable, "-m", *arguments],
            cwd=self.directory,
            stdout=subprocess.DEVNULL,
            stderr=subprocess.DEVNULL,
            env=ENVIRONMENT,
            start_new_session=True,
        )
        self.addCleanup(self.end, process)
        return process

    @staticmethod
    def end(process):
        """With all that it started: the worker's commands are of its session."""
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()

    def check_the_example(self, address):
        """The one of the documents, on the worker that is left."""
        example = ROOT / "docs" / "scan_on_dask.py"
        shown = subprocess.run(
            [sys.executable, example, address, self.archive, self.directory / "example"],
            check=True,
            env=ENVIRONMENT,
            stdout=subprocess.PIPE,
            text=True,
        ).stdout
        self.assertEqual(shown, "15 files, 15 chains: 10 knotted, 0 slipknots, 0 failed\n")

    def test_a_killed_worker_costs_no_byte(self):
        options = ["--piece", "2", "--slipknots"]
        alone = self.directory / "alone"
        subprocess.run(
            [KORVEX, "scan", self.archive, *options, "-o", alone],
            check=True,
            stdout=subprocess.DEVNULL,
        )
        address = str(self.directory / "scheduler.json")
        self.start(
            "distributed.cli.dask_scheduler", "--host", "127.0.0.1", "--port", "0",
            "--no-dashboard", "--scheduler-file", address,
        )  # fmt: skip
        worker = ["distributed.cli.dask_worker", "--scheduler-file", address, "--nthreads", "1"]
        workers = [self.start(*worker, "--no-nanny", "--no-dashboard") for _ in range(2)]
        wait_for("the scheduler", lambda: os.path.exists(address))
        shared = self.directory / "shared"
        with distributed.Client(scheduler_file=address, timeout=PATIENCE) as client:
            client.wait_for_workers(2, timeout=PATIENCE)
            summaries = []
            job = threading.Thread(
                target=lambda: summaries.append(
                    scan.on_dask(
                        client, [self.archive], shared, tasks=5, options=options, korvex=KORVEX
                    )
                )
            )
            job.start()
            wait_for("a part", lambda: list(shared.glob("parts/*/*.tsv")))
            self.end(workers[0])
            self.assertLess(len(list(shared.glob("parts/*/*.tsv"))), 8, "it was done already")
            job.join()
            self.assertEqual(len(client.scheduler_info()["workers"]), 1)
            self.check_the_example(address)
        self.assertEqual(summaries, ["15 files, 15 chains: 10 knotted, 0 slipknots, 0 failed"])
        self.assertEqual(
            (shared / "results.tsv").read_bytes(), (alone / "results.tsv").read_bytes()
        )


if __name__ == "__main__":
    unittest.main()

#!/usr/bin/python3
"""An array of tasks of a real Slurm, one of them cancelled and requeued, makes the bytes of one scan.

usage: slurm_test.py KORVEX

Starts slurmctld and one slurmd of its own, without systemd. Skipped where they are missing.
"""
import os
import pathlib
import shutil
import socket
import subprocess
import sys
import time
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "support"))
from model_archive import ModelArchiveCase  # noqa: E402

KORVEX = os.path.abspath(sys.argv.pop(1))
ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PATIENCE = 120  # seconds until a daemon or a task that does not come is given up

CONFIGURATION = """\
ClusterName=korvex
SlurmctldHost={host}(127.0.0.1)
SlurmctldPort={controller_port}
SlurmdPort={node_port}
SlurmUser={user}
SlurmdUser={user}
AuthType=auth/none
AuthInfo=cred_expire=5
CredType=cred/none
ProctrackType=proctrack/pgid
TaskPlugin=task/none
SwitchType=switch/none
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
SchedulerParameters=sched_interval=1,batch_sched_delay=0
MpiDefault=none
ReturnToService=2
KillWait=5
StateSaveLocation={directory}/state
SlurmdSpoolDir={directory}/spool
SlurmctldPidFile={directory}/slurmctld.pid
SlurmdPidFile={directory}/slurmd.pid
SlurmctldLogFile={directory}/slurmctld.log
SlurmdLogFile={directory}/slurmd.log
NodeName={host} NodeAddr=127.0.0.1 CPUs={processors} State=UNKNOWN
PartitionName=all Nodes={host} Default=YES MaxTime=INFINITE State=UP
"""


def free_port():
    with socket.socket() as taken:
        taken.bind(("127.0.0.1", 0))
        return taken.getsockname()[1]


class Slurm:
    """slurmctld and slurmd of a directory, until the block ends."""

    def __init__(self, directory):
        self.directory = directory
        self.environment = {
            **os.environ,
            "SLURM_CONF": str(directory / "slurm.conf"),
            "PATH": f"{os.path.dirname(KORVEX)}:{os.environ['PATH']}:/usr/sbin",
        }
        self.daemons = []

    def __enter__(self):
        for name in "state", "spool":
            (self.directory / name).mkdir()
        (self.directory / "slurm.conf").write_text(
            CONFIGURATION.format(
                host=socket.gethostname().partition(".")[0],
                user=subprocess.check_output(["id", "-un"], text=True).strip(),
                controller_port=free_port(),
                node_port=free_port(),
                processors=os.cpu_count(),
                directory=self.directory,
            )
        )
        for daemon in ["slurmctld", "-D"], ["slurmd", "-D"]:
            with open(self.directory / f"{daemon[0]}.out", "wb") as output:
                self.daemons.append(
                    subprocess.Popen(
                        daemon, env=self.environment, stdout=output, stderr=output, cwd=self.directory
                    )
                )
        self.wait_for("a node", lambda: "idle" in self.run("sinfo", "-h", "-o", "%t", check=False))
        return self

    def __exit__(self, *_):
        self.run("scancel", "--user", str(os.getuid()), check=False)
        for daemon in reversed(self.daemons):
            daemon.terminate()
        for daemon in self.daemons:
            daemon.wait()

    def run(self, *command, check=True):
        done = subprocess.run(
            command, env=self.environment, capture_output=True, text=True, check=False
        )
        if check and done.returncode != 0:
            raise AssertionError(f"{command}: {done.stderr}\n{self.logs()}")
        return done.stdout

    def logs(self):
        logs = sorted(self.directory.glob("slurm*.log")) + sorted(self.directory.glob("*.out"))
        return "\n".join(f"== {log.name}\n{log.read_text(errors='replace')[-3000:]}" for log in logs)

    def wait_for(self, what, condition):
        end = time.monotonic() + PATIENCE
        while not condition():
            for daemon in self.daemons:
                if daemon.poll() is not None:
                    raise AssertionError(f"{daemon.args} ended\n{self.logs()}")
            if time.monotonic() > end:
                raise AssertionError(f"{what} did not come\n{self.logs()}")
            time.sleep(0.1)

    def states(self, job):
        """{task: state} of an array that Slurm still knows."""
        lines = self.run("squeue", "-h", "-r", "-j", job, "-t", "all", "-o", "%K %T").split("\n")
        return dict(line.split() for line in lines if line)


class ScanOnSlurm(ModelArchiveCase):
    COPIES = 6
    MEMBERS = ("1ubq.pdb", "2efv_CA.pdb", "1xd3_A_bound.pdb")
    TASKS = 3

    def setUp(self):
        super().setUp()
        self.work = [str(self.archive), "--piece", "2", "--slipknots"]

    def parts(self):
        return list((self.directory / "shared" / "parts").glob("*/*.tsv"))

    def test_a_cancelled_task_is_requeued_and_the_bytes_are_the_same(self):
        alone = self.directory / "alone"
        subprocess.run(
            [KORVEX, "scan", *self.work, "-o", alone], check=True, stdout=subprocess.DEVNULL
        )
        shared = self.directory / "shared"
        slurm_directory = self.directory / "slurm"
        slurm_directory.mkdir()
        with Slurm(slurm_directory) as slurm:
            submitted = slurm.run(
                "sbatch", "--parsable", f"--array=1-{self.TASKS}", "--mem-per-cpu=0", "--chdir",
                str(slurm_directory), str(ROOT / "docs" / "scan.sbatch"), *self.work, "-o",
                str(shared),
            )  # fmt: skip
            job = submitted.strip()
            slurm.wait_for("a part", self.parts)
            running = [task for task, state in slurm.states(job).items() if state == "RUNNING"]
            self.assertTrue(running, "all tasks are done before one could be disturbed")
            before = len(self.parts())
            slurm.run("scontrol", "requeue", f"{job}_{running[0]}")
            done = {"COMPLETED", "FAILED", "CANCELLED", "TIMEOUT", "NODE_FAIL"}
            # A task that is requeued waits until its credential has expired.
            slurm.wait_for("the end", lambda: set(slurm.states(job).values()) <= done)
            self.assertEqual(set(slurm.states(job).values()) - {"COMPLETED"}, set(), slurm.logs())
            requeued = slurm.run("scontrol", "show", "job", f"{job}_{running[0]}")
            self.assertIn("Restarts=1", requeued)
        self.assertLess(before, 9)
        subprocess.run([KORVEX, "merge", shared], check=True, stdout=subprocess.DEVNULL)
        self.assertEqual(
            (shared / "results.tsv").read_bytes(), (alone / "results.tsv").read_bytes()
        )


if __name__ == "__main__":
    if not shutil.which("slurmctld", path=os.environ["PATH"] + ":/usr/sbin"):
        print("slurmctld is not there: skipped")
        sys.exit(77)
    unittest.main()

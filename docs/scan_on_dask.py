"""usage: scan_on_dask.py SCHEDULER-FILE SOURCE DIRECTORY"""
import sys

from dask.distributed import Client

from korvex import scan

scheduler, source, directory = sys.argv[1:]
print(scan.on_dask(Client(scheduler_file=scheduler), [source], directory, tasks=10))

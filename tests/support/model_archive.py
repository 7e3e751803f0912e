"""A tar archive of shipped proteins, for tests of scans."""
import pathlib
import tarfile
import tempfile
import unittest

PROTEINS = pathlib.Path(__file__).resolve().parents[2] / "data" / "proteins"


class ModelArchiveCase(unittest.TestCase):
    """Has a directory of its own with `archive` in it: COPIES of each of MEMBERS."""

    COPIES = 1
    MEMBERS = ("1ubq.pdb",)

    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.directory = pathlib.Path(holder.name)
        self.archive = self.directory / "models.tar"
        with tarfile.open(self.archive, "w") as archive:
            for copy in range(self.COPIES):
                for name in self.MEMBERS:
                    archive.add(PROTEINS / name, f"{copy}/{name}")

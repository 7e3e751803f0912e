#!/usr/bin/python3
"""Runs the scripts that `korvex locate --format pymol` writes in PyMOL itself.

usage: scripts_test.py KORVEX DATA

Needs Debian's package pymol; without it the exit status is 77, which means skipped.
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

PYMOL = shutil.which("pymol", path="/usr/bin")
if PYMOL is None:
    print("skipped: Debian's package pymol is not installed", file=sys.stderr)
    sys.exit(77)

KORVEX, DATA = sys.argv[1:3]
del sys.argv[1:]


class Scripts(unittest.TestCase):
    def setUp(self):
        holder = tempfile.TemporaryDirectory()
        self.addCleanup(holder.cleanup)
        self.here = pathlib.Path(holder.name)

    def korvex(self, *arguments):
        return subprocess.run(
            [KORVEX, "locate", *arguments, "--format", "pymol", "--directions", "20"],
            cwd=self.here, capture_output=True, text=True)

    def copied(self, protein, name):
        (self.here / name).parent.mkdir(exist_ok=True)
        (self.here / name).write_bytes((pathlib.Path(DATA) / protein).read_bytes())
        return name

    def selections(self, *scripts):
        """{selection: [(object, chain, resi), ...] of its CA atoms} once PyMOL ran the scripts."""
        ask = (
            "from pymol import cmd\n"
            f"for script in {[str(self.here / s) for s in scripts]!r}: cmd.do('@' + script)\n"
            "for name in cmd.get_names('selections'):\n"
            "  atoms = []\n"
            "  cmd.iterate(name + ' and name CA', 'atoms.append((model, chain, resi))',"
            " space={'atoms': atoms})\n"
            "  print('SELECTION', repr((name, atoms)))\n"
        )
        (self.here / "ask.py").write_text(ask)
        run = subprocess.run([PYMOL, "-cq", "ask.py"], cwd=self.here, capture_output=True,
                             text=True, env={"PATH": "/usr/bin:/bin", "HOME": str(self.here)})
        self.assertEqual(run.returncode, 0, run.stderr)
        self.assertNotIn("Error", run.stdout)
        lines = [l[len("SELECTION "):] for l in run.stdout.splitlines()
                 if l.startswith("SELECTION ")]
        return dict(eval(line, {"__builtins__": {}}) for line in lines)

    def test_the_core_is_selected_in_its_own_chain(self):
        run = self.korvex(self.copied("4yvi.cif", "4yvi.cif"), "--chain", "B")
        self.assertEqual(run.returncode, 0, run.stderr)
        (self.here / "s.pml").write_text(run.stdout)
        (atoms,) = self.selections("s.pml").values()
        self.assertEqual({(model, chain) for model, chain, _ in atoms}, {("4yvi", "B")})
        self.assertIn("100", [resi for _, _, resi in atoms])

    def test_negative_residue_numbers_are_the_ends_of_a_stretch(self):
        lines = [l for l in (pathlib.Path(DATA) / "2efv_CA.pdb").read_text().splitlines()
                 if l.startswith("ATOM")]
        shifted = [f"{l[:22]}{int(l[22:26]) - 20:4d}{l[26:]}" for l in lines]
        (self.here / "negative.pdb").write_text("\n".join(shifted) + "\n")
        run = self.korvex("negative.pdb")
        self.assertIn("resi \\-", run.stdout)
        (self.here / "s.pml").write_text(run.stdout)
        (atoms,) = self.selections("s.pml").values()
        numbers = [int(resi) for _, _, resi in atoms]
        first, last = run.stdout.split("resi \\-")[1].split("\n")[0].split("-")
        self.assertEqual(numbers, list(range(-int(first), int(last) + 1)))

    def test_two_scripts_in_one_session_select_each_in_its_own_object(self):
        for directory in ("one", "two"):
            name = self.copied("2efv_CA.pdb", f"{directory}/model.pdb")
            (self.here / f"{directory}.pml").write_text(self.korvex(name).stdout)
        found = self.selections("one.pml", "two.pml")
        self.assertEqual(len(found), 2)
        self.assertEqual(sorted({model for atoms in found.values() for model, _, _ in atoms}),
                         ["one_model", "two_model"])
        for atoms in found.values():
            self.assertEqual(len({model for model, _, _ in atoms}), 1)

    def test_a_file_name_runs_nothing(self):
        name = "x; quit; y, #z.pdb"
        self.copied("2efv_CA.pdb", name)
        (self.here / "s.pml").write_text(self.korvex(name).stdout)
        (atoms,) = self.selections("s.pml").values()
        self.assertGreater(len(atoms), 50)

    def test_a_chain_name_runs_nothing(self):
        hostile = "'A; /open(\"ran\",\"w\").write(\"x\")#'"
        small = ["data_x", "loop_"] + [
            f"_atom_site.{tag}" for tag in
            ("group_PDB", "id", "type_symbol", "label_atom_id", "label_comp_id", "label_asym_id",
             "label_seq_id", "Cartn_x", "Cartn_y", "Cartn_z", "auth_asym_id", "auth_seq_id")]
        for k, line in enumerate(
                l for l in (pathlib.Path(DATA) / "2efv_CA.pdb").read_text().splitlines()
                if l.startswith("ATOM")):
            x, y, z = line[30:38], line[38:46], line[46:54]
            small.append(f"ATOM {k + 1} C CA GLY A {k + 1} {x} {y} {z} {hostile} {k + 1}")
        (self.here / "h.cif").write_text("\n".join(small) + "\n")
        run = self.korvex("h.cif")
        self.assertEqual(run.returncode, 1)
        self.assertIn("chain name", run.stderr)
        self.assertNotIn("open", run.stdout)


if __name__ == "__main__":
    unittest.main()

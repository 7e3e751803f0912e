#!/usr/bin/python3
"""Writes a tar archive of predicted models as archives of such models have them, for measuring scans.

usage: make_models.py COUNT OUT.tar [--plain]

Each model is a chain of a shipped protein, all atoms, in mmCIF with the items of the usual
predicted-model archives, compressed by gzip unless --plain. Chains come in turn, every copy turned
another way and each atom shifted by 0.1 Å at random, so that no two are the same. Their lengths
are 189 residues on average. The same arguments write the same bytes.
"""
import gzip
import io
import math
import pathlib
import random
import sys
import tarfile

PROTEINS = pathlib.Path(__file__).resolve().parent.parent / "data" / "proteins"
CHAINS = [
    ("4hhb.pdb", "A"), ("4hhb.pdb", "B"), ("1ca2.pdb", "A"), ("1tim.pdb.gz", "A"), ("1ubq.pdb", "A"),
    ("1xd3_A_bound.pdb", "A"), ("1ztu.pdb", "A"), ("1crn.pdb", "A"), ("1tim.pdb.gz", "B"),
]  # fmt: skip
HEAD = """data_{name}
#
_entry.id {name}
#
loop_
_ma_qa_metric.id
_ma_qa_metric.mode
_ma_qa_metric.name
_ma_qa_metric.software_group_id
_ma_qa_metric.type
1 global pLDDT 1 pLDDT
2 local  pLDDT 1 pLDDT
#
loop_
_atom_site.group_PDB
_atom_site.id
_atom_site.type_symbol
_atom_site.label_atom_id
_atom_site.label_alt_id
_atom_site.label_comp_id
_atom_site.label_asym_id
_atom_site.label_entity_id
_atom_site.label_seq_id
_atom_site.pdbx_PDB_ins_code
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
_atom_site.occupancy
_atom_site.B_iso_or_equiv
_atom_site.pdbx_formal_charge
_atom_site.auth_seq_id
_atom_site.auth_comp_id
_atom_site.auth_asym_id
_atom_site.auth_atom_id
_atom_site.pdbx_PDB_model_num
"""


def atoms_of(file, chain):
    """(atom name, residue name, number from 1, x, y, z) of one chain."""
    path = PROTEINS / file
    text = gzip.decompress(path.read_bytes()) if file.endswith(".gz") else path.read_bytes()
    atoms, numbers = [], {}
    for line in text.decode("ascii", "replace").splitlines():
        if line.startswith("TER") and atoms:
            break
        if not line.startswith(("ATOM", "HETATM")) or line[21] != chain or line[16] not in " A":
            continue
        residue = line[17:20].strip()
        if line.startswith("HETATM") and residue != "MSE":
            continue
        number = numbers.setdefault(line[22:27], len(numbers) + 1)
        place = [float(line[start : start + 8]) for start in (30, 38, 46)]
        atoms.append((line[12:16].strip(), residue, number, *place))
    return atoms


def rotation(generator):
    """A random one, from a unit quaternion."""
    w, x, y, z = (generator.gauss(0, 1) for _ in range(4))
    size = math.sqrt(w * w + x * x + y * y + z * z)
    w, x, y, z = w / size, x / size, y / size, z / size
    return (
        (1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y)),
        (2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x)),
        (2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)),
    )


def model(name, atoms, generator):
    turn = rotation(generator)
    lines = [HEAD.format(name=name)]
    for serial, (atom, residue, number, *place) in enumerate(atoms, 1):
        x, y, z = (
            sum(a * b for a, b in zip(row, place)) + generator.gauss(0, 0.1) for row in turn
        )
        lines.append(
            f"ATOM {serial} {atom[0]} {atom} . {residue} A 1 {number} ? {x:.3f} {y:.3f} {z:.3f} "
            f"1.0 {90 + 8 * math.sin(number):.2f} ? {number} {residue} A {atom} 1\n"
        )
    return "".join(lines).encode() + b"#\n"


def main(count, output, plain):
    chains = [atoms_of(*chain) for chain in CHAINS]
    generator = random.Random(1)
    with tarfile.open(output, "w") as archive:
        for k in range(count):
            name = f"model_{k:06}"
            content = model(name, chains[k % len(chains)], generator)
            if not plain:
                content = gzip.compress(content, mtime=0)
            entry = tarfile.TarInfo(f"{name}.cif" + ("" if plain else ".gz"))
            entry.size = len(content)
            archive.addfile(entry, io.BytesIO(content))


if __name__ == "__main__":
    if len(sys.argv) < 3:
        sys.exit(__doc__)
    main(int(sys.argv[1]), sys.argv[2], "--plain" in sys.argv[3:])

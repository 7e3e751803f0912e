"""The exported interface of the C++ library (``korvex.h``, ``preprocess.h``) under its own names.

It answers as it always did, to the letter: knot types up to mirror image by the Alexander polynomial, random
numbers from the C library (`srand`), truncated percentages. The headers of the library tell what each function
does. Chains are arrays of `ChainAtom`: records of the coordinates ``x``, ``y``, ``z`` and the atom's number
``id``. Edges are rows of six numbers, as `ProjectChain` gives them, crossings records of `Crossing`, polynomials
lists of coefficients, the lowest power first. Where a C++ function changes its arguments, the function here gives what it makes of them back. All
hold the interpreter's lock: the interface is for one thread at a time.

Examples
--------
>>> from korvex import classic
>>> chain, error = classic.ChainRead("data/proteins/2efv_CA.pdb")
>>> error, len(chain), int(chain["id"][0]), classic.CheckDistancesBetweenAtoms(chain)
(False, 82, 6, 'OK')
>>> classic.srand(1)
>>> counts = classic.FindMajorKnot(chain, closureType=2, trials=20)
>>> classic.GiveTheNameOfKnot(counts).split("(")[0]
'3_1'
>>> classic.WhichKnot([1, -3, 1])
'4_1'
"""
from __future__ import annotations

from typing import Any, List, Optional, Tuple

import numpy as np
from numpy.typing import NDArray

from . import _korvex
from ._chain import Chain
from ._positions import positions_of

_classic = _korvex.classic

ChainAtom: "np.dtype[Any]" = _classic.ChainAtom
Crossing: "np.dtype[Any]" = _classic.Crossing
CalculatePoly = _classic.CalculatePoly
CalculatesPoly = _classic.CalculatesPoly
ChainRead = _classic.ChainRead
ChainReduce = _classic.ChainReduce
CheckDistancesBetweenAtoms = _classic.CheckDistancesBetweenAtoms
CloseChain_1direction = _classic.CloseChain_1direction
CloseChain_1point = _classic.CloseChain_1point
CloseChain_2points = _classic.CloseChain_2points
CloseChain_OUT = _classic.CloseChain_OUT
CompareEq = _classic.CompareEq
CreateFoxMatrix = _classic.CreateFoxMatrix
CreateFoxMatrix_double = _classic.CreateFoxMatrix_double
EqualPolies = _classic.EqualPolies
FindAllCrossings = _classic.FindAllCrossings
FindAllKnots_string = _classic.FindAllKnots_string
FindKnotFingerprint = _classic.FindKnotFingerprint
FindKnotFingerprint_string = _classic.FindKnotFingerprint_string
FindKnots = _classic.FindKnots
FindMajorKnot = _classic.FindMajorKnot
FindOneKnot = _classic.FindOneKnot
FindTheKnot = _classic.FindTheKnot
FindTheKnotInParticularDirection = _classic.FindTheKnotInParticularDirection
FindTheKnotInParticularDirection_True = _classic.FindTheKnotInParticularDirection_True
FindTheKnotInParticularDirection_poly = _classic.FindTheKnotInParticularDirection_poly
FindTheKnotInParticularDirection_poly_string = _classic.FindTheKnotInParticularDirection_poly_string
FindTheKnot_poly = _classic.FindTheKnot_poly
FindTheKnot_poly_string = _classic.FindTheKnot_poly_string
FirstEdgeOver = _classic.FirstEdgeOver
GivePolyByValM3 = _classic.GivePolyByValM3
GiveTheNameOfKnot = _classic.GiveTheNameOfKnot
GiveTheNameOfKnotOne = _classic.GiveTheNameOfKnotOne
GiveTheNameOfKnot_Matrix = _classic.GiveTheNameOfKnot_Matrix
GiveTheNameOfKnot_allProj = _classic.GiveTheNameOfKnot_allProj
GiveTheNameOfKnot_toMatrix = _classic.GiveTheNameOfKnot_toMatrix
GiveThePolies_toDict = _classic.GiveThePolies_toDict
GiveTheStrenghtOfKnot = _classic.GiveTheStrenghtOfKnot
GiveTheStrenghtOfKnot_poly = _classic.GiveTheStrenghtOfKnot_poly
MainFindKnots = _classic.MainFindKnots
NonZeroPoly = _classic.NonZeroPoly
NormalizePoly = _classic.NormalizePoly
Normalize_det_double = _classic.Normalize_det_double
ProjectChain = _classic.ProjectChain
TwoEdgesCrossed = _classic.TwoEdgesCrossed
TypeOfCrossing = _classic.TypeOfCrossing
WhichKnot = _classic.WhichKnot
WhichKnotDouble_OrdNr = _classic.WhichKnotDouble_OrdNr
WhichKnot_OrdNr = _classic.WhichKnot_OrdNr
det_poly = _classic.det_poly
intersection = _classic.intersection
removeTrailingZeros = _classic.removeTrailingZeros
srand = _classic.srand

#: Name, Alexander polynomial and value at -3 of each of the 42 knot ordinals.
knotsArray: List[Tuple[str, List[int], int]] = _classic.knotsArray()


def atoms_of(positions: Any, numbers: Optional[NDArray[np.int32]] = None) -> NDArray[Any]:
    """Records of `ChainAtom` for positions.

    Parameters
    ----------
    positions : array_like, (n, 3), Chain or AtomGroup
    numbers : array_like of int, (n,), optional
        The atoms' numbers; by default those of the chain, or counted from 1.

    Returns
    -------
    ndarray of ChainAtom, (n,)

    Examples
    --------
    >>> from korvex import classic
    >>> classic.atoms_of([[0.0, 0.0, 0.0], [3.8, 0.0, 0.0]])["id"].tolist()
    [1, 2]
    """
    array = positions_of(positions)
    if numbers is None and isinstance(positions, Chain):
        numbers = positions.numbers
    atoms = np.empty(len(array), dtype=ChainAtom)
    for axis, name in enumerate("xyz"):
        atoms[name] = array[:, axis]
    atoms["id"] = np.arange(1, len(array) + 1) if numbers is None else numbers
    return atoms

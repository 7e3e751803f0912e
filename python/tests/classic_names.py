"""The functions and records of the exported interface that `korvex.classic` leaves out, and why."""
from __future__ import annotations

from typing import Dict

_PRINTS = "prints: here are values, which print as they are"
_ORDER = "an order of records: sorted() has a key"
_STEP = "a step of FindAllKnots on its pool of points and jobs, which means nothing outside of it"
_TUPLE = "a tuple or a row of an array"

LEFT_OUT: Dict[str, str] = {
    "ChainReduceANY": _STEP,
    "CopyJobToChainAtom": _STEP,
    "CrossingShort": "the crossings on an edge, kept where FindAllCrossings runs",
    "Determinant": "numpy.linalg.det",
    "Edge": _TUPLE,
    "FillCrossings": "FindAllCrossings numbers the arcs too",
    "FillFulerenData": "ProjectChain works without",
    "FillKnotsArray": "called when korvex.classic is imported",
    "FindAllKnots": "writes into a stream: FindKnotFingerprint opens the file itself",
    "FindTheKnot_poly_polynomial": "FindTheKnot_poly: polynomials are coefficients here",
    "Job": _STEP,
    "Knocik": _STEP,
    "KnotRecord": _TUPLE,
    "MakeRowFromJob": _STEP,
    "PrepareAllInfixes": _STEP,
    "PrepareAllInfixesFuleren": _STEP,
    "PrepareJobsAroundNet": _STEP,
    "PrepareJobsFromNet": _STEP,
    "PrintChain_ToMathematica": _PRINTS,
    "PrintsPoly": _PRINTS,
    "RowFile": _STEP,
    "ScalarProduct": "numpy.dot",
    "ShowMatrix": _PRINTS,
    "ShowMatrix_double": _PRINTS,
    "ShowPoly": _PRINTS,
    "WayToSortCrossings": _ORDER,
    "WayToSortKnociki": _ORDER,
    "WayToSortPolies": _ORDER,
    "WayToSortRowsToFile": _ORDER,
    "det_double": "never ends for a small determinant, which nothing could interrupt: numpy.linalg.det",
    "fPointR3": _TUPLE,
    "main2": "answers 0",
}

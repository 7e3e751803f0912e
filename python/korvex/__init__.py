"""Which knot does a three-dimensional chain form, and where along it?

>>> import korvex
>>> chain = next(korvex.read("data/proteins/2efv_CA.pdb"))
>>> korvex.knot(chain)
<Knot -3_1 77.41 %, 0_1 22.57 %, -5_2 0.01526 % (rays, exact)>
>>> korvex.locate(chain)
<Location -3_1, share 0.77: -3_1 at 10-82>

Positions have the shape (n, 3), any type of real numbers and any layout. Indices are 0-based, ranges half
open. Computations run without the interpreter's lock, on as many threads as the machine has unless
``threads=`` says otherwise; Ctrl-C ends them.

The submodules are imported when they are asked for: `korvex.mda` analyses trajectories of MDAnalysis,
`korvex.plot` draws with matplotlib, `korvex.scan` scans archives on a Dask cluster, `korvex.classic` is the
exported interface of the C++ library.
"""
from ._catalogue import KnotType, catalogue, knot_type, knot_types
from ._chain import Chain, ChainSummary, Gap, Residue, read
from ._closure_map import ClosureMap, closure_map
from ._diagram import (
    Identity,
    alexander,
    alexander_key,
    homfly,
    identify,
    jones,
    parabolic_colourings,
    signature,
)
from ._errors import BadInput, Cancelled, CannotRead, Error, InvalidArgument
from ._fingerprint import Fingerprint, fingerprint
from ._knot import Knot, Knots, TypeShare, knot, knots
from ._korvex import (
    Diagram,
    IdentityCache,
    KnotName,
    __version__,
    colour_of_type,
    identity_cache,
    sampled_ends,
    wilson_interval,
)
from ._locate import Dip, KnotPlace, Location, Stretch, Threading, locate
from ._ring import DiagramSize, RingReport, examine_ring

__all__ = [
    "BadInput",
    "Cancelled",
    "CannotRead",
    "Chain",
    "ChainSummary",
    "ClosureMap",
    "Diagram",
    "DiagramSize",
    "Dip",
    "Error",
    "Fingerprint",
    "Gap",
    "Identity",
    "IdentityCache",
    "InvalidArgument",
    "Knot",
    "KnotName",
    "KnotPlace",
    "KnotType",
    "Knots",
    "Location",
    "Residue",
    "RingReport",
    "Stretch",
    "Threading",
    "TypeShare",
    "__version__",
    "alexander",
    "alexander_key",
    "catalogue",
    "closure_map",
    "colour_of_type",
    "examine_ring",
    "fingerprint",
    "homfly",
    "identify",
    "identity_cache",
    "jones",
    "knot",
    "knot_type",
    "knot_types",
    "knots",
    "locate",
    "parabolic_colourings",
    "read",
    "sampled_ends",
    "signature",
    "wilson_interval",
]

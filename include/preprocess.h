// libpreprocess: reading, checking, closing, projecting and reducing chains.
//
// A chain is an ordered list of atoms in space, open unless it is said to be closed; a closed chain
// does not repeat its first atom at its end. Coordinates are in the unit of the input (ångström for
// PDB and mmCIF); nothing here depends on the unit. Heights grow towards the viewer.
//
// Thread contract: the closures draw from the C library's `rand()`, which is shared by the process;
// call them from one thread at a time. Every other function is safe from any number of threads.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "korvex/export.hpp"

// What libpreprocess shows.
#define PREPROCESS_API KORVEX_API

// One vertex of a chain.
struct ChainAtom {
  double x;         // coordinate, unit of the input
  double y;         // coordinate, unit of the input
  double z;         // coordinate, unit of the input
  std::int32_t id;  // atom (residue) number from the chain file; 0 for atoms made by the library
};

// One crossing as met on an edge.
struct CrossingShort {
  std::int16_t crossingIndex;  // place in the projection's crossing list, 0-based
  double position;             // 1 at the edge's first endpoint, 0 at its second
};

// One segment of a projected chain.
struct Edge {
  double x1;                             // first endpoint in the projection plane
  double y1;                             // first endpoint in the projection plane
  double z1;                             // height of the first endpoint along the direction
  double x2;                             // second endpoint in the projection plane
  double y2;                             // second endpoint in the projection plane
  double z2;                             // height of the second endpoint along the direction
  std::vector<CrossingShort> crossings;  // the crossings on this edge
  std::int32_t tag;                      // free for the maker of the edge; carried unread
};

// Reads one chain from the file at `path`. Formats, told by content, each also gzipped: PDB, mmCIF,
// GRO; XYZ (`count`, comment, `El x y z`); LAMMPS text dumps; plain text with one atom a line,
// `id x y z` or `x y z` (numbered from 1), `#` comments and blank lines allowed.
// From PDB, mmCIF and GRO: the first model, its first polymer chain that has a CA trace (a P trace
// for nucleic acids), one atom a residue, of the alternative location with the highest occupancy
// (the first among equals); modified residues are kept, ligands and waters are not; `id` is the
// residue number. From XYZ and LAMMPS dumps: the first frame, and its first molecule.
// Result: the atoms in chain order. `error` is set to false for a chain read, and to true with an
// empty result for an unreadable, truncated, empty or malformed file, a directory, or a coordinate
// that is not finite. Never throws. korvex/read.hpp tells what was wrong, and reads the other
// chains.
PREPROCESS_API std::vector<ChainAtom> ChainRead(char* path, bool& error);

// Checks the distances between consecutive atoms against the chain's median distance m: a distance
// of zero, below m / 2, or beyond 1.5 m (a gap) offends.
// Result: "OK", or one line that names the first offending pair (both ids and the distance) and how
// many pairs offend. Chains of fewer than 2 atoms are "OK".
PREPROCESS_API std::string CheckDistancesBetweenAtoms(std::vector<ChainAtom> chain);

// Prepares the table of projection directions. ProjectChain works whether or not it was called.
PREPROCESS_API void FillFulerenData();

// Projects a chain orthogonally onto the plane through the origin normal to a direction.
// `direction` numbers the 60 vertices of a truncated icosahedron, turned by one fixed generic
// rotation so that no two steps of a cubic lattice fall on one line; 0 to 29 hold no antipodal
// pair, 30 + k is opposite to k. Other numbers, negative ones included, wrap modulo 60. Result: the
// edges in chain order, each beginning where the one before it ends, bit for bit; with `closed` the
// edge from the last atom to the first comes last. (x, y, height) is right-handed, so that the
// projection seen from the side to which heights grow is not mirrored. The lists of crossings are
// empty and the tags 0. A chain of fewer than 2 atoms has no edges. O(n).
PREPROCESS_API std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int direction,
                                              bool closed);

// The closures. Each joins the ends of an open chain in place: new atoms, with `id` 0, are appended
// after its last atom and lead from there to the first, so that the ring's closing edge runs from
// the last new atom to the first atom. The old atoms keep their places and bits.
// Centre: the centroid of the chain's atoms; radius: the greatest distance of an atom from it.
// Result:
//    0  the chain is closed. Chains with nothing to close come back unchanged: fewer than 2 atoms,
//       or both ends in one place.
//   -1  this attempt failed, by an accident of chance such as a point in line with both ends; the
//       chain is unchanged and may be tried again. The next attempt draws new points.
//   -2  no attempt can succeed and the chain is unchanged: a coordinate is not finite, the factor
//       is not a finite number of at least 1.001, the sphere leaves the range of double, or the
//       radius is below 1e-13 of the centre's largest coordinate, too small to be resolved there.
// Randomness comes from `rand()` alone, two draws a random point. O(n).

// Carries both ends straight outwards from the centre to the sphere of `factor` times the radius
// and joins them along the sphere by their great-circle arc, in chords that stay outside the sphere
// of (factor + 1) / 2 times the radius. Draws nothing and never answers -1: an end at the centre
// goes out in a fixed direction, opposite ends are joined by a fixed one of the great circles, and
// of two ends on one ray from the centre the last goes out at an angle of 0.01 to it.
PREPROCESS_API int CloseChain_OUT(std::vector<ChainAtom>& chain, double factor);

// Joins each end to its own uniformly random point of the sphere of `factor` times the radius, the
// last atom's point drawn first, and the two points by their great-circle arc, in chords as above.
PREPROCESS_API int CloseChain_2points(std::vector<ChainAtom>& chain, double factor);

// Joins both ends to one uniformly random point of the sphere of `factor` times the radius.
PREPROCESS_API int CloseChain_1point(std::vector<ChainAtom>& chain, double factor);

// Carries both ends in one uniformly random direction to the plane at a right angle to it that lies
// 1.25 times the radius from the centre, beyond the chain, and joins them there.
PREPROCESS_API int CloseChain_1direction(std::vector<ChainAtom>& chain);

// Reduces a chain in place by triangle elimination without changing its knot type: an atom is
// removed when no other edge meets the triangle that it spans with its two neighbours. Of the atoms
// that can go always the one goes next whose removal makes the shortest edge (of equals, the first
// by x, y and z), until none can, so that the result does not depend on where a ring begins or
// which way it runs unless it visits a place twice. The atoms left keep their order, coordinates
// and ids.
// Touching and coplanar edges count as obstacles, and so does every edge that rounding does not
// show to be clear: what is removed is certain for the coordinates as they are. Atoms that repeat a
// neighbour's place or lie on the line between their neighbours sweep nothing and always go; the
// tips of spikes (the chain turns back on its own line) go where no other edge touches them.
// `closed`: the edge from the last atom to the first belongs to the chain, and 3 atoms are left at
// least unless some coincide; an open chain keeps both ends. A chain with a coordinate that is not
// finite is left as it is.
// Result: the number of atoms left. Cost: about n log n for chains of short edges, n^3 at worst.
// Method: K. Koniaris and M. Muthukumar, Phys. Rev. Lett. 66, 2211 (1991).
PREPROCESS_API int ChainReduce(std::vector<ChainAtom>& chain, bool closed);

// True when |a - b| < eps; false when either is not a number.
PREPROCESS_API bool CompareEq(double a, double b, double eps);

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

#if defined(__GNUC__)
#define PREPROCESS_API __attribute__((visibility("default")))
#else
#define PREPROCESS_API
#endif

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

// Reads one chain from the file at `path`. Formats, told by content: PDB, mmCIF, each also gzipped;
// XYZ (`count`, comment, `El x y z`); plain text with one atom a line, `id x y z` or `x y z`
// (numbered from 1), `#` comments and blank lines allowed. From PDB and mmCIF: the first model, its
// first polymer chain that has a CA trace (a P trace for nucleic acids), one atom a residue, of the
// alternative location with the highest occupancy (the first among equals); modified residues are
// kept, ligands and waters are not; `id` is the residue number.
// Result: the atoms in chain order. `error` is set to false for a chain read, and to true with an
// empty result for an unreadable, truncated, empty or malformed file, a directory, or a coordinate
// that is not finite. Never throws.
PREPROCESS_API std::vector<ChainAtom> ChainRead(char* path, bool& error);

// Checks the distances between consecutive atoms against the chain's median distance m: a distance
// of zero, below m / 2, or beyond 1.5 m (a gap) offends.
// Result: "OK", or one line that names the first offending pair (both ids and the distance) and how
// many pairs offend. Chains of fewer than 2 atoms are "OK".
PREPROCESS_API std::string CheckDistancesBetweenAtoms(std::vector<ChainAtom> chain);

// Prepares the table of projection directions. ProjectChain works whether or not it was called.
PREPROCESS_API void FillFulerenData();

// Projects a chain orthogonally onto the plane normal to a direction.
// `direction` numbers the 60 vertices of a truncated icosahedron, turned by one fixed generic
// rotation so that no lattice chain projects degenerately; 0 to 29 hold no antipodal pair, 30 to 59
// are their antipodes. Other numbers, negative ones included, wrap modulo 60.
// Result: the edges in chain order, each beginning where the one before it ends; with `closed` the
// edge from the last atom to the first comes last. (x, y, height) is right-handed, so that the
// projection seen from the side to which heights grow is not mirrored.
PREPROCESS_API std::vector<Edge> ProjectChain(const std::vector<ChainAtom>& chain, int direction,
                                              bool closed);

// The closures. Each joins the ends of an open chain in place by atoms appended or prepended to it,
// with `id` 0. Centre: the centroid of the chain's atoms; radius: the greatest distance of an atom
// from it. Result: 0, or -1 where the attempt failed and the chain is unchanged (a randomised
// closure may be tried again).

// Carries both ends outwards from the centre to the sphere of `factor` times the radius and joins
// them along the sphere.
PREPROCESS_API int CloseChain_OUT(std::vector<ChainAtom>& chain, double factor);

// Joins each end to its own uniformly random point of the sphere of `factor` times the radius, and
// the two points by their great-circle arc, in chords that stay outside the chain's radius.
PREPROCESS_API int CloseChain_2points(std::vector<ChainAtom>& chain, double factor);

// Joins both ends to one uniformly random point of the sphere of `factor` times the radius.
PREPROCESS_API int CloseChain_1point(std::vector<ChainAtom>& chain, double factor);

// Carries both ends in one uniformly random direction beyond the chain and joins them there.
PREPROCESS_API int CloseChain_1direction(std::vector<ChainAtom>& chain);

// Reduces a chain in place by triangle elimination without changing its knot type: an atom is
// removed when no other edge meets the triangle that it spans with its two neighbours, contacts and
// coplanar edges counting as obstacles. Repeated until no atom can be removed. `closed`: the edge
// from the last atom to the first belongs to the chain; an open chain keeps both ends.
// Result: the number of atoms left.
// Method: K. Koniaris and M. Muthukumar, Phys. Rev. Lett. 66, 2211 (1991).
PREPROCESS_API int ChainReduce(std::vector<ChainAtom>& chain, bool closed);

// True when |a - b| < eps; false when either is not a number.
PREPROCESS_API bool CompareEq(double a, double b, double eps);

// Periodic boxes, upright and tilted.
#pragma once

#include <vector>

#include "korvex/geometry.hpp"

namespace korvex::read {

// The edges along which a box repeats, none to three of them; none where the input has no box.
struct Cell {
  std::vector<Point> edges;
};

// The cell of three lengths and the angles between them in degrees: alpha between the second and
// the third edge, beta between the first and the third. No cell where no such edges exist.
Cell cell_of(const Point& lengths, const Point& angles);

// All sums of whole multiples of a cell's edges.
class Lattice {
 public:
  // Edges that are zero, not finite, or combinations of others are left out.
  explicit Lattice(const Cell& cell);

  bool empty() const { return steps_.empty(); }
  // The length of the shortest vector other than zero; 0 of an empty lattice.
  double shortest() const;
  // The vector nearest to `place`. Method: steepest descent along the vectors that can bound the
  // cell of points nearest to zero; N. Sommer et al., SIAM J. Discrete Math. 23, 715 (2009).
  Point nearest(Point place) const;

 private:
  std::vector<Point> steps_;  // sums of edges of a reduced basis, each at most once, up to sign
};

// Moves what follows a broken bond by the lattice vector that makes the bond at most `longest`
// long. `may_break[i]` tells whether the bond from point i to the next may be broken by the box at
// all. Where two vectors could do so nothing is moved. Tells of each point whether its bond to the
// one before was mended; empty where none was. O(n).
std::vector<bool> mend_bonds(std::vector<Point>& points, const Lattice& lattice, double longest,
                             const std::vector<bool>& may_break);

}  // namespace korvex::read

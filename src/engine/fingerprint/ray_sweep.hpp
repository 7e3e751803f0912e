// Whether an end of a chain may be moved along a bond without its ray passing through anything.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "korvex/geometry.hpp"

namespace korvex {

// The last residue that a sub-chain has at one of its ends, and the next one along the whole chain.
struct Extension {
  std::size_t from;
  std::size_t to;
};

// Scratch memory for such questions about one chain, whose extent is at most 4: one object a
// thread. The points must outlive it.
class RaySweep {
 public:
  explicit RaySweep(std::span<const Point> chain) : chain_(chain), heights_(chain.size()) {}

  // True where the sub-chain of points `first` to `last`, one of which is extension.from, is
  // certain to be of one type with the longer one when both are closed by rays in the direction
  // `ray`, a unit vector: the strip over the new bond that the moved ray leaves behind meets
  // neither the sub-chain nor the other ray. O(last - first).
  bool is_free(const Point& ray, Extension extension, std::size_t first, std::size_t last);

 private:
  // The strip, and coordinates in its plane: along the bond as seen against the ray, and up the
  // ray.
  struct Strip {
    Point origin;
    Point normal;
    Point along;
    Point up;
    double width;
    double slope;  // of the bond
  };

  bool meets_bond(const Strip& strip, std::size_t bond) const;

  std::span<const Point> chain_;
  std::vector<double> heights_;  // of the points over the plane of the strip
};

}  // namespace korvex

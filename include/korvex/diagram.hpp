// korvex::Diagram: a diagram of one knot in the plane.
#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include "korvex/export.hpp"
#include "korvex/gauss_code.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

// A crossing of a planar diagram code: the labels of its four strands, counter-clockwise from the
// incoming under-strand. A diagram of n crossings labels its strands 1..2n along the curve.
using PdCrossing = std::array<int, 4>;

// A value. Const objects may be used from many threads.
class KORVEX_API Diagram {
 public:
  // The round circle.
  Diagram() = default;

  // The closed polygon through `points`, its last point joined to its first, seen from far away in
  // `direction` (of any length but 0). Where that view is degenerate the direction is turned by
  // about 1e-5 rad, and where the polygon touches itself its points are moved by about 1e-9 of its
  // extent: always in the same way. Throws Error(kInvalidArgument) for a coordinate that is not
  // finite or a direction of length 0. O(n log n + crossings) for chains that do not fill the
  // plane. Of `run` it asks only whether to stop: Error(kCancelled).
  static Diagram of_polygon(std::span<const Point> points, const Point& direction,
                            const Run& run = {});

  // The open chain through `points` whose two ends are led to infinity in `direction` and joined
  // there: its projection and an arc between the ends that passes over everything. Degenerate views
  // and errors as above.
  static Diagram of_open_chain(std::span<const Point> points, const Point& direction,
                               const Run& run = {});

  // A planar diagram code, as numbers or as text of the form [[1,5,2,4],[5,3,6,2],[3,1,4,6]] (any
  // separators do; the numbers are taken four by four). Throws Error(kBadInput) when it is not one
  // of a single curve.
  static Diagram of_pd(std::span<const PdCrossing> crossings);
  static Diagram of_pd(std::string_view text);

  // Text as gauss_code() writes it. Throws Error(kBadInput) when it is not the code of a curve that
  // can be drawn in the plane.
  static Diagram of_gauss_code(std::string_view text);

  const GaussCode& code() const { return code_; }
  std::size_t crossings() const { return code_.size() / 2; }
  // Positive crossings less negative ones.
  int writhe() const;

  // Passages along the curve: O over or U under, the number of the crossing in the order in which
  // they are met first, and the crossing's sign: O1+U2+O3+U1+O2+U3+ is a right-handed trefoil.
  // Empty for the circle.
  std::string gauss_code() const;
  // Strands are labelled from the first passage on. The circle has no crossing and so no code.
  std::vector<PdCrossing> pd() const;

  // The mirror image in the plane of the diagram: over and under exchanged.
  Diagram mirror() const;
  // The same curve run through backwards.
  Diagram reversed() const;
  // This diagram, then `other`: the connected sum of the two knots.
  Diagram connected_sum(const Diagram& other) const;

  // A diagram of the same knot with no more crossings: Reidemeister moves I and II, and stretches
  // that pass over everything (or under everything) laid along the way that meets the fewest
  // strands (which is moves III and II), until none of these takes a crossing away. The least
  // number of crossings is not promised. About O(n^2) for each move that succeeds. Of `run` it asks
  // only whether to stop, before each stretch: Error(kCancelled).
  Diagram simplified(const Run& run = {}) const;

  // The same passages in the same order: of_gauss_code(d.gauss_code()) == d for every diagram d.
  friend bool operator==(const Diagram&, const Diagram&) = default;

 private:
  friend class TrustedDiagram;
  explicit Diagram(GaussCode code) : code_(std::move(code)) {}

  GaussCode code_;
};

}  // namespace korvex

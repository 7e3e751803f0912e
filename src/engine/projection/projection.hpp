// A chain as a viewer sees it: its crossings and its Gauss codes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "engine/diagram/course.hpp"
#include "engine/projection/chain_code.hpp"
#include "geometry/box_tree.hpp"
#include "korvex/geometry.hpp"
#include "korvex/run.hpp"

namespace korvex {

// The projection of a chain. Every decision is taken in double precision with a bound on its
// error: where one is in doubt the view counts as degenerate and there is no code.
class Projection {
 public:
  // Finds all crossings of `chain` (finite points; repeated consecutive ones count once) seen from
  // far away in `direction` (a unit vector). A closed curve has a segment more, from the last point
  // to the first. O(n log n + pairs of segments whose bounding boxes meet) for n segments.
  // Throws Error(kCancelled) when it is to stop.
  Projection(std::span<const Point> chain, const Point& direction, Curve curve = Curve::kOpen,
             const Run& run = {});

  bool degenerate() const { return degenerate_; }

  // The code of the whole chain. The view must not be degenerate.
  ChainCode chain_code() const;
  GaussCode code() const { return chain_code().code; }

  // The code of the chain that ends at `vertex` and goes on straight in direction `onward` until it
  // has left everything behind; that strand counts as segment `vertex`. Nothing when it is seen
  // degenerately, as it is when `onward` is the viewer's direction or its opposite.
  std::optional<ChainCode> code_led_away(std::int32_t vertex, const Point& onward) const;

 private:
  // A vertex in the viewer's frame: x to the right, y up, height towards the viewer.
  struct Vertex {
    double x;
    double y;
    double height;
  };

  struct Segment {
    Vertex from;
    Vertex to;
  };

  // Segments begin..end-1.
  struct Range {
    std::size_t begin;
    std::size_t end;
  };

  // A crossing of two segments, at the given parts of their lengths.
  struct Meeting {
    std::int32_t first;
    std::int32_t second;
    double at_first;
    double at_second;
    double error;  // of both
    bool first_over;
    bool positive;
  };

  // A passage through a crossing, on its way into the order of the chain.
  struct Placed {
    std::int32_t segment;
    std::int32_t meeting;
    double at;
    double error;
    bool is_first;
  };

  enum class Pair { kApart, kCross, kDegenerate };

  void look_at(std::span<const Point> chain, const Point& direction, Curve curve);
  static BoundingBox<2> box_of(const Segment& segment);
  void bound_segments();
  Segment segment(std::size_t index) const { return {vertices_[index], vertices_[index + 1]}; }
  std::size_t segments() const { return original_.size(); }
  bool find_meetings(std::size_t second, Range others);
  bool find_meetings(const Segment& with, std::size_t second, Range others,
                     std::vector<Meeting>& meetings) const;
  static Pair test(const Segment& a, const Segment& b, Meeting& meeting);
  bool sort_passages();
  static bool well_apart(const std::vector<Placed>& placed);
  ChainCode coded(const std::vector<Placed>& placed, const std::vector<Meeting>& more,
                  std::int32_t last_segment) const;

  std::array<Point, 3> frame_;          // right, up, towards the viewer
  std::vector<Vertex> vertices_;        // without repetitions
  std::vector<std::int32_t> original_;  // number in the chain of each segment kept
  std::vector<std::int32_t> kept_;      // vertex kept for each of the chain
  double reach_ = 0;                    // no coordinate in the plane is larger
  BoxTree<2> boxes_;                    // of segments
  std::vector<Meeting> meetings_;       // by second segment, then by first
  std::vector<Placed> placed_;          // in order of the chain
  bool degenerate_ = false;
};

// Throws Error(kInvalidArgument) when a coordinate is not a number below 1e300 in size.
void require_usable(std::span<const Point> chain);

// `direction`, a unit vector, turned by about 1e-5 rad: the `attempt`-th of a fixed sequence of
// such turns, each of them another.
Point nudged(const Point& direction, unsigned attempt);

// A direction along which the view of a chain is not degenerate, and that view.
struct GeneralView {
  Point direction;
  Projection projection;
  std::vector<Point> moved;  // the chain that is seen where it is not the given one, else empty

  // The chain that is seen, of which `given` is the one that was to be seen.
  std::span<const Point> chain(std::span<const Point> given) const {
    return moved.empty() ? given : std::span<const Point>(moved);
  }
};

// The given chain and direction where their view is not degenerate. Where it is, the direction is
// turned by about 1e-5 rad; nothing where that does not help. The chain must be usable
// (require_usable()), here and below.
std::optional<GeneralView> turned_view(std::span<const Point> chain, const Point& direction,
                                       Curve curve = Curve::kOpen, const Run& run = {});

// The given chain and direction where their view is not degenerate. Where it is, the direction is
// turned by about 1e-5 rad, and where that does not help (the chain touches itself) the points are
// moved as well, by 1e-9 of the chain's extent or as little more as helps: the answer is then that
// of a chain nearby. Throws Error(kInvalidArgument) where nothing helps.
GeneralView general_view(std::span<const Point> chain, const Point& direction,
                         Curve curve = Curve::kOpen, const Run& run = {});

// The code of a chain cut at a vertex and led away from there, and how it came about.
struct LedAway : ChainCode {
  Point onward;                     // the direction taken
  std::optional<GeneralView> view;  // set where another view than the given one had to be taken
};

// Leads `view`, a general view of `chain`, away from `vertex` in direction `onward`. Where that is
// seen degenerately `onward` is turned by about 1e-5 rad, and where that does not help (the chain
// passes through the vertex) the points are moved as general_view() does. Throws
// Error(kInvalidArgument) where nothing helps.
LedAway led_away(std::span<const Point> chain, const GeneralView& view, std::int32_t vertex,
                 const Point& onward, const Run& run = {});

}  // namespace korvex

// The diagrams of chains seen along a direction.
#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/diagram/code_closure.hpp"
#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/trusted_diagram.hpp"
#include "engine/projection/projection.hpp"
#include "korvex/diagram.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

Point checked_unit(const Point& direction) {
  const double largest =
      std::max({std::abs(direction.x), std::abs(direction.y), std::abs(direction.z)});
  const bool numbers =
      std::isfinite(direction.x) && std::isfinite(direction.y) && std::isfinite(direction.z);
  if (!(numbers && largest > 0))
    throw Error(ErrorCode::kInvalidArgument,
                "the direction of view must be a finite vector other than 0");
  if (largest < std::numeric_limits<double>::min()) return checked_unit(0x1p200 * direction);
  const Point scaled = (1 / largest) * direction;
  return (1 / norm(scaled)) * scaled;
}

}  // namespace

Diagram Diagram::of_polygon(std::span<const Point> points, const Point& direction, const Run& run) {
  require_usable(points);
  return TrustedDiagram::of(
      general_view(points, checked_unit(direction), Curve::kClosed, run).projection.code());
}

Diagram Diagram::of_open_chain(std::span<const Point> points, const Point& direction,
                               const Run& run) {
  require_usable(points);
  GaussCode code =
      general_view(points, checked_unit(direction), Curve::kOpen, run).projection.code();
  CodeReduction().reduce(code);
  return TrustedDiagram::of(closed_over(code));
}

}  // namespace korvex

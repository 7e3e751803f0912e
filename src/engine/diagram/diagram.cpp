#include "korvex/diagram.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/gauss_code.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/diagram/projection.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

Point unit(const Point& direction) {
  const double largest =
      std::max({std::abs(direction.x), std::abs(direction.y), std::abs(direction.z)});
  const bool numbers =
      std::isfinite(direction.x) && std::isfinite(direction.y) && std::isfinite(direction.z);
  if (!(numbers && largest > 0))
    throw Error(ErrorCode::kInvalidArgument,
                "the direction of view must be a finite vector other than 0");
  if (largest < std::numeric_limits<double>::min()) return unit(0x1p200 * direction);
  const Point scaled = (1 / largest) * direction;
  return (1 / norm(scaled)) * scaled;
}

}  // namespace

Diagram Diagram::of_polygon(std::span<const Point> points, const Point& direction) {
  return Diagram(general_view(points, unit(direction), Curve::kClosed).projection.code());
}

Diagram Diagram::of_open_chain(std::span<const Point> points, const Point& direction) {
  GaussCode code = general_view(points, unit(direction)).projection.code();
  CodeReduction().reduce(code);
  return Diagram(closed_over(code));
}

int Diagram::writhe() const {
  int twice = 0;
  for (const Passage& passage : code_) twice += passage.positive ? 1 : -1;
  return twice / 2;
}

Diagram Diagram::mirror() const {
  GaussCode code = code_;
  for (Passage& passage : code) {
    passage.over = !passage.over;
    passage.positive = !passage.positive;
  }
  return Diagram(std::move(code));
}

Diagram Diagram::reversed() const {
  GaussCode code(code_.rbegin(), code_.rend());
  const auto last = static_cast<std::int32_t>(code.size()) - 1;
  for (Passage& passage : code) passage.mate = last - passage.mate;
  return Diagram(std::move(code));
}

Diagram Diagram::connected_sum(const Diagram& other) const {
  GaussCode code = code_;
  const auto shift = static_cast<std::int32_t>(code.size());
  for (Passage passage : other.code_) {
    passage.mate += shift;
    code.push_back(passage);
  }
  return Diagram(std::move(code));
}

Diagram Diagram::simplified() const {
  GaussCode code = code_;
  CodeReduction reduction;
  PassMoves().simplify(code, reduction);
  return Diagram(std::move(code));
}

}  // namespace korvex

#include "korvex/ring.hpp"

#include <vector>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/diagram/trusted_diagram.hpp"
#include "engine/projection/projection.hpp"
#include "engine/run/parallel.hpp"
#include "geometry/triangle_elimination.hpp"
#include "korvex/alexander.hpp"
#include "korvex/directions.hpp"

namespace korvex {
namespace {

DiagramSize size_of(const GaussCode& code) {
  DiagramSize size;
  size.crossings = code.size() / 2;
  for (const Passage& passage : code)
    if (passage.over) size.writhe += passage.positive ? 1 : -1;
  return size;
}

// Parts of the progress, about as they take time for long rings.
constexpr double kProjected = 0.1;
constexpr double kEliminated = 0.3;
constexpr double kSimplified = 0.9;

}  // namespace

RingReport examine_ring(std::span<const Point> points, const Run& run) {
  const auto done = [&run](double part) {
    if (run.progress) run.progress(part);
  };
  require_usable(points);
  RingReport report;
  Point direction = random_direction(run.seed, 0);
  std::vector<Point> left;
  {
    const GeneralView whole = general_view(points, direction, Curve::kClosed, run);
    report.projected = size_of(whole.projection.code());
    direction = whole.direction;
    done(kProjected);
    const std::span<const Point> seen = whole.chain(points);
    for (const std::int32_t index : eliminate_ring(seen, [&run] { throw_if_cancelled(run); }))
      left.push_back(seen[static_cast<std::size_t>(index)]);
  }
  report.points_left = left.size();
  done(kEliminated);
  // Strands of a ring that touched itself lie close together now. To move points once more could
  // pass them through each other; then all points are taken.
  const auto reduced = turned_view(left, direction, Curve::kClosed, run);
  GaussCode code = reduced
                       ? reduced->projection.code()
                       : general_view(points, random_direction(run.seed, 0), Curve::kClosed, run)
                             .projection.code();
  CodeReduction reduction;
  PassMoves().simplify(code, reduction, run);
  done(kSimplified);
  report.simplified = TrustedDiagram::of(std::move(code));
  report.alexander_key = alexander_key(report.simplified);
  done(1);
  return report;
}

}  // namespace korvex

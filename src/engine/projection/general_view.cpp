#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "engine/projection/projection.hpp"
#include "geometry/unit_scale.hpp"
#include "korvex/directions.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

// How often a direction is turned before the points are moved.
constexpr unsigned kTurns = 4;

// By how much the points of a chain that touches itself are moved, in parts of its extent.
constexpr std::array kShakes{1e-9, 1e-9, 1e-8, 1e-7, 1e-6, 1e-5, 1e-4, 1e-4};

// Every attempt to move the points has a number and with it moves of its own. Those of led_away()
// begin here, beyond those of general_view(), which may have led to where led_away() began.
constexpr unsigned kMovesOfEnds = 100;

// Moved by `part` of the extent, each point in a direction of its own.
std::vector<Point> shaken(std::span<const Point> chain, double part, unsigned attempt) {
  const double extent = reach_of(chain);
  std::vector<Point> moved(chain.begin(), chain.end());
  for (std::size_t i = 0; i < moved.size(); ++i)
    moved[i] = moved[i] + part * extent * random_direction(attempt, i);
  return moved;
}

[[noreturn]] void refuse() {
  throw Error(ErrorCode::kInvalidArgument,
              "the chain cannot be projected: its coordinates differ too much in size");
}

}  // namespace

void require_usable(std::span<const Point> chain) {
  constexpr double kLargest = 1e300;
  for (std::size_t i = 0; i < chain.size(); ++i) {
    const Point& p = chain[i];
    if (std::abs(p.x) <= kLargest && std::abs(p.y) <= kLargest && std::abs(p.z) <= kLargest)
      continue;
    throw Error(ErrorCode::kInvalidArgument,
                "point " + std::to_string(i + 1) +
                    " of the chain has a coordinate that is not a number below 1e300 in size: "
                    "remove or correct it");
  }
}

Point nudged(const Point& direction, unsigned attempt) {
  constexpr double kAngle = 1e-5;
  constexpr std::uint64_t kSeed = 0x446972656374aa20u;
  const Point turned = direction + kAngle * random_direction(kSeed, attempt);
  return (1 / norm(turned)) * turned;
}

std::optional<GeneralView> turned_view(std::span<const Point> chain, const Point& direction,
                                       Curve curve, const Run& run) {
  GeneralView view{direction, Projection(chain, direction, curve, run), {}};
  for (unsigned attempt = 0; view.projection.degenerate(); ++attempt) {
    if (attempt == kTurns) return std::nullopt;
    view.direction = nudged(direction, attempt);
    view.projection = Projection(chain, view.direction, curve, run);
  }
  return view;
}

GeneralView general_view(std::span<const Point> chain, const Point& direction, Curve curve,
                         const Run& run) {
  if (auto view = turned_view(chain, direction, curve, run)) return *std::move(view);
  for (unsigned attempt = kTurns; attempt < kTurns + kShakes.size(); ++attempt) {
    const Point turned = nudged(direction, attempt);
    std::vector<Point> moved = shaken(chain, kShakes[attempt - kTurns], attempt);
    Projection projection(moved, turned, curve, run);
    if (!projection.degenerate()) return {turned, std::move(projection), std::move(moved)};
  }
  refuse();
}

LedAway led_away(std::span<const Point> chain, const GeneralView& view, std::int32_t vertex,
                 const Point& onward, const Run& run) {
  constexpr unsigned kTurnsOnward = 6;
  const auto led = [&](const Projection& projection) -> std::optional<LedAway> {
    if (auto code = projection.code_led_away(vertex, onward))
      return LedAway{*std::move(code), onward, {}};
    for (unsigned attempt = 0; attempt < kTurnsOnward; ++attempt) {
      const Point turned = nudged(onward, attempt);
      if (auto code = projection.code_led_away(vertex, turned))
        return LedAway{*std::move(code), turned, {}};
    }
    return std::nullopt;
  };
  if (auto away = led(view.projection)) return *std::move(away);
  for (unsigned attempt = 0; attempt < kShakes.size(); ++attempt) {
    std::vector<Point> moved = shaken(chain, kShakes[attempt], kMovesOfEnds + attempt);
    Projection projection(moved, view.direction, Curve::kOpen, run);
    if (projection.degenerate()) continue;
    auto away = led(projection);
    if (!away) continue;
    away->view.emplace(GeneralView{view.direction, std::move(projection), std::move(moved)});
    return *std::move(away);
  }
  refuse();
}

}  // namespace korvex

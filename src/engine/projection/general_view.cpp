#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
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

// The shortest bond of each point that has a length; of points without one that of the whole chain.
std::vector<double> bonds_around(std::span<const Point> chain) {
  constexpr double kNone = std::numeric_limits<double>::infinity();
  std::vector<double> bonds(chain.size(), kNone);
  double shortest = kNone;
  for (std::size_t i = 0; i < chain.size(); ++i) {
    const std::size_t next = i + 1 < chain.size() ? i + 1 : 0;
    const double length = norm(chain[next] - chain[i]);
    if (!(length > 0)) continue;
    bonds[i] = std::min(bonds[i], length);
    bonds[next] = std::min(bonds[next], length);
    shortest = std::min(shortest, length);
  }
  for (double& bond : bonds)
    if (bond == kNone) bond = shortest;
  return bonds;
}

// Moved by `part` of the extent, each point in a direction of its own, and by far less than its
// bonds: an atom that lies far off must not tear the others apart.
std::vector<Point> shaken(std::span<const Point> chain, double part, unsigned attempt) {
  constexpr double kMostOfBond = 0.01;
  const double wanted = part * reach_of(chain);
  const std::vector<double> bonds = bonds_around(chain);
  std::vector<Point> moved(chain.begin(), chain.end());
  for (std::size_t i = 0; i < moved.size(); ++i)
    moved[i] = moved[i] + std::min(wanted, kMostOfBond * bonds[i]) * random_direction(attempt, i);
  return moved;
}

// No view of the chain can be told for certain: mostly since one point lies far off, so that what
// sets the others apart is lost beside its coordinates.
[[noreturn]] void refuse(std::span<const Point> chain) {
  const std::vector<double> bonds = bonds_around(chain);
  const auto farthest =
      std::max_element(chain.begin(), chain.end(), [](const Point& a, const Point& b) {
        return std::max({std::abs(a.x), std::abs(a.y), std::abs(a.z)}) <
               std::max({std::abs(b.x), std::abs(b.y), std::abs(b.z)});
      });
  const auto shortest = std::min_element(bonds.begin(), bonds.end());
  const auto number = [](auto place) { return std::to_string(place + 1); };
  throw Error(ErrorCode::kInvalidArgument,
              "the chain cannot be projected: its coordinates differ too much in size; point " +
                  number(farthest - chain.begin()) +
                  " lies too far from the origin for the bond of "
                  "point " +
                  number(shortest - bonds.begin()) +
                  " to count: correct or remove it, or move the chain to the origin");
}

}  // namespace

namespace {

// Refuses a chain with a point so far off that the others' places are lost in rounding beside it.
void require_room(std::span<const Point> chain) {
  constexpr double kMostBonds = 1e7;
  // Neither overflows nor underflows.
  const auto apart = [](const Point& a, const Point& b) {
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
  };
  std::vector<double> bonds;
  std::size_t farthest = 0;
  double longest = 0;
  double reach = 0;
  for (std::size_t i = 1; i < chain.size(); ++i) {
    const double length = apart(chain[i], chain[i - 1]);
    if (length > 0) bonds.push_back(length);
    if (length > longest) farthest = i;
    longest = std::max(longest, length);
    reach = std::max(reach, apart(chain[i], chain[0]));
  }
  if (bonds.empty()) return;
  const auto middle = bonds.begin() + static_cast<std::ptrdiff_t>(bonds.size() / 2);
  std::nth_element(bonds.begin(), middle, bonds.end());
  if (reach / kMostBonds <= *middle) return;
  throw Error(ErrorCode::kInvalidArgument,
              "points " + std::to_string(farthest) + " and " + std::to_string(farthest + 1) +
                  " lie so far apart, beside bonds 1e7 times as short, that the others' places are "
                  "lost in rounding: correct or remove them");
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
  require_room(chain);
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
  refuse(chain);
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
  refuse(chain);
}

}  // namespace korvex

#include "korvex/closure.hpp"

#include <array>
#include <string>
#include <utility>

#include "engine/run/random.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::array<std::pair<Closure, std::string_view>, 5> kNames{{
    {Closure::kRays, "rays"},
    {Closure::kTwoPoints, "two-points"},
    {Closure::kOut, "out"},
    {Closure::kDirect, "direct"},
    {Closure::kRing, "ring"},
}};

// Sets the second ends of two points apart from the first.
constexpr std::uint64_t kSecondEnds = 0x5365636f6e64aa55u;

std::vector<Point> directions(Sampling sampling, std::size_t count, std::uint64_t seed,
                              std::uint64_t block) {
  if (sampling == Sampling::kLattice) return lattice_directions(count, seed, block);
  std::vector<Point> drawn;
  drawn.reserve(count);
  for (std::size_t i = 0; i < count; ++i)
    drawn.push_back(random_direction(seed, block * count + i));
  return drawn;
}

void shuffle(std::vector<Point>& points, std::uint64_t seed, std::uint64_t block) {
  TrialRandom random(seed ^ kSecondEnds, block);
  for (std::size_t left = points.size(); left > 1; --left) {
    const auto chosen = static_cast<std::size_t>(random.unit() * static_cast<double>(left));
    std::swap(points[chosen], points[left - 1]);
  }
}

}  // namespace

std::string_view name_of(Closure closure) {
  for (const auto& [value, name] : kNames)
    if (value == closure) return name;
  return "unknown";
}

Closure closure_named(std::string_view name) {
  for (const auto& [value, known] : kNames)
    if (known == name) return value;
  throw Error(ErrorCode::kInvalidArgument, "no closure is called '" + std::string(name) +
                                               "': choose rays, two-points, out, direct or ring");
}

std::vector<Ends> sampled_ends(Closure closure, Sampling sampling, std::size_t count,
                               std::uint64_t seed, std::uint64_t block) {
  if (!is_sampled(closure))
    throw Error(ErrorCode::kInvalidArgument,
                "the closure '" + std::string(name_of(closure)) + "' draws no directions");
  const std::vector<Point> first = directions(sampling, count, seed, block);
  std::vector<Point> last = first;
  if (closure == Closure::kTwoPoints) {
    last = directions(sampling, count, seed ^ kSecondEnds, block);
    shuffle(last, seed, block);
  }
  std::vector<Ends> ends;
  ends.reserve(count);
  for (std::size_t i = 0; i < count; ++i) ends.push_back({first[i], last[i]});
  return ends;
}

}  // namespace korvex

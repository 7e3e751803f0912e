#include "engine/diagram/prime_parts.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

// Passages begin..end-1.
struct Stretch {
  std::size_t begin;
  std::size_t end;
};

// A stretch, not empty and not everything, that holds both passages of all its crossings.
std::optional<Stretch> closed_stretch(const GaussCode& code, const Run& run) {
  for (std::size_t begin = 1; begin < code.size(); ++begin) {
    throw_if_cancelled(run);
    std::size_t reach = begin;
    for (std::size_t k = begin; k <= reach; ++k) {
      const auto mate = static_cast<std::size_t>(code[k].mate);
      if (mate < begin) break;
      reach = std::max(reach, mate);
      if (k == reach) return Stretch{begin, k + 1};
    }
  }
  return std::nullopt;
}

// The passages of a stretch alone, or all others.
GaussCode part(const GaussCode& code, const Stretch& stretch, bool inside) {
  GaussCode result;
  std::vector<std::int32_t> place(code.size(), -1);
  for (std::size_t k = 0; k < code.size(); ++k) {
    if ((stretch.begin <= k && k < stretch.end) != inside) continue;
    place[k] = static_cast<std::int32_t>(result.size());
    result.push_back(code[k]);
  }
  for (Passage& passage : result) passage.mate = place[static_cast<std::size_t>(passage.mate)];
  return result;
}

}  // namespace

std::vector<GaussCode> prime_parts(const GaussCode& simplified, const Run& run) {
  constexpr std::size_t kFewestKnottedPassages = 6;
  CodeReduction reduction;
  PassMoves moves;
  std::vector<GaussCode> parts;
  std::vector<GaussCode> waiting{simplified};
  while (!waiting.empty()) {
    GaussCode code = std::move(waiting.back());
    waiting.pop_back();
    if (code.size() < kFewestKnottedPassages) continue;
    if (const auto stretch = closed_stretch(code, run)) {
      for (const bool inside : {true, false}) {
        waiting.push_back(part(code, *stretch, inside));
        moves.simplify(waiting.back(), reduction, run);
      }
    } else {
      parts.push_back(std::move(code));
    }
  }
  return parts;
}

bool is_alternating(const GaussCode& closed) {
  for (std::size_t k = 0; k < closed.size(); ++k)
    if (closed[k].over == closed[k + 1 < closed.size() ? k + 1 : 0].over) return false;
  return true;
}

}  // namespace korvex

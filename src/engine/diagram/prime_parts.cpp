#include "engine/diagram/prime_parts.hpp"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <utility>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/course.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/diagram/place.hpp"
#include "engine/run/parallel.hpp"

namespace korvex {
namespace {

// A range, not empty and not everything, that holds both passages of all its crossings.
std::optional<PassageRange> closed_range(const GaussCode& code, const Run& run) {
  for (std::size_t begin = 1; begin < code.size(); ++begin) {
    throw_if_cancelled(run);
    std::size_t reach = begin;
    for (std::size_t k = begin; k <= reach; ++k) {
      const std::size_t mate = at(code[k].mate);
      if (mate < begin) break;
      reach = std::max(reach, mate);
      if (k == reach) return PassageRange{begin, k + 1};
    }
  }
  return std::nullopt;
}

// The passages of a range alone, or all others.
GaussCode part(const GaussCode& code, const PassageRange& range, bool inside) {
  GaussCode result;
  std::vector<std::int32_t> place(code.size(), -1);
  for (std::size_t k = 0; k < code.size(); ++k) {
    const auto passage = static_cast<std::int32_t>(k);
    if (range.contains(passage) != inside) continue;
    place[k] = static_cast<std::int32_t>(result.size());
    result.push_back(code[k]);
  }
  for (Passage& passage : result) passage.mate = place[at(passage.mate)];
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
    if (const auto range = closed_range(code, run)) {
      for (const bool inside : {true, false}) {
        waiting.push_back(part(code, *range, inside));
        moves.simplify(waiting.back(), reduction, run);
      }
    } else {
      parts.push_back(std::move(code));
    }
  }
  return parts;
}

bool is_alternating(const GaussCode& closed) {
  const Course course(closed.size());
  for (std::size_t k = 0; k < closed.size(); ++k)
    if (closed[k].over == closed[course.strand_after(k)].over) return false;
  return true;
}

}  // namespace korvex

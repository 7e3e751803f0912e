#include "engine/identify/diagram_search.hpp"

#include <cstddef>
#include <deque>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/diagram/prime_parts.hpp"
#include "engine/diagram/third_moves.hpp"
#include "engine/identify/canonical_code.hpp"

namespace korvex {
namespace {

// A diagram with fewer crossings than the given one or of several parts, in parts.
std::optional<std::vector<GaussCode>> simpler_parts(const GaussCode& part, const Run& run) {
  constexpr std::size_t kMostDiagrams = 100;
  CodeReduction reduction;
  PassMoves pass_moves;
  std::unordered_set<std::string> seen{canonical_code(part)};
  std::deque<GaussCode> waiting{part};
  for (; !waiting.empty(); waiting.pop_front()) {
    for (GaussCode& moved : third_moves(waiting.front())) {
      if (!seen.insert(canonical_code(moved)).second) continue;
      pass_moves.simplify(moved, reduction, run);
      std::vector<GaussCode> parts = prime_parts(moved, run);
      if (parts.size() != 1 || parts.front().size() < part.size()) return parts;
      if (seen.size() == kMostDiagrams) return std::nullopt;
      waiting.push_back(std::move(moved));
    }
  }
  return std::nullopt;
}

GaussCode mirrored(GaussCode code) {
  for (Passage& passage : code) {
    passage.over = !passage.over;
    passage.positive = !passage.positive;
  }
  return code;
}

}  // namespace

std::vector<GaussCode> searched_parts(const GaussCode& part, const Run& run) {
  // Begun with the same code for all codes of a diagram and of its mirror image.
  GaussCode start = canonical_diagram(part);
  GaussCode image = canonical_diagram(mirrored(part));
  const bool in_the_mirror = canonical_code(image) < canonical_code(start);
  std::vector<GaussCode> found;
  std::vector<GaussCode> waiting{in_the_mirror ? std::move(image) : std::move(start)};
  while (!waiting.empty()) {
    GaussCode code = std::move(waiting.back());
    waiting.pop_back();
    if (auto parts = simpler_parts(code, run))
      for (GaussCode& simpler : *parts) waiting.push_back(std::move(simpler));
    else
      found.push_back(std::move(code));
  }
  if (in_the_mirror)
    for (GaussCode& code : found) code = mirrored(std::move(code));
  return found;
}

}  // namespace korvex

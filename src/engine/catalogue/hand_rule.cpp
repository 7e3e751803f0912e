#include "engine/catalogue/hand_rule.hpp"

#include <cstdint>
#include <cstdlib>
#include <map>
#include <utility>

#include "korvex/colourings.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "korvex/signature.hpp"

namespace korvex {
namespace {

// Positive where the coefficient on the right-handed side outweighs the other.
int compare(std::int64_t right, std::int64_t left) {
  if (std::llabs(right) != std::llabs(left)) return std::llabs(right) > std::llabs(left) ? 1 : -1;
  return right == left ? 0 : right > left ? 1 : -1;
}

// Decided by the first of the pairs of places, in the order of the map from its end, that differs.
template <class Place, class Opposite>
int first_difference(const std::map<Place, std::int64_t>& coefficients, const Opposite& opposite) {
  for (auto place = coefficients.rbegin(); place != coefficients.rend(); ++place) {
    const auto other = coefficients.find(opposite(place->first));
    const int side = place->first > opposite(place->first) ? 1 : -1;
    const int order = compare(place->second, other == coefficients.end() ? 0 : other->second);
    if (order != 0) return side * order;
  }
  return 0;
}

int hand_by_jones(const JonesPolynomial& jones) {
  if (jones.empty()) return 0;
  const int lean = jones.front().exponent + jones.back().exponent;
  if (lean != 0) return lean > 0 ? 1 : -1;
  std::map<int, std::int64_t> by_exponent;
  for (const JonesTerm& term : jones) by_exponent[term.exponent] = term.coefficient;
  return first_difference(by_exponent, [](int exponent) { return -exponent; });
}

// Right-handed knots have negative powers of a.
int hand_by_homfly(const HomflyPolynomial& homfly) {
  std::map<std::pair<int, int>, std::int64_t> by_exponents;
  for (const HomflyTerm& term : homfly) by_exponents[{-term.a, term.z}] = term.coefficient;
  return first_difference(
      by_exponents, [](const std::pair<int, int>& e) { return std::pair(-e.first, e.second); });
}

int hand_by_colourings(const Diagram& diagram) {
  for (const int p : {5, 7, 11}) {
    const auto counts = parabolic_colourings(diagram, p);
    if (!counts) continue;
    for (std::size_t k = 1; k < counts->size() - k; ++k) {
      const std::int64_t right = (*counts)[k];
      const std::int64_t left = (*counts)[counts->size() - k];
      if (right != left) return right > left ? 1 : -1;
    }
  }
  return 0;
}

}  // namespace

int hand(const Diagram& diagram) {
  if (const int side = hand_by_jones(jones(diagram).value_or(JonesPolynomial{}))) return side;
  if (const int side = hand_by_homfly(homfly(diagram).value_or(HomflyPolynomial{}))) return side;
  if (const int s = signature(diagram)) return s < 0 ? 1 : -1;
  return hand_by_colourings(diagram);
}

}  // namespace korvex

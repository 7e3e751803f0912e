#include "engine/catalogue/hand_rule.hpp"

#include <cstdint>
#include <cstdlib>
#include <map>
#include <utility>

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

}  // namespace

int hand(const JonesPolynomial& jones, const HomflyPolynomial& homfly, int signature) {
  if (!jones.empty()) {
    const int lean = jones.front().exponent + jones.back().exponent;
    if (lean != 0) return lean > 0 ? 1 : -1;
  }
  std::map<int, std::int64_t> by_exponent;
  for (const JonesTerm& term : jones) by_exponent[term.exponent] = term.coefficient;
  const auto negative = [](int exponent) { return -exponent; };
  if (const int side = first_difference(by_exponent, negative)) return side;
  // Right-handed knots have negative powers of a.
  std::map<std::pair<int, int>, std::int64_t> by_exponents;
  for (const HomflyTerm& term : homfly) by_exponents[{-term.a, term.z}] = term.coefficient;
  const auto opposite = [](const std::pair<int, int>& e) { return std::pair(-e.first, e.second); };
  if (const int side = first_difference(by_exponents, opposite)) return side;
  return signature < 0 ? 1 : signature > 0 ? -1 : 0;
}

}  // namespace korvex

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "alexander/stored_polynomial.hpp"
#include "korvex.h"
#include "recognition/ordinals.hpp"

namespace {

using korvex::recognition::kLastKnot;
using korvex::recognition::kNoMatch;
using korvex::recognition::kUnusable;

bool equal_but_for_trailing_zeros(const std::vector<int>& a, const std::vector<int>& b) {
  const std::size_t common = std::min(a.size(), b.size());
  const auto is_zero = [](int c) { return c == 0; };
  return std::all_of(a.begin() + static_cast<std::ptrdiff_t>(common), a.end(), is_zero) &&
         std::all_of(b.begin() + static_cast<std::ptrdiff_t>(common), b.end(), is_zero) &&
         std::equal(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(common), b.begin());
}

int match(const polynomial<int>& poly) {
  const polynomial<int> normalised = NormalizePoly(poly);
  for (int i = 0; i <= kLastKnot; ++i)
    if (equal_but_for_trailing_zeros(normalised.data(), knotsArray[i].poly)) return i;
  return kNoMatch;
}

// Halves away from zero. What 64 bits cannot hold becomes the smallest integer, as the processor's
// own conversion has it.
std::int64_t rounded(double value) {
  constexpr double kBound = 9223372036854775808.0;  // 2^63
  if (!(std::fabs(value) < kBound)) return std::numeric_limits<std::int64_t>::min();
  return std::llround(value);
}

// The magnitude with every factor p divided out; 0 stays 0. The smallest integer is its own
// magnitude.
std::int64_t without_factors(std::int64_t n, int p) {
  if (n == 0) return 0;
  if (n < 0 && n != std::numeric_limits<std::int64_t>::min()) n = -n;
  if (p == 0) return n;
  while (n % p == 0) n = n / p;
  return n;
}

}  // namespace

bool EqualPolies(polynomial<int> a, polynomial<int> b) {
  return equal_but_for_trailing_zeros(a.data(), b.data());
}

std::string WhichKnot(polynomial<int> poly) {
  const int ordinal = match(poly);
  return ordinal == kNoMatch ? "NO" : knotsArray[ordinal].name;
}

int WhichKnot_OrdNr(polynomial<int> poly) { return match(poly); }

int WhichKnotDouble_OrdNr(double value) {
  constexpr double kTolerance = 1e-5;
  const double rest = std::fmod(value, 1.0);
  if (!CompareEq(rest, 0.0, kTolerance) && !CompareEq(rest, 1.0, kTolerance) &&
      !CompareEq(rest, -1.0, kTolerance))
    return kUnusable;
  const std::int64_t wanted = without_factors(rounded(value), 3);
  for (int i = 0; i <= kLastKnot; ++i)
    if (wanted == knotsArray[i].valueAtMinus3) return i;
  return kNoMatch;
}

std::int64_t Normalize_det_double(double value, int p) {
  return without_factors(rounded(value), p);
}

polynomial<int> GivePolyByValM3(double value) {
  for (int i = 0; i <= kLastKnot; ++i)
    if (static_cast<double>(knotsArray[i].valueAtMinus3) == value)
      return korvex::alexander::stored_polynomial(knotsArray[i].poly);
  return korvex::alexander::stored_polynomial(knotsArray[0].poly);
}

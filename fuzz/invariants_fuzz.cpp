// The invariants of closed braids: they agree with one another, with those of the mirror image and
// of the reverse, and do not change when the braid is moved.
#include <cmath>
#include <map>
#include <string>

#include "knots.hpp"
#include "korvex/alexander.hpp"
#include "korvex/colourings.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "korvex/signature.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Diagram;
using korvex::HomflyPolynomial;
using korvex::HomflyTerm;
using korvex::JonesPolynomial;
using korvex::JonesTerm;
using Counts = std::vector<std::int64_t>;

// The HOMFLY-PT polynomial with z^2 = t - 2 + 1/t and t^k in place of a.
JonesPolynomial specialised(const HomflyPolynomial& homfly, int k) {
  std::map<int, std::int64_t> sum;
  for (const HomflyTerm& term : homfly) {
    JonesPolynomial part = {{k * term.a, term.coefficient}};
    for (int z = 0; z < term.z; z += 2) part = product(part, {{-1, 1}, {0, -2}, {1, 1}});
    for (const JonesTerm& t : part) sum[t.exponent] += t.coefficient;
  }
  JonesPolynomial result;
  for (const auto& [exponent, coefficient] : sum)
    if (coefficient != 0) result.push_back({exponent, coefficient});
  return result;
}

// Lowest power first, the first coefficient positive.
Counts as_coefficients(const JonesPolynomial& alexander) {
  Counts result;
  for (const JonesTerm& term : alexander) {
    result.resize(static_cast<std::size_t>(term.exponent - alexander.front().exponent));
    result.push_back(alexander.front().coefficient > 0 ? term.coefficient : -term.coefficient);
  }
  return result;
}

std::int64_t at_minus_one(const JonesPolynomial& jones) {
  std::int64_t sum = 0;
  for (const JonesTerm& term : jones)
    sum += term.exponent % 2 == 0 ? term.coefficient : -term.coefficient;
  return sum;
}

void check_alexander(const Diagram& diagram, const HomflyPolynomial& homfly) {
  const auto alexander = korvex::alexander_polynomial(diagram);
  const Counts coefficients = alexander.small_coefficients().value_or(Counts{});
  require(coefficients == as_coefficients(specialised(homfly, 0)));
  require(korvex::alexander_key(diagram) == korvex::alexander_key_of(coefficients));
  std::int64_t sum = 0;
  for (const std::int64_t c : coefficients) sum += c;
  require(std::abs(sum) == 1);
  require(Counts(coefficients.rbegin(), coefficients.rend()) == coefficients);
  // The determinant is 1 modulo 4 where the signature is divisible by 4, and 3 where it is not.
  const std::string determinant = alexander.determinant();
  const int s = korvex::signature(diagram);
  require(s % 2 == 0);
  require((std::stoll(determinant) - s - 1) % 4 == 0);
  require(std::to_string(std::abs(at_minus_one(specialised(homfly, -1)))) == determinant);
}

void check_colourings(const Diagram& diagram, const Diagram& same) {
  for (const int p : {3, 5, 7}) {
    const auto counts = korvex::parabolic_colourings(diagram, p);
    const auto others = korvex::parabolic_colourings(same, p);
    const auto image = korvex::parabolic_colourings(diagram.mirror(), p);
    const auto reverse = korvex::parabolic_colourings(diagram.reversed(), p);
    if (counts && others) require(*counts == *others);
    if (counts && reverse) require(*counts == *reverse);
    if (!counts || !image) continue;
    require((*counts)[0] >= 1);
    for (std::size_t k = 1; k < counts->size(); ++k)
      require((*counts)[k] == (*image)[counts->size() - k]);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::Bytes bytes(data, size);
  const fuzz::Braid braid = fuzz::braid(bytes, 4, 12);
  fuzz::Braid moved = braid;
  for (int k = 0; k < 3; ++k) moved = fuzz::moved(std::move(moved), bytes);
  const Diagram diagram = braid.closed();
  const Diagram same = moved.closed();
  const auto homfly = korvex::homfly(diagram);
  require(homfly.has_value());
  require(korvex::homfly(same) == homfly);
  require(korvex::homfly(diagram.mirror()) == mirror(*homfly));
  require(korvex::homfly(diagram.reversed()) == homfly);
  require(korvex::jones(diagram) == specialised(*homfly, -1));
  require(korvex::jones(same) == specialised(*homfly, -1));
  require(korvex::jones(diagram.mirror()) == mirror(specialised(*homfly, -1)));
  require(korvex::signature(same) == korvex::signature(diagram));
  require(korvex::signature(diagram.mirror()) == -korvex::signature(diagram));
  require(korvex::alexander_polynomial(same) == korvex::alexander_polynomial(diagram));
  check_alexander(diagram, *homfly);
  check_colourings(diagram, same);
  return 0;
}

#include <cstddef>

#include "engine/invariants/arc_colouring.hpp"
#include "engine/invariants/modular.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/invariants/seed_elimination.hpp"
#include "korvex/alexander.hpp"

namespace korvex {
namespace {

using Field = modular::MersenneField;

// The key's t, without meaning, and its inverse.
constexpr std::uint64_t kT = 0x1e3779b97f4a7c15ULL;
constexpr std::uint64_t kInverseT = Field::inverse(kT);
static_assert(kT < Field::prime() && Field::multiply(kT, kInverseT) == 1);

// A value at t and the same at 1/t.
struct Both {
  std::uint64_t t = 0;
  std::uint64_t inverse = 0;
};

struct BothField {
  static constexpr Both one() { return {1, 1}; }
  static constexpr Both add(const Both& a, const Both& b) {
    return {Field::add(a.t, b.t), Field::add(a.inverse, b.inverse)};
  }
  static constexpr Both subtract(const Both& a, const Both& b) {
    return {Field::subtract(a.t, b.t), Field::subtract(a.inverse, b.inverse)};
  }
  static constexpr Both multiply(const Both& a, const Both& b) {
    return {Field::multiply(a.t, b.t), Field::multiply(a.inverse, b.inverse)};
  }
  static constexpr Both inverse(const Both& a) {
    const std::uint64_t of_product = Field::inverse(Field::multiply(a.t, a.inverse));
    return {Field::multiply(of_product, a.inverse), Field::multiply(of_product, a.t)};
  }
  static constexpr bool is_zero(const Both& a) { return a.t == 0 && a.inverse == 0; }
  static constexpr bool has_inverse(const Both& a) { return a.t != 0 && a.inverse != 0; }
};

class KeyMaker {
 public:
  std::uint64_t key(const GaussCode& closed, const Run& run) {
    colouring_.plan(closed);
    switch (both_.take(colouring_, {kT, kInverseT}, {kInverseT, kT}, run)) {
      case Outcome::kDone:
        return quotient(product(both_.numerator()), product(both_.denominator()));
      case Outcome::kZero:
        return 0;
      case Outcome::kStuck:
        break;
    }
    return Field::multiply(determinant(kT, kInverseT, run), determinant(kInverseT, kT, run));
  }

 private:
  using Outcome = SeedElimination<Both, BothField>::Outcome;

  static std::uint64_t product(const Both& both) { return Field::multiply(both.t, both.inverse); }

  static std::uint64_t quotient(std::uint64_t numerator, std::uint64_t denominator) {
    return denominator == 1 ? numerator : Field::multiply(numerator, Field::inverse(denominator));
  }

  // For one of the two alone.
  std::uint64_t determinant(std::uint64_t t, std::uint64_t inverse_t, const Run& run) const {
    using Elimination = SeedElimination<std::uint64_t, Field>;
    Elimination one;
    if (one.take(colouring_, t, inverse_t, run) != Elimination::Outcome::kDone) return 0;
    return quotient(one.numerator(), one.denominator());
  }

  ArcColouring colouring_;
  SeedElimination<Both, BothField> both_;
};

}  // namespace

std::uint64_t alexander_key(const GaussCode& closed, const Run& run) {
  static thread_local KeyMaker maker;
  return maker.key(closed, run);
}

std::uint64_t alexander_key(const Diagram& diagram, const Run& run) {
  return alexander_key(diagram.code(), run);
}

std::uint64_t alexander_key_of_sum(std::uint64_t a, std::uint64_t b) {
  return Field::multiply(a, b);
}

std::uint64_t alexander_key_of(std::span<const std::int64_t> coefficients) {
  std::uint64_t at_t = 0;
  std::uint64_t at_inverse = 0;
  for (std::size_t k = coefficients.size(); k-- > 0;) {
    const std::uint64_t coefficient = Field::residue(coefficients[k]);
    at_t = Field::add(Field::multiply(at_t, kT), coefficient);
    at_inverse = Field::add(Field::multiply(at_inverse, kInverseT), coefficient);
  }
  return Field::multiply(at_t, at_inverse);
}

}  // namespace korvex

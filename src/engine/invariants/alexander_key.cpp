#include <cstddef>
#include <vector>

#include "engine/invariants/colouring.hpp"
#include "engine/invariants/modular.hpp"
#include "engine/invariants/seed_equations.hpp"
#include "korvex/alexander.hpp"

namespace korvex {
namespace {

using modular::MersenneField;

constexpr MersenneField kField;

// The key's t, without meaning, and its inverse.
constexpr std::uint64_t kT = 0x1e3779b97f4a7c15ULL;
constexpr std::uint64_t kInverseT = modular::inverse(kField, kT);
static_assert(kT < MersenneField::prime() && kField.multiply(kT, kInverseT) == 1);

// A value at t and the same at 1/t.
struct Both {
  std::uint64_t t = 0;
  std::uint64_t inverse = 0;
};

struct BothField {
  static constexpr Both one() { return {1, 1}; }
  static constexpr Both add(const Both& a, const Both& b) {
    return {kField.add(a.t, b.t), kField.add(a.inverse, b.inverse)};
  }
  static constexpr Both subtract(const Both& a, const Both& b) {
    return {kField.subtract(a.t, b.t), kField.subtract(a.inverse, b.inverse)};
  }
  static constexpr Both multiply(const Both& a, const Both& b) {
    return {kField.multiply(a.t, b.t), kField.multiply(a.inverse, b.inverse)};
  }
};

class KeyMaker {
 public:
  std::uint64_t key(const GaussCode& closed) {
    colouring_.plan(closed);
    equations_.find(colouring_, {kT, kInverseT}, {kInverseT, kT});
    const std::uint64_t at_t = determinant(&Both::t);
    return at_t == 0 ? 0 : kField.multiply(at_t, determinant(&Both::inverse));
  }

 private:
  std::uint64_t determinant(std::uint64_t Both::*value) {
    matrix_.resize(equations_.equations().size());
    for (std::size_t k = 0; k < matrix_.size(); ++k) matrix_[k] = equations_.equations()[k].*value;
    return modular::determinant(kField, matrix_, equations_.width());
  }

  Colouring colouring_;
  SeedEquations<Both, BothField> equations_;
  std::vector<std::uint64_t> matrix_;
};

}  // namespace

std::uint64_t alexander_key(const GaussCode& closed) {
  static thread_local KeyMaker maker;
  return maker.key(closed);
}

std::uint64_t alexander_key(const Diagram& diagram) { return alexander_key(diagram.code()); }

std::uint64_t alexander_key_of_sum(std::uint64_t a, std::uint64_t b) {
  return kField.multiply(a, b);
}

std::uint64_t alexander_key_of(std::span<const std::int64_t> coefficients) {
  std::uint64_t at_t = 0;
  std::uint64_t at_inverse = 0;
  for (std::size_t k = coefficients.size(); k-- > 0;) {
    const std::uint64_t coefficient = kField.residue(coefficients[k]);
    at_t = kField.add(kField.multiply(at_t, kT), coefficient);
    at_inverse = kField.add(kField.multiply(at_inverse, kInverseT), coefficient);
  }
  return kField.multiply(at_t, at_inverse);
}

}  // namespace korvex

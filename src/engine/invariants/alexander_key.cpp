#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#include "engine/invariants/colouring.hpp"
#include "engine/invariants/modular.hpp"
#include "korvex/alexander.hpp"

namespace korvex {
namespace {

using modular::add;
using modular::multiply;
using modular::subtract;

std::size_t at(std::int32_t number) { return static_cast<std::size_t>(number); }

// The key's t, without meaning, and its inverse.
constexpr std::uint64_t kT = 0x9e3779b97f4a7c1ULL;
constexpr std::uint64_t kInverseT = modular::inverse(kT);
static_assert(multiply(kT, kInverseT) == 1);

// A value at t and the same at 1/t.
struct Both {
  std::uint64_t t;
  std::uint64_t inverse;
};

Both operator+(const Both& a, const Both& b) { return {add(a.t, b.t), add(a.inverse, b.inverse)}; }
Both operator-(const Both& a, const Both& b) {
  return {subtract(a.t, b.t), subtract(a.inverse, b.inverse)};
}
Both operator*(const Both& a, const Both& b) {
  return {multiply(a.t, b.t), multiply(a.inverse, b.inverse)};
}

constexpr Both kUnit{kT, kInverseT};
constexpr Both kInverseUnit{kInverseT, kT};

class KeyDeterminant {
 public:
  std::uint64_t of(const GaussCode& closed) {
    colouring_.plan(closed);
    width_ = at(colouring_.seeds() > 0 ? colouring_.seeds() - 1 : 0);
    if (width_ == 0) return 1;
    build_equations();
    return norm_of_determinant();
  }

 private:
  // Each arc known so far is a linear form in the seeds but the first, which is set to 0.
  void build_equations() {
    const std::vector<ColouringStep>& steps = colouring_.steps();
    count_uses(steps);
    form_.assign(at(colouring_.arcs()), kNone);
    free_.clear();
    forms_.clear();
    equations_.clear();
    std::size_t seeds = 0;
    for (const ColouringStep& step : steps) {
      using Kind = ColouringStep::Kind;
      switch (step.kind) {
        case Kind::kSeed: {
          Both* const form = new_form(step.out);
          if (seeds > 0) form[seeds - 1] = {1, 1};
          ++seeds;
          break;
        }
        case Kind::kForward:
          combine(step.out, step.over, step.in, step.positive ? kUnit : kInverseUnit, seeds - 1);
          break;
        case Kind::kBackward:
          combine(step.in, step.over, step.out, step.positive ? kInverseUnit : kUnit, seeds - 1);
          break;
        case Kind::kEquation:
          add_equation(step);
          break;
      }
      if (step.kind == Kind::kSeed) continue;
      for (const std::int32_t arc : {step.in, step.out, step.over}) release(arc);
    }
  }

  void count_uses(const std::vector<ColouringStep>& steps) {
    uses_.assign(at(colouring_.arcs()), 0);
    for (const ColouringStep& step : steps) {
      if (step.kind == ColouringStep::Kind::kSeed) continue;
      for (const std::int32_t arc : {step.in, step.out, step.over}) ++uses_[at(arc)];
    }
  }

  Both* form(std::int32_t arc) { return forms_.data() + form_[at(arc)] * width_; }

  Both* new_form(std::int32_t arc) {
    if (free_.empty()) {
      form_[at(arc)] = forms_.size() / width_;
      forms_.resize(forms_.size() + width_, Both{0, 0});
    } else {
      form_[at(arc)] = free_.back();
      free_.pop_back();
      std::fill_n(form(arc), width_, Both{0, 0});
    }
    return form(arc);
  }

  void release(std::int32_t arc) {
    if (--uses_[at(arc)] == 0) free_.push_back(form_[at(arc)]);
  }

  // new = over + unit (old - over)
  void combine(std::int32_t new_arc, std::int32_t over_arc, std::int32_t old_arc, const Both& unit,
               std::size_t known) {
    Both* const result = new_form(new_arc);
    const Both* const over = form(over_arc);
    const Both* const old = form(old_arc);
    for (std::size_t k = 0; k < known; ++k) result[k] = over[k] + unit * (old[k] - over[k]);
  }

  void add_equation(const ColouringStep& step) {
    if (equations_.size() == width_ * width_) return;
    const Both* const in = form(step.in);
    const Both* const out = form(step.out);
    const Both* const over = form(step.over);
    const Both unit = step.positive ? kUnit : kInverseUnit;
    for (std::size_t k = 0; k < width_; ++k)
      equations_.push_back(out[k] - over[k] - unit * (in[k] - over[k]));
  }

  // The determinant at t times that at 1/t. Rows are multiplied up instead of divided, so that one
  // inverse in the end serves all.
  std::uint64_t norm_of_determinant() {
    if (width_ == 1) return multiply(equations_[0].t, equations_[0].inverse);
    const std::uint64_t at_t = determinant(&Both::t);
    if (at_t == 0) return 0;
    return multiply(at_t, determinant(&Both::inverse));
  }

  std::uint64_t determinant(std::uint64_t Both::*value) {
    const std::size_t n = width_;
    matrix_.resize(n * n);
    for (std::size_t k = 0; k < n * n; ++k) matrix_[k] = equations_[k].*value;
    std::uint64_t product = 1;
    std::uint64_t multiplied = 1;
    for (std::size_t column = 0; column < n; ++column) {
      std::size_t pivot_row = column;
      while (pivot_row < n && matrix_[pivot_row * n + column] == 0) ++pivot_row;
      if (pivot_row == n) return 0;
      std::uint64_t* const pivot = &matrix_[column * n];
      if (pivot_row != column) {
        std::swap_ranges(pivot, pivot + n, &matrix_[pivot_row * n]);
        product = subtract(0, product);
      }
      const std::uint64_t factor = pivot[column];
      product = multiply(product, factor);
      for (std::size_t row = column + 1; row < n; ++row) {
        std::uint64_t* const other = &matrix_[row * n];
        const std::uint64_t leading = other[column];
        if (leading == 0) continue;
        multiplied = multiply(multiplied, factor);
        for (std::size_t k = column + 1; k < n; ++k)
          other[k] = subtract(multiply(factor, other[k]), multiply(leading, pivot[k]));
      }
    }
    return multiply(product, modular::inverse(multiplied));
  }

  static constexpr std::size_t kNone = static_cast<std::size_t>(-1);

  Colouring colouring_;
  std::size_t width_ = 0;           // of a form
  std::vector<std::size_t> form_;   // of each arc, an index into forms_ in widths
  std::vector<std::int32_t> uses_;  // of each arc, still to come
  std::vector<std::size_t> free_;   // forms no longer needed
  std::vector<Both> forms_;
  std::vector<Both> equations_;  // row by row
  std::vector<std::uint64_t> matrix_;
};

}  // namespace

std::uint64_t alexander_key(const GaussCode& closed) {
  static thread_local KeyDeterminant scratch;
  return scratch.of(closed);
}

std::uint64_t alexander_key(const Diagram& diagram) { return alexander_key(diagram.code()); }

std::uint64_t alexander_key_of(std::span<const std::int64_t> coefficients) {
  std::uint64_t at_t = 0;
  std::uint64_t at_inverse = 0;
  for (std::size_t k = coefficients.size(); k-- > 0;) {
    const std::uint64_t coefficient = modular::residue(coefficients[k]);
    at_t = add(multiply(at_t, kT), coefficient);
    at_inverse = add(multiply(at_inverse, kInverseT), coefficient);
  }
  return multiply(at_t, at_inverse);
}

}  // namespace korvex

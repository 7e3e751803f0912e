#include "alexander/division_free_determinant.hpp"

#include <algorithm>
#include <cstdint>
#include <utility>

namespace korvex::alexander {

namespace {

using Coefficients = std::vector<std::uint32_t>;

void subtract(Coefficients& from, const Coefficients& p) {
  if (from.size() < p.size()) from.resize(p.size(), 0);
  for (std::size_t k = 0; k < p.size(); ++k) from[k] -= p[k];
}

void add_product(Coefficients& to, const Coefficients& a, const Coefficients& b) {
  if (a.empty() || b.empty()) return;
  if (to.size() < a.size() + b.size() - 1) to.resize(a.size() + b.size() - 1, 0);
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < b.size(); ++j) to[i + j] += a[i] * b[j];
}

// Row by row; of the matrices of the iteration only the upper triangle is looked at.
class Square {
 public:
  explicit Square(std::size_t size) : size_(size), entries_(size * size) {}
  std::size_t size() const { return size_; }
  Coefficients& operator()(std::size_t row, std::size_t column) {
    return entries_[row * size_ + column];
  }
  const Coefficients& operator()(std::size_t row, std::size_t column) const {
    return entries_[row * size_ + column];
  }

 private:
  std::size_t size_;
  std::vector<Coefficients> entries_;
};

// Each diagonal entry becomes minus the sum of the diagonal entries below it.
void replace_diagonal(Square& x) {
  Coefficients below;
  for (std::size_t k = x.size(); k-- > 0;) {
    Coefficients entry = std::move(x(k, k));
    x(k, k) = below;
    subtract(below, entry);
  }
}

// The upper triangle of the product of `upper`, whose lower triangle counts as zero, and `a`.
Square product(const Square& upper, const Square& a) {
  Square result(a.size());
  for (std::size_t i = 0; i < a.size(); ++i) {
    for (std::size_t j = i; j < a.size(); ++j)
      for (std::size_t k = i; k < a.size(); ++k) add_product(result(i, j), upper(i, k), a(k, j));
  }
  return result;
}

// The matrix with every row multiplied by the power of t that makes it polynomials; `low` gets the
// sum of the powers, negated.
Square without_negative_powers(const std::vector<Laurent>& matrix, std::size_t size,
                               std::int64_t& low) {
  Square result(size);
  for (std::size_t i = 0; i < size; ++i) {
    std::int64_t lowest = 0;
    for (std::size_t j = 0; j < size; ++j) lowest = std::min(lowest, matrix[i * size + j].low);
    low += lowest;
    for (std::size_t j = 0; j < size; ++j) {
      const Laurent& entry = matrix[i * size + j];
      if (is_zero(entry)) continue;
      result(i, j).assign(static_cast<std::size_t>(entry.low - lowest), 0);
      result(i, j).insert(result(i, j).end(), entry.c, entry.c + entry.size);
    }
  }
  return result;
}

}  // namespace

Laurent division_free_determinant(const std::vector<Laurent>& matrix, std::size_t size,
                                  std::pmr::memory_resource& memory) {
  std::int64_t low = 0;
  const Square a = without_negative_powers(matrix, size, low);
  Square x = a;
  for (std::size_t step = 1; step < size; ++step) {
    replace_diagonal(x);
    x = product(x, a);
  }
  Coefficients& corner = x(0, 0);
  if (size % 2 == 0) subtract(corner, Coefficients(std::exchange(corner, {})));
  auto* const kept = static_cast<std::uint32_t*>(
      memory.allocate(corner.size() * sizeof(std::uint32_t), alignof(std::uint32_t)));
  std::copy(corner.begin(), corner.end(), kept);
  return trimmed(kept, corner.size(), low);
}

}  // namespace korvex::alexander

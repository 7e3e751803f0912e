// Fields of residues modulo primes below 2^62. Elements are numbers that the field alone
// understands: residue() and value() translate.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace korvex::modular {

__extension__ using Wide = unsigned __int128;

// Addition and subtraction of elements in 0..prime-1.
constexpr std::uint64_t add(std::uint64_t a, std::uint64_t b, std::uint64_t prime) {
  const std::uint64_t sum = a + b;
  return sum >= prime ? sum - prime : sum;
}
constexpr std::uint64_t subtract(std::uint64_t a, std::uint64_t b, std::uint64_t prime) {
  return a >= b ? a - b : a + prime - b;
}
constexpr std::uint64_t least_residue(std::int64_t a, std::uint64_t prime) {
  const std::int64_t rest = a % static_cast<std::int64_t>(prime);
  return rest < 0 ? static_cast<std::uint64_t>(rest) + prime : static_cast<std::uint64_t>(rest);
}

template <class Field>
constexpr std::uint64_t power(const Field& field, std::uint64_t base, std::uint64_t exponent) {
  std::uint64_t result = field.one();
  for (; exponent > 0; exponent >>= 1) {
    if (exponent & 1) result = field.multiply(result, base);
    base = field.multiply(base, base);
  }
  return result;
}

// Of an element other than 0.
template <class Field>
constexpr std::uint64_t inverse(const Field& field, std::uint64_t a) {
  return power(field, a, field.prime() - 2);
}

// The Mersenne prime 2^61 - 1.
class MersenneField {
 public:
  static constexpr std::uint64_t prime() { return (std::uint64_t{1} << 61) - 1; }
  static constexpr std::uint64_t one() { return 1; }
  static constexpr std::uint64_t add(std::uint64_t a, std::uint64_t b) {
    return modular::add(a, b, prime());
  }
  static constexpr std::uint64_t subtract(std::uint64_t a, std::uint64_t b) {
    return modular::subtract(a, b, prime());
  }
  static constexpr std::uint64_t multiply(std::uint64_t a, std::uint64_t b) {
    const Wide product = static_cast<Wide>(a) * b;
    return add(static_cast<std::uint64_t>(product) & prime(),
               static_cast<std::uint64_t>(product >> 61));
  }
  static constexpr std::uint64_t inverse(std::uint64_t a) {
    return modular::inverse(MersenneField(), a);
  }
  static constexpr std::uint64_t residue(std::int64_t a) { return least_residue(a, prime()); }
  static constexpr bool is_zero(std::uint64_t a) { return a == 0; }
  static constexpr bool has_inverse(std::uint64_t a) { return a != 0; }
};

// Any odd prime below 2^62 (P. L. Montgomery, Math. Comp. 44, 519 (1985)).
class MontgomeryField {
 public:
  explicit constexpr MontgomeryField(std::uint64_t prime) : prime_(prime) {
    std::uint64_t inverse = prime;  // Newton's iteration modulo 2^64
    for (int k = 0; k < 5; ++k) inverse *= 2 - prime * inverse;
    minus_inverse_ = 0 - inverse;
    const auto r = static_cast<std::uint64_t>((Wide{1} << 64) % prime);
    one_ = r;
    r_squared_ = static_cast<std::uint64_t>(static_cast<Wide>(r) * r % prime);
  }

  constexpr std::uint64_t prime() const { return prime_; }
  constexpr std::uint64_t one() const { return one_; }
  constexpr std::uint64_t add(std::uint64_t a, std::uint64_t b) const {
    return modular::add(a, b, prime_);
  }
  constexpr std::uint64_t subtract(std::uint64_t a, std::uint64_t b) const {
    return modular::subtract(a, b, prime_);
  }
  constexpr std::uint64_t multiply(std::uint64_t a, std::uint64_t b) const {
    const Wide product = static_cast<Wide>(a) * b;
    const std::uint64_t m = static_cast<std::uint64_t>(product) * minus_inverse_;
    const auto reduced =
        static_cast<std::uint64_t>((product + static_cast<Wide>(m) * prime_) >> 64);
    return reduced >= prime_ ? reduced - prime_ : reduced;
  }
  constexpr std::uint64_t inverse(std::uint64_t a) const { return modular::inverse(*this, a); }
  constexpr std::uint64_t residue(std::int64_t a) const {
    return multiply(least_residue(a, prime_), r_squared_);
  }
  static constexpr bool is_zero(std::uint64_t a) { return a == 0; }
  static constexpr bool has_inverse(std::uint64_t a) { return a != 0; }
  // In 0..prime-1.
  constexpr std::uint64_t value(std::uint64_t element) const { return multiply(element, 1); }

 private:
  std::uint64_t prime_;
  std::uint64_t minus_inverse_ = 0;
  std::uint64_t one_ = 0;
  std::uint64_t r_squared_ = 0;
};

// The determinant of an n x n matrix, row by row, which is used up. Rows are multiplied up instead
// of divided, so that one inverse in the end serves all. O(n^3).
template <class Field>
std::uint64_t determinant(const Field& field, std::span<std::uint64_t> matrix, std::size_t n) {
  std::uint64_t product = field.one();
  std::uint64_t multiplied = field.one();
  for (std::size_t column = 0; column < n; ++column) {
    std::size_t pivot_row = column;
    while (pivot_row < n && matrix[pivot_row * n + column] == 0) ++pivot_row;
    if (pivot_row == n) return 0;
    std::uint64_t* const pivot = &matrix[column * n];
    if (pivot_row != column) {
      for (std::size_t k = column; k < n; ++k) std::swap(pivot[k], matrix[pivot_row * n + k]);
      product = field.subtract(0, product);
    }
    const std::uint64_t factor = pivot[column];
    product = field.multiply(product, factor);
    for (std::size_t row = column + 1; row < n; ++row) {
      std::uint64_t* const other = &matrix[row * n];
      const std::uint64_t leading = other[column];
      if (leading == 0) continue;
      multiplied = field.multiply(multiplied, factor);
      for (std::size_t k = column + 1; k < n; ++k)
        other[k] =
            field.subtract(field.multiply(factor, other[k]), field.multiply(leading, pivot[k]));
    }
  }
  return n < 2 ? product : field.multiply(product, inverse(field, multiplied));
}

}  // namespace korvex::modular

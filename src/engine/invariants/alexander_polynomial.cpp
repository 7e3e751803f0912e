// The Alexander polynomial over the integers.
//
// D is a polynomial in z = t - 2 + 1/t of a degree that a Seifert surface of the diagram bounds.
// Its values at enough z modulo a prime give it modulo that prime, and enough primes give it over
// the integers: coefficients are no larger than the number of states of the diagram, which is the
// number of spanning trees of its chequerboard graph.
#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "engine/diagram/code_reduction.hpp"
#include "engine/diagram/course.hpp"
#include "engine/diagram/pass_moves.hpp"
#include "engine/diagram/place.hpp"
#include "engine/diagram/plane_diagram.hpp"
#include "engine/diagram/prime_parts.hpp"
#include "engine/invariants/arc_colouring.hpp"
#include "engine/invariants/integer.hpp"
#include "engine/invariants/modular.hpp"
#include "engine/invariants/of_codes.hpp"
#include "engine/invariants/seed_elimination.hpp"
#include "engine/run/parallel.hpp"
#include "korvex/alexander.hpp"

namespace korvex {
namespace {

using modular::MontgomeryField;

// Miller and Rabin's test; with these bases it is exact below 2^64 (J. Sorenson and J. Webster,
// Math. Comp. 86, 985 (2017)).
bool is_prime(std::uint64_t odd) {
  const MontgomeryField field(odd);
  const std::uint64_t minus_one = field.subtract(0, field.one());
  int twos = 0;
  while (((odd - 1) >> twos & 1) == 0) ++twos;
  for (const std::int64_t base : {2, 3, 5, 7, 11, 13, 17, 19, 23, 29, 31, 37}) {
    std::uint64_t x = power(field, field.residue(base), (odd - 1) >> twos);
    bool passed = x == field.one() || x == minus_one;
    for (int k = 1; k < twos && !passed; ++k) {
      x = field.multiply(x, x);
      passed = x == minus_one;
    }
    if (!passed) return false;
  }
  return true;
}

// The next prime below, of 62 bits.
std::uint64_t prime_below(std::uint64_t bound) {
  std::uint64_t candidate = (bound - 2) | 1;
  while (!is_prime(candidate)) candidate -= 2;
  return candidate;
}

// That below 2^62, with which every polynomial begins.
std::uint64_t first_prime() {
  static const std::uint64_t prime = prime_below(std::uint64_t{1} << 62);
  return prime;
}

std::size_t seifert_circles(const GaussCode& code) {
  const Course course(code.size());
  std::vector<bool> seen(code.size(), false);
  std::size_t circles = 0;
  for (std::size_t start = 0; start < code.size(); ++start) {
    if (!seen[start]) ++circles;
    for (std::size_t strand = start; !seen[strand];) {
      seen[strand] = true;
      strand = course.strand_after(at(code[strand].mate));
    }
  }
  return circles;
}

// Faces of the colour that has fewer.
std::size_t fewer_faces(const GaussCode& code) {
  PlaneDiagram diagram;
  diagram.draw(code, Curve::kClosed);
  std::vector<bool> white(diagram.faces(), false);
  for (std::size_t strand = 0; strand < code.size(); ++strand)
    white[at(diagram.face_left_of(2 * strand + strand % 2))] = true;
  const auto count = static_cast<std::size_t>(std::count(white.begin(), white.end(), true));
  return std::min(count, diagram.faces() - count);
}

// A graph with v vertices and e edges has at most (2e / (v-1))^(v-1) / v spanning trees (G. R.
// Grimmett, Discrete Math. 16, 323 (1976)), each a state and a term +-t^k of the polynomial (L. H.
// Kauffman, Formal Knot Theory, 1983).
double bits_of_coefficients(const GaussCode& code) {
  const auto others = static_cast<double>(fewer_faces(code)) - 1;
  if (others < 1) return 2;
  return others * std::log2(static_cast<double>(code.size()) / others) + 2;
}

// The polynomial modulo primes, by values.
class Evaluation {
 public:
  Evaluation(const GaussCode& code, const Run& run) : run_(run) {
    colouring_.plan(code);
    genus_ = (code.size() / 2 + 1 - seifert_circles(code)) / 2;
    find_unit();
  }

  std::size_t genus() const { return genus_; }

  // Coefficients of the powers of z from 0 to genus(), in 0..prime-1.
  std::vector<std::uint64_t> conway(std::uint64_t prime) const {
    const MontgomeryField field(prime);
    Elimination elimination(field);
    std::vector<std::uint64_t> z{0};
    std::vector<std::uint64_t> differences{field.one()};
    const std::uint64_t generator = field.residue(kGenerator);
    std::uint64_t t = field.one();
    for (std::size_t k = 0; k < genus_; ++k) {
      throw_if_cancelled(run_);
      t = field.multiply(t, generator);
      const std::uint64_t inverse_t = inverse(field, t);
      z.push_back(field.subtract(field.add(t, inverse_t), field.residue(2)));
      const std::uint64_t back =
          power(field, shift_ > 0 ? inverse_t : t, static_cast<std::uint64_t>(std::abs(shift_)));
      std::uint64_t value = field.multiply(determinant(elimination, field, t, inverse_t), back);
      if (negative_) value = field.subtract(0, value);
      add_difference(field, z, differences, value);
    }
    return in_powers(field, z, differences);
  }

 private:
  // Powers of it are all other modulo a prime of 62 bits, as far as they are used here; were they
  // not, the interpolation would divide by 0 and conway() would not be the same for all primes.
  static constexpr std::int64_t kGenerator = 1'000'003;

  using Elimination = SeedElimination<std::uint64_t, MontgomeryField>;

  std::uint64_t determinant(Elimination& elimination, const MontgomeryField& field, std::uint64_t t,
                            std::uint64_t inverse_t) const {
    if (elimination.take(colouring_, t, inverse_t, run_) != Elimination::Outcome::kDone) return 0;
    return field.multiply(elimination.numerator(), inverse(field, elimination.denominator()));
  }

  // The determinant is the polynomial times sign t^shift, the same for every t.
  void find_unit() {
    const MontgomeryField field(first_prime());
    Elimination elimination(field);
    negative_ = determinant(elimination, field, field.one(), field.one()) != field.one();
    for (std::int64_t base = kGenerator + 1;; ++base) {
      const std::uint64_t t = field.residue(base);
      const std::uint64_t inverse_t = inverse(field, t);
      const std::uint64_t at_t = determinant(elimination, field, t, inverse_t);
      if (at_t == 0) continue;
      // at_t / at_inverse is t^(2 shift)
      const std::uint64_t at_inverse = determinant(elimination, field, inverse_t, t);
      std::uint64_t up = at_inverse;
      std::uint64_t down = at_inverse;
      const std::uint64_t square = field.multiply(t, t);
      const std::uint64_t inverse_square = field.multiply(inverse_t, inverse_t);
      for (shift_ = 0; up != at_t && down != at_t; ++shift_) {
        up = field.multiply(up, square);
        down = field.multiply(down, inverse_square);
      }
      if (up != at_t) shift_ = -shift_;
      return;
    }
  }

  // Newton's divided differences.
  static void add_difference(const MontgomeryField& field, const std::vector<std::uint64_t>& z,
                             std::vector<std::uint64_t>& differences, std::uint64_t value) {
    const std::uint64_t here = z.back();
    std::uint64_t interpolated = 0;
    std::uint64_t product = field.one();
    for (std::size_t k = 0; k < differences.size(); ++k) {
      interpolated = field.add(interpolated, field.multiply(differences[k], product));
      product = field.multiply(product, field.subtract(here, z[k]));
    }
    differences.push_back(
        field.multiply(field.subtract(value, interpolated), inverse(field, product)));
  }

  static std::vector<std::uint64_t> in_powers(const MontgomeryField& field,
                                              const std::vector<std::uint64_t>& z,
                                              const std::vector<std::uint64_t>& differences) {
    std::vector<std::uint64_t> powers(differences.size(), 0);
    for (std::size_t k = differences.size(); k-- > 0;) {
      for (std::size_t power = powers.size() - 1; power > 0; --power)
        powers[power] = field.subtract(powers[power - 1], field.multiply(powers[power], z[k]));
      powers[0] = field.subtract(differences[k], field.multiply(powers[0], z[k]));
    }
    for (std::uint64_t& coefficient : powers) coefficient = field.value(coefficient);
    return powers;
  }

  const Run& run_;
  ArcColouring colouring_;
  std::size_t genus_ = 0;
  std::int64_t shift_ = 0;
  bool negative_ = false;
};

// Coefficients of t^0 to t^genus of a polynomial in z = t - 2 + 1/t, modulo a prime: half of it,
// the rest is symmetric.
std::vector<std::uint64_t> upper_half(const std::vector<std::uint64_t>& conway,
                                      std::uint64_t prime) {
  // Horner's rule; a symmetric polynomial times z is a second difference.
  std::vector<std::uint64_t> half(conway.size() + 1, 0);
  std::vector<std::uint64_t> next(half.size());
  const auto entry = [&](std::size_t k) { return k < half.size() ? half[k] : 0; };
  for (std::size_t k = conway.size(); k-- > 0;) {
    for (std::size_t power = 0; power < half.size(); ++power) {
      const std::uint64_t lower = power == 0 ? entry(1) : half[power - 1];
      next[power] = modular::subtract(modular::add(lower, entry(power + 1), prime),
                                      modular::add(half[power], half[power], prime), prime);
    }
    next[0] = modular::add(next[0], conway[k], prime);
    half.swap(next);
  }
  half.pop_back();
  return half;
}

std::string decimal(Integer number) {
  const bool negative = number < 0;
  if (negative) number = -number;
  std::string digits;  // the last first
  do {
    digits += static_cast<char>('0' + static_cast<int>(number % 10));
    number /= 10;
  } while (number != 0);
  if (negative) digits += '-';
  return {digits.rbegin(), digits.rend()};
}

// Adds what is known modulo one prime more to numbers known modulo `modulus`.
void lift(std::vector<Integer>& numbers, Integer& modulus,
          const std::vector<std::uint64_t>& residues, std::uint64_t prime) {
  const MontgomeryField field(prime);
  const auto element = [&](const Integer& number) {
    return field.residue(static_cast<std::int64_t>(static_cast<std::uint64_t>(number % prime)));
  };
  const std::uint64_t inverse_modulus = inverse(field, element(modulus));
  for (std::size_t k = 0; k < numbers.size(); ++k) {
    const std::uint64_t wanted = field.residue(static_cast<std::int64_t>(residues[k]));
    const std::uint64_t missing =
        field.multiply(field.subtract(wanted, element(numbers[k])), inverse_modulus);
    numbers[k] += modulus * field.value(missing);
  }
  modulus *= prime;
}

// Coefficients of t^0 to t^degree of one part of a diagram.
std::vector<Integer> half_of_part(const GaussCode& part, const Run& run) {
  const Evaluation evaluation(part, run);
  const double bits = bits_of_coefficients(part) + 1;
  std::vector<std::uint64_t> primes;
  for (double known = 0; known < bits; known += 61.99)
    primes.push_back(primes.empty() ? first_prime() : prime_below(primes.back()));
  std::vector<std::vector<std::uint64_t>> residues(primes.size());
  for_each_piece(run, primes.size(), [&](std::size_t k, unsigned) {
    residues[k] = upper_half(evaluation.conway(primes[k]), primes[k]);
  });
  std::vector<Integer> half(evaluation.genus() + 1, 0);
  Integer modulus = 1;
  for (std::size_t k = 0; k < primes.size(); ++k) lift(half, modulus, residues[k], primes[k]);
  for (Integer& coefficient : half)
    if (2 * coefficient > modulus) coefficient -= modulus;
  while (half.size() > 1 && half.back() == 0) half.pop_back();
  return half;
}

// All coefficients, lowest power first.
std::vector<Integer> mirrored(const std::vector<Integer>& half) {
  std::vector<Integer> all(half.rbegin(), half.rend());
  all.insert(all.end(), half.begin() + 1, half.end());
  return all;
}

std::vector<Integer> product(const std::vector<Integer>& a, const std::vector<Integer>& b) {
  std::vector<Integer> result(a.size() + b.size() - 1, 0);
  for (std::size_t i = 0; i < a.size(); ++i)
    for (std::size_t j = 0; j < b.size(); ++j) result[i + j] += a[i] * b[j];
  return result;
}

}  // namespace

AlexanderPolynomial alexander_polynomial(const GaussCode& closed, const Run& run) {
  GaussCode simplified = closed;
  CodeReduction reduction;
  PassMoves().simplify(simplified, reduction, run);
  Run quiet = run;
  quiet.progress = {};
  // The polynomial of a connected sum is the product of those of its parts.
  std::vector<Integer> all{1};
  for (const GaussCode& part : prime_parts(simplified, run))
    all = product(all, mirrored(half_of_part(part, quiet)));
  const Integer sign = all.front() < 0 ? -1 : 1;
  AlexanderPolynomial polynomial;
  for (const Integer& coefficient : all)
    polynomial.coefficients.push_back(decimal(sign * coefficient));
  return polynomial;
}

AlexanderPolynomial alexander_polynomial(const Diagram& diagram, const Run& run) {
  return alexander_polynomial(diagram.code(), run);
}

std::optional<std::vector<std::int64_t>> AlexanderPolynomial::small_coefficients() const {
  std::vector<std::int64_t> numbers;
  for (const std::string& text : coefficients) {
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc()) return std::nullopt;
    numbers.push_back(number);
  }
  return numbers;
}

std::string AlexanderPolynomial::determinant() const {
  Integer sum = 0;
  for (std::size_t k = 0; k < coefficients.size(); ++k) {
    const Integer coefficient(coefficients[k]);
    sum += k % 2 == 0 ? coefficient : Integer(-coefficient);
  }
  return decimal(sum < 0 ? Integer(-sum) : sum);
}

}  // namespace korvex

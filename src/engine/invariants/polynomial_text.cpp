// Mirror images, products and text of the Jones and the HOMFLY-PT polynomial.
#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <string>
#include <utility>

#include "korvex/error.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"

namespace korvex {
namespace {

// Sums coefficient products by exponents.
template <class Exponents>
class Products {
 public:
  void add(const Exponents& exponents, std::int64_t p, std::int64_t q) {
    std::int64_t product = 0;
    std::int64_t& sum = sums_[exponents];
    if (__builtin_mul_overflow(p, q, &product) || __builtin_add_overflow(sum, product, &sum))
      throw Error(ErrorCode::kInvalidArgument,
                  "a coefficient of the product of two polynomials does not fit into 64 bits");
  }
  const std::map<Exponents, std::int64_t>& sums() const { return sums_; }

 private:
  std::map<Exponents, std::int64_t> sums_;
};

class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool at_end() {
    while (next_ < text_.size() && text_[next_] == ' ') ++next_;
    return next_ == text_.size();
  }

  template <class Number>
  Number number() {
    Number value = 0;
    const char* const begin = text_.data() + next_;
    const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value);
    if (error != std::errc()) fail();
    next_ += static_cast<std::size_t>(end - begin);
    return value;
  }

  void expect(char character) {
    if (next_ == text_.size() || text_[next_] != character) fail();
    ++next_;
  }

 private:
  [[noreturn]] void fail() const {
    throw Error(ErrorCode::kBadInput, "character " + std::to_string(next_ + 1) +
                                          " of the polynomial '" + std::string(text_) +
                                          "' is not as expected");
  }

  std::string_view text_;
  std::size_t next_ = 0;
};

}  // namespace

JonesPolynomial mirror(const JonesPolynomial& polynomial) {
  JonesPolynomial image(polynomial.rbegin(), polynomial.rend());
  for (JonesTerm& term : image) term.exponent = -term.exponent;
  return image;
}

JonesPolynomial product(const JonesPolynomial& p, const JonesPolynomial& q) {
  Products<int> products;
  for (const JonesTerm& a : p)
    for (const JonesTerm& b : q)
      products.add(a.exponent + b.exponent, a.coefficient, b.coefficient);
  JonesPolynomial result;
  for (const auto& [exponent, coefficient] : products.sums())
    if (coefficient != 0) result.push_back({exponent, coefficient});
  return result;
}

std::string text_of(const JonesPolynomial& polynomial) {
  std::string text;
  for (const JonesTerm& term : polynomial) {
    if (!text.empty()) text += ' ';
    text += std::to_string(term.exponent) + ':' + std::to_string(term.coefficient);
  }
  return text;
}

JonesPolynomial jones_of_text(std::string_view text) {
  Reader reader(text);
  JonesPolynomial polynomial;
  while (!reader.at_end()) {
    const int exponent = reader.number<int>();
    reader.expect(':');
    polynomial.push_back({exponent, reader.number<std::int64_t>()});
  }
  return polynomial;
}

HomflyPolynomial mirror(const HomflyPolynomial& polynomial) {
  HomflyPolynomial image = polynomial;
  for (HomflyTerm& term : image) term.a = -term.a;
  std::stable_sort(image.begin(), image.end(),
                   [](const HomflyTerm& p, const HomflyTerm& q) { return p.a < q.a; });
  return image;
}

HomflyPolynomial product(const HomflyPolynomial& p, const HomflyPolynomial& q) {
  Products<std::pair<int, int>> products;
  for (const HomflyTerm& a : p)
    for (const HomflyTerm& b : q)
      products.add({a.a + b.a, a.z + b.z}, a.coefficient, b.coefficient);
  HomflyPolynomial result;
  for (const auto& [exponents, coefficient] : products.sums())
    if (coefficient != 0) result.push_back({exponents.first, exponents.second, coefficient});
  return result;
}

std::string text_of(const HomflyPolynomial& polynomial) {
  std::string text;
  for (const HomflyTerm& term : polynomial) {
    if (!text.empty()) text += ' ';
    text += '(' + std::to_string(term.a) + ',' + std::to_string(term.z) +
            "):" + std::to_string(term.coefficient);
  }
  return text;
}

HomflyPolynomial homfly_of_text(std::string_view text) {
  Reader reader(text);
  HomflyPolynomial polynomial;
  while (!reader.at_end()) {
    reader.expect('(');
    const int a = reader.number<int>();
    reader.expect(',');
    const int z = reader.number<int>();
    reader.expect(')');
    reader.expect(':');
    polynomial.push_back({a, z, reader.number<std::int64_t>()});
  }
  return polynomial;
}

}  // namespace korvex

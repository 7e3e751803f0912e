#include "korvex/knot_name.hpp"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <utility>

#include "engine/catalogue/knot_name_text.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

using Prime = KnotName::Prime;
using Sum = KnotName::Sum;
using Choice = KnotName::Choice;

bool is_known(const Prime& prime) { return prime.unknown.empty(); }

// By the places in the tables, whatever the hands.
std::strong_ordering compare_plain(const Prime& a, const Prime& b) {
  if (is_known(a) != is_known(b)) return is_known(b) <=> is_known(a);
  if (const auto order = a.crossings <=> b.crossings; order != 0) return order;
  if (const auto order = a.table <=> b.table; order != 0) return order;
  if (const auto order = a.number <=> b.number; order != 0) return order;
  return a.unknown.compare(b.unknown) <=> 0;
}

bool prime_before(const Prime& a, const Prime& b) {
  const auto order = compare_plain(a, b);
  return order != 0 ? order < 0 : a.hand < b.hand;
}

void reflect(Prime& prime) {
  if (prime.hand != Hand::kNone)
    prime.hand = prime.hand == Hand::kRight ? Hand::kLeft : Hand::kRight;
}

void reflect(Sum& sum) {
  for (Prime& prime : sum) reflect(prime);
  std::sort(sum.begin(), sum.end(), prime_before);
}

// A knot stands before its mirror image when more of its factors are right-handed or, with as many
// of either hand, when the first with a hand is.
bool is_image(const Sum& sum) {
  int balance = 0;
  Hand first = Hand::kNone;
  for (const Prime& prime : sum) {
    if (prime.hand == Hand::kNone) continue;
    if (first == Hand::kNone) first = prime.hand;
    balance += prime.hand == Hand::kRight ? 1 : -1;
  }
  return balance < 0 || (balance == 0 && first == Hand::kLeft);
}

// Of sums that differ in hands alone: those of the last factors weigh most, and a knot is followed
// by its mirror image.
std::strong_ordering compare_hands(Sum a, Sum b) {
  const bool images[] = {is_image(a), is_image(b)};
  if (images[0]) reflect(a);
  if (images[1]) reflect(b);
  for (std::size_t k = a.size(); k-- > 0;)
    if (a[k].hand != b[k].hand) return a[k].hand <=> b[k].hand;
  return images[0] <=> images[1];
}

std::int64_t crossings_of(const Sum& sum) {
  std::int64_t crossings = 0;
  for (const Prime& prime : sum) crossings += prime.crossings;
  return crossings;
}

bool is_known(const Sum& sum) { return sum.empty() || is_known(sum.back()); }

std::strong_ordering compare(const Sum& a, const Sum& b) {
  if (is_known(a) != is_known(b)) return is_known(b) <=> is_known(a);
  if (const auto order = crossings_of(a) <=> crossings_of(b); order != 0) return order;
  if (const auto order = (a.size() > 1) <=> (b.size() > 1); order != 0) return order;
  const auto order =
      std::lexicographical_compare_three_way(a.begin(), a.end(), b.begin(), b.end(), compare_plain);
  return order != 0 ? order : compare_hands(a, b);
}

std::strong_ordering compare(const Choice& a, const Choice& b) {
  return std::lexicographical_compare_three_way(
      a.begin(), a.end(), b.begin(), b.end(),
      [](const Sum& left, const Sum& right) { return compare(left, right); });
}

std::strong_ordering compare(const std::vector<Choice>& a, const std::vector<Choice>& b) {
  return std::lexicographical_compare_three_way(
      a.begin(), a.end(), b.begin(), b.end(),
      [](const Choice& left, const Choice& right) { return compare(left, right); });
}

bool is_known(const Choice& choice) {
  return std::all_of(choice.begin(), choice.end(), [](const Sum& sum) { return is_known(sum); });
}

// Everything in order, and what is no choice taken apart.
std::vector<Choice> in_order(std::vector<Choice> factors) {
  std::vector<Choice> ordered;
  for (Choice& choice : factors) {
    for (Sum& sum : choice) std::sort(sum.begin(), sum.end(), prime_before);
    std::sort(choice.begin(), choice.end(),
              [](const Sum& a, const Sum& b) { return compare(a, b) < 0; });
    choice.erase(std::unique(choice.begin(), choice.end()), choice.end());
    if (choice.size() > 1)
      ordered.push_back(std::move(choice));
    else
      for (Prime& prime : choice.front()) ordered.push_back({{std::move(prime)}});
  }
  std::sort(ordered.begin(), ordered.end(),
            [](const Choice& a, const Choice& b) { return compare(a, b) < 0; });
  return ordered;
}

// The sum of the first of each choice.
Sum leading(const std::vector<Choice>& factors) {
  Sum sum;
  for (const Choice& choice : factors)
    sum.insert(sum.end(), choice.front().begin(), choice.front().end());
  std::sort(sum.begin(), sum.end(), prime_before);
  return sum;
}

}  // namespace

KnotName::KnotName(std::vector<Choice> factors) : factors_(in_order(std::move(factors))) {}

std::optional<KnotName> KnotName::parse(std::string_view text) {
  auto factors = read_knot_name(text);
  if (!factors) return std::nullopt;
  return KnotName(*std::move(factors));
}

std::string KnotName::text() const { return knot_name_text(factors_); }

KnotName KnotName::sum(std::span<const KnotName> names) {
  std::vector<Choice> factors;
  for (const KnotName& name : names)
    factors.insert(factors.end(), name.factors_.begin(), name.factors_.end());
  return KnotName(std::move(factors));
}

KnotName KnotName::one_of(std::span<const KnotName> names) {
  if (names.empty())
    throw Error(ErrorCode::kInvalidArgument, "a choice between knots needs one at least");
  Choice choice;
  for (const KnotName& name : names) {
    if (!name.is_choice()) {
      choice.push_back(leading(name.factors_));
    } else if (name.factors_.size() == 1) {
      choice.insert(choice.end(), name.factors_[0].begin(), name.factors_[0].end());
    } else {
      throw Error(ErrorCode::kInvalidArgument,
                  "a choice between knots cannot hold the sum '" + name.text() +
                      "', whose factors are not all decided; give it as one name for each knot");
    }
  }
  return KnotName({std::move(choice)});
}

KnotName KnotName::unknown(std::uint64_t alexander_key, std::span<const std::string> coefficients) {
  constexpr std::size_t kLongest = 40;
  Prime prime;
  for (const std::string& coefficient : coefficients) {
    if (!prime.unknown.empty() && coefficient[0] != '-') prime.unknown += '+';
    prime.unknown += coefficient;
    if (prime.unknown.size() > kLongest) break;
  }
  if (prime.unknown.empty() || prime.unknown.size() > kLongest) {
    char digits[16];
    const auto end = std::to_chars(std::begin(digits), std::end(digits), alexander_key, 16);
    prime.unknown = std::string("key:").append(digits, end.ptr);
  }
  return KnotName({{{std::move(prime)}}});
}

bool KnotName::is_prime() const {
  return factors_.size() == 1 && !is_choice() && korvex::is_known(factors_[0]);
}

bool KnotName::is_choice() const {
  return std::any_of(factors_.begin(), factors_.end(),
                     [](const Choice& choice) { return choice.size() > 1; });
}

bool KnotName::is_known() const {
  return std::all_of(factors_.begin(), factors_.end(),
                     [](const Choice& choice) { return korvex::is_known(choice); });
}

std::vector<KnotName> KnotName::factors() const {
  std::vector<KnotName> names;
  for (const Choice& choice : factors_) names.push_back(KnotName({choice}));
  return names;
}

std::vector<KnotName> KnotName::choices() const {
  if (factors_.size() != 1) return {*this};
  std::vector<KnotName> names;
  for (const Sum& sum : factors_[0]) names.push_back(KnotName({{sum}}));
  return names;
}

std::optional<std::int64_t> KnotName::crossings() const {
  if (!is_known()) return std::nullopt;
  std::int64_t crossings = 0;
  for (const Choice& choice : factors_) crossings += crossings_of(choice.front());
  return crossings;
}

Hand KnotName::hand() const { return is_prime() ? factors_[0][0][0].hand : Hand::kNone; }

KnotName KnotName::mirror() const {
  std::vector<Choice> factors = factors_;
  for (Choice& choice : factors)
    for (Sum& sum : choice) reflect(sum);
  return KnotName(std::move(factors));
}

KnotName KnotName::plain() const {
  std::vector<Choice> factors = factors_;
  for (Choice& choice : factors)
    for (Sum& sum : choice)
      for (Prime& prime : sum) prime.hand = Hand::kNone;
  return KnotName(std::move(factors));
}

bool KnotName::covers(const KnotName& other) const {
  if (is_choice() || other.is_choice()) return *this == other;
  const Sum own = leading(factors_);
  const Sum others = leading(other.factors_);
  const auto same_place = [](const Prime& a, const Prime& b) { return compare_plain(a, b) == 0; };
  if (!std::equal(own.begin(), own.end(), others.begin(), others.end(), same_place)) return false;
  // Each factor with a hand needs one that is alike; what is left has lost its hand.
  return std::all_of(own.begin(), own.end(), [&](const Prime& prime) {
    return prime.hand == Hand::kNone || std::count(own.begin(), own.end(), prime) <=
                                            std::count(others.begin(), others.end(), prime);
  });
}

std::strong_ordering KnotName::operator<=>(const KnotName& other) const {
  if (is_known() != other.is_known()) return other.is_known() <=> is_known();
  const auto order = compare(leading(factors_), leading(other.factors_));
  return order != 0 ? order : compare(factors_, other.factors_);
}

}  // namespace korvex

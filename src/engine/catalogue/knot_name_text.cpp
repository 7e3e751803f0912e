#include "engine/catalogue/knot_name_text.hpp"

#include <algorithm>
#include <charconv>
#include <utility>

namespace korvex {
namespace {

using Prime = KnotName::Prime;
using Sum = KnotName::Sum;
using Choice = KnotName::Choice;

// Longer ones are no crossing numbers and no places in a table.
constexpr std::size_t kMostDigits = 9;

bool is_digit(char c) { return c >= '0' && c <= '9'; }

// Takes a number without leading zeros off the text; 0 where none stands there.
std::int32_t take_number(std::string_view& text) {
  std::int32_t number = 0;
  const auto digits = text.substr(0, kMostDigits);
  if (digits.empty() || !is_digit(digits[0]) || digits[0] == '0') return 0;
  const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number).ptr;
  text.remove_prefix(static_cast<std::size_t>(end - digits.data()));
  return number;
}

bool is_key(std::string_view text) {
  const auto is_hexadecimal = [](char c) { return is_digit(c) || (c >= 'a' && c <= 'f'); };
  return !text.empty() && text.size() <= 16 && (text[0] != '0' || text == "0") &&
         std::all_of(text.begin(), text.end(), is_hexadecimal);
}

// Whether the text is numbers with signs between them, as 1-5+7-5+1.
bool is_polynomial(std::string_view text) {
  bool is_first = true;
  while (is_first || !text.empty()) {
    const bool is_negative = !is_first && text[0] == '-';
    if (!is_first && text[0] != '-' && text[0] != '+') return false;
    if (!is_first) text.remove_prefix(1);
    const auto digits = std::min(text.size(), text.find_first_of("+-"));
    const std::string_view number = text.substr(0, digits);
    if (number.empty() || !std::all_of(number.begin(), number.end(), is_digit)) return false;
    if (number[0] == '0' && (number.size() > 1 || is_negative || is_first)) return false;
    text.remove_prefix(digits);
    is_first = false;
  }
  return true;
}

std::optional<Prime> read_unknown(std::string_view text) {
  constexpr std::string_view kKey = "key:";
  const bool is_name =
      text.starts_with(kKey) ? is_key(text.substr(kKey.size())) : is_polynomial(text);
  if (!is_name) return std::nullopt;
  Prime prime;
  prime.unknown = text;
  return prime;
}

std::optional<Prime> read_prime(std::string_view text) {
  if (text.starts_with('?')) return read_unknown(text.substr(1));
  constexpr std::int32_t kFewestCrossings = 3;
  Prime prime;
  if (text.starts_with('+') || text.starts_with('-')) {
    prime.hand = text[0] == '+' ? Hand::kRight : Hand::kLeft;
    text.remove_prefix(1);
  }
  prime.crossings = take_number(text);
  if (prime.crossings < kFewestCrossings) return std::nullopt;
  if (text.starts_with('a') || text.starts_with('n')) {
    prime.table = text[0];
    text.remove_prefix(1);
  }
  if (!text.starts_with('_')) return std::nullopt;
  text.remove_prefix(1);
  prime.number = take_number(text);
  if (prime.number == 0 || !text.empty()) return std::nullopt;
  return prime;
}

// Takes the text up to the separator, and that with it; nothing is left after the last part.
std::string_view take_part(std::optional<std::string_view>& text, char separator) {
  const std::string_view whole = *text;
  const std::size_t end = whole.find(separator);
  text.reset();
  if (end != std::string_view::npos) text = whole.substr(end + 1);
  return whole.substr(0, end);
}

std::optional<Sum> read_sum(std::string_view text) {
  Sum sum;
  for (std::optional<std::string_view> rest = text; rest;) {
    const std::string_view factor = take_part(rest, '#');
    if (factor == "0_1") continue;
    auto prime = read_prime(factor);
    if (!prime) return std::nullopt;
    sum.push_back(*std::move(prime));
  }
  return sum;
}

std::optional<Choice> read_choice(std::string_view text) {
  Choice choice;
  for (std::optional<std::string_view> rest = text; rest;) {
    auto sum = read_sum(take_part(rest, '|'));
    if (!sum) return std::nullopt;
    choice.push_back(*std::move(sum));
  }
  return choice;
}

// The choice in the brackets that the text begins with, which are taken off together with the `#`
// that follows; what is left is nothing where none does.
std::optional<Choice> take_brackets(std::optional<std::string_view>& text) {
  const std::string_view whole = *text;
  const std::size_t close = whole.find(')');
  if (close == std::string_view::npos) return std::nullopt;
  const std::string_view after = whole.substr(close + 1);
  text.reset();
  if (after.starts_with('#')) text = after.substr(1);
  if (!after.empty() && !text) return std::nullopt;
  return read_choice(whole.substr(1, close - 1));
}

void append(std::string& text, const Prime& prime) {
  if (!prime.unknown.empty()) {
    text.append(1, '?').append(prime.unknown);
    return;
  }
  if (prime.hand != Hand::kNone) text += prime.hand == Hand::kRight ? '+' : '-';
  text += std::to_string(prime.crossings);
  if (prime.table != '_') text += prime.table;
  text.append(1, '_').append(std::to_string(prime.number));
}

void append(std::string& text, const Sum& sum) {
  if (sum.empty()) text += "0_1";
  for (std::size_t k = 0; k < sum.size(); ++k) {
    if (k > 0) text += '#';
    append(text, sum[k]);
  }
}

void append(std::string& text, const Choice& choice) {
  for (std::size_t k = 0; k < choice.size(); ++k) {
    if (k > 0) text += '|';
    append(text, choice[k]);
  }
}

}  // namespace

std::optional<std::vector<Choice>> read_knot_name(std::string_view text) {
  std::vector<Choice> factors;
  if (text.find('(') == std::string_view::npos) {
    auto choice = read_choice(text);
    if (!choice) return std::nullopt;
    factors.push_back(*std::move(choice));
    return factors;
  }
  // Beside brackets no choice stands open.
  for (std::optional<std::string_view> rest = text; rest;) {
    std::optional<Choice> choice;
    if (rest->starts_with('('))
      choice = take_brackets(rest);
    else if (auto sum = read_sum(take_part(rest, '#')))
      choice = Choice{*std::move(sum)};
    if (!choice) return std::nullopt;
    factors.push_back(*std::move(choice));
  }
  return factors;
}

std::string knot_name_text(const std::vector<Choice>& factors) {
  if (factors.empty()) return "0_1";
  std::string text;
  for (const Choice& choice : factors) {
    const bool in_brackets = choice.size() > 1 && factors.size() > 1;
    if (!text.empty()) text += '#';
    if (in_brackets) text += '(';
    append(text, choice);
    if (in_brackets) text += ')';
  }
  return text;
}

}  // namespace korvex

#include "read/text.hpp"

#include <charconv>
#include <cmath>
#include <limits>

#include "korvex/error.hpp"
#include "read/text_feed.hpp"

namespace korvex::read {
namespace {

constexpr std::string_view kBlanks = " \t\v\f\r\n";

std::string_view without_plus(std::string_view text) {
  if (text.size() > 1 && text[0] == '+' && text[1] != '-') text.remove_prefix(1);
  return text;
}

}  // namespace

bool Lines::feed() {
  if (feed_ == nullptr) return false;
  const std::size_t had = rest_.size();
  rest_ = feed_->more(rest_);
  if (rest_.size() == had) feed_ = nullptr;
  return feed_ != nullptr;
}

bool Lines::only_blanks_left() {
  std::size_t seen = 0;
  while (is_blank(rest_.substr(seen))) {
    seen = rest_.size();
    if (!feed()) return true;
  }
  return false;
}

bool Lines::next() {
  std::size_t end = rest_.find('\n');
  while (end == std::string_view::npos) {
    const std::size_t seen = rest_.size();
    if (!feed()) break;
    end = rest_.find('\n', seen);
  }
  if (rest_.empty()) return false;
  line_ = rest_.substr(0, end);
  rest_.remove_prefix(end == std::string_view::npos ? rest_.size() : end + 1);
  if (!line_.empty() && line_.back() == '\r') line_.remove_suffix(1);
  ++number_;
  return true;
}

bool Lines::next_filled() {
  while (next())
    if (!is_blank(line_)) return true;
  return false;
}

void Lines::fail(const std::string& what) const { fail_at(file_, number_, what); }

void fail_not_text(const std::string& file, std::size_t line) {
  fail_at(file, line, "is not text; give PDB, mmCIF, GRO, XYZ, a LAMMPS dump or plain text");
}

void fail_at(const std::string& file, std::size_t line, const std::string& what) {
  const std::string place = line == 0 ? file : file + ":" + std::to_string(line);
  throw Error(ErrorCode::kBadInput, place + ": " + what, file, line);
}

bool is_blank(std::string_view text) {
  return text.find_first_not_of(kBlanks) == std::string_view::npos;
}

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

std::string_view columns(std::string_view line, std::size_t first, std::size_t last) {
  return line.size() < first ? std::string_view{} : line.substr(first - 1, last - first + 1);
}

std::string_view take_word(std::string_view& text) {
  const std::size_t first = text.find_first_not_of(kBlanks);
  if (first == std::string_view::npos) {
    text = {};
    return {};
  }
  text.remove_prefix(first);
  const std::string_view word = text.substr(0, text.find_first_of(kBlanks));
  text.remove_prefix(word.size());
  return word;
}

namespace {

// The word behind the last `key` that begins a word.
std::string_view word_after(std::string_view comment, std::string_view key) {
  std::size_t place = comment.rfind(key);
  while (place != std::string_view::npos && place > 0 &&
         kBlanks.find(comment[place - 1]) == std::string_view::npos && comment[place - 1] != ',')
    place = comment.rfind(key, place - 1);
  if (place == std::string_view::npos) return {};
  comment.remove_prefix(place + key.size());
  std::string_view word = take_word(comment);
  if (word.ends_with(',')) word.remove_suffix(1);
  return word;
}

}  // namespace

std::optional<double> number_after(std::string_view comment, std::string_view key) {
  const std::optional<double> number = to_number(word_after(comment, key));
  return number && std::isfinite(*number) ? number : std::nullopt;
}

std::optional<std::int64_t> integer_after(std::string_view comment, std::string_view key) {
  return to_integer(word_after(comment, key));
}

std::optional<std::int64_t> to_integer(std::string_view text) {
  text = without_plus(text);
  std::int64_t value = 0;
  const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (status != std::errc() || end != text.data() + text.size()) return {};
  return value;
}

std::optional<std::int32_t> to_int32(std::string_view text) {
  const std::optional<std::int64_t> value = to_integer(text);
  if (!value || *value < std::numeric_limits<std::int32_t>::min() ||
      *value > std::numeric_limits<std::int32_t>::max())
    return {};
  return static_cast<std::int32_t>(*value);
}

std::optional<double> to_number(std::string_view text) {
  double quick = 0;
  if (short_decimal(text, quick)) return quick;
  text = without_plus(text);
  double value = 0;
  const auto [end, status] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (status == std::errc::invalid_argument || end != text.data() + text.size()) return {};
  if (status == std::errc::result_out_of_range) {
    // Both overflow and underflow are reported so; only the former loses the number.
    const std::size_t exponent = text.find_first_of("eE");
    const bool tiny = exponent != std::string_view::npos && exponent + 1 < text.size() &&
                      text[exponent + 1] == '-';
    return tiny ? 0.0 : std::numeric_limits<double>::infinity();
  }
  return std::isnan(value) ? std::numeric_limits<double>::infinity() : value;
}

double coordinate(std::string_view text, char axis, const Lines& lines) {
  const std::optional<double> value = to_number(text);
  if (!value) {
    lines.fail(in_quotes(text) + " stands where the " + axis +
               " coordinate belongs; give a decimal number");
  }
  if (!std::isfinite(*value)) {
    lines.fail(std::string("the ") + axis + " coordinate " + in_quotes(text) +
               " is not finite; remove the atom or give its position");
  }
  return *value;
}

std::string in_quotes(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  std::string shown = "'";
  for (const char c : text.substr(0, kLongest)) shown += c >= ' ' && c <= '~' ? c : '?';
  return shown + (text.size() > kLongest ? "...'" : "'");
}

}  // namespace korvex::read

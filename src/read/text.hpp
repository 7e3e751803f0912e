// Lines, words and numbers of a text, with the place of each for messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvex::read {

bool is_blank(std::string_view text);

class TextFeed;

// Goes through a text line by line. Lines end in LF or CR LF; the last one may lack its end.
class Lines {
 public:
  // `text` and `file` must outlive the reader.
  Lines(std::string_view text, const std::string& file) : rest_(text), file_(file) {}
  // Of a text that comes piece by piece: a line is valid up to the next.
  Lines(TextFeed& feed, const std::string& file) : feed_(&feed), file_(file) {}

  // Moves to the next line; false at the end of the text.
  bool next();
  // Moves to the next line that is not blank; false at the end of the text.
  bool next_filled();
  bool only_blanks_left();

  std::string_view line() const { return line_; }  // without its end
  std::size_t number() const { return number_; }   // of the line, 1-based; 0 before the first
  const std::string& file() const { return file_; }

  // Throws Error (bad input): "FILE:LINE: WHAT".
  [[noreturn]] void fail(const std::string& what) const;

 private:
  bool feed();  // false where no more text comes

  std::string_view rest_;
  TextFeed* feed_ = nullptr;
  std::string_view line_;
  std::size_t number_ = 0;
  const std::string& file_;
};

// Throws Error (bad input): this line is not text.
[[noreturn]] void fail_not_text(const std::string& file, std::size_t line);

// Throws Error (bad input) about a place; `line` 0 stands for the whole file.
[[noreturn]] void fail_at(const std::string& file, std::size_t line, const std::string& what);

std::string_view trimmed(std::string_view text);

// The columns `first` to `last` of a fixed-column line, 1-based, both included; what lies beyond
// the end of the line is missing.
std::string_view columns(std::string_view line, std::size_t first, std::size_t last);

// Takes the next word off the front of `text`; empty when there is none.
std::string_view take_word(std::string_view& text);

// The number behind the last `key` of a comment, as in "t= 12.5 step= 500", where the key is a
// word's beginning; nothing where there is no finite one.
std::optional<double> number_after(std::string_view comment, std::string_view key);
std::optional<std::int64_t> integer_after(std::string_view comment, std::string_view key);

// A whole number filling all of `text`.
std::optional<std::int64_t> to_integer(std::string_view text);

// A whole number within 32 bits filling all of `text`.
std::optional<std::int32_t> to_int32(std::string_view text);

// A decimal number filling all of `text`, in the "C" locale; NaN, infinities and overflow are given
// as infinity, so that isfinite tells a value apart. Nothing for what is not a number.
std::optional<double> to_number(std::string_view text);

// Reads such as 12.345 and -0.5, of up to 15 digits, as to_number does but sooner; false for what
// is longer or written otherwise. Whole numbers below 2^53 and powers of ten up to 10^22 are exact,
// so that the one division rounds as the full conversion does.
inline bool short_decimal(std::string_view text, double& value) {
  constexpr double kPowers[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6, 1e7,
                                1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14};
  const char* at = text.data();
  const char* const end = at + text.size();
  const bool negative = at != end && *at == '-';
  if (negative) ++at;
  if (at == end || end - at > 15) return false;
  std::uint64_t digits = 0;
  const char* point = nullptr;
  for (; at != end; ++at) {
    const auto digit = static_cast<unsigned char>(*at - '0');
    if (digit <= 9)
      digits = 10 * digits + digit;
    else if (*at == '.' && point == nullptr)
      point = at;
    else
      return false;
  }
  const auto decimals = point == nullptr ? 0 : end - point - 1;
  if (point != nullptr && text.size() == (negative ? 2U : 1U)) return false;  // no digit at all
  value = static_cast<double>(digits) / kPowers[decimals];
  if (negative) value = -value;
  return true;
}

// The coordinate in `text`; throws Error, naming it by `axis` ('x', 'y' or 'z'), where it is no
// finite number.
double coordinate(std::string_view text, char axis, const Lines& lines);

// Text from a file as it may be shown in a message: quoted, shortened, unprintable bytes replaced.
std::string in_quotes(std::string_view text);

}  // namespace korvex::read

// Lines, words and numbers of a text, with the place of each for messages.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace korvex::read {

bool is_blank(std::string_view text);

// Goes through a text line by line. Lines end in LF or CR LF; the last one may lack its end.
class Lines {
 public:
  // `text` and `file` must outlive the reader.
  Lines(std::string_view text, const std::string& file) : rest_(text), file_(file) {}

  // Moves to the next line; false at the end of the text.
  bool next();
  // Moves to the next line that is not blank; false at the end of the text.
  bool next_filled();
  bool only_blanks_left() const { return is_blank(rest_); }

  std::string_view line() const { return line_; }  // without its end
  std::size_t number() const { return number_; }   // of the line, 1-based; 0 before the first
  const std::string& file() const { return file_; }

  // Throws Error (bad input): "FILE:LINE: WHAT".
  [[noreturn]] void fail(const std::string& what) const;

 private:
  std::string_view rest_;
  std::string_view line_;
  std::size_t number_ = 0;
  const std::string& file_;
};

// Throws Error (bad input) about a place; `line` 0 stands for the whole file.
[[noreturn]] void fail_at(const std::string& file, std::size_t line, const std::string& what);

std::string_view trimmed(std::string_view text);

// The columns `first` to `last` of a fixed-column line, 1-based, both included; what lies beyond
// the end of the line is missing.
std::string_view columns(std::string_view line, std::size_t first, std::size_t last);

// Takes the next word off the front of `text`; empty when there is none.
std::string_view take_word(std::string_view& text);

// A whole number filling all of `text`.
std::optional<std::int64_t> to_integer(std::string_view text);

// A whole number within 32 bits filling all of `text`.
std::optional<std::int32_t> to_int32(std::string_view text);

// A decimal number filling all of `text`, in the "C" locale; NaN, infinities and overflow are given
// as infinity, so that isfinite tells a value apart. Nothing for what is not a number.
std::optional<double> to_number(std::string_view text);

// The coordinate in `text`; throws Error, naming it by `axis` ('x', 'y' or 'z'), where it is no
// finite number.
double coordinate(std::string_view text, char axis, const Lines& lines);

// Text from a file as it may be shown in a message: quoted, shortened, unprintable bytes replaced.
std::string in_quotes(std::string_view text);

}  // namespace korvex::read

#include "read/cif_table.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>

#include "read/text.hpp"

namespace korvex::read {
namespace {

// Goes through the words of a CIF text: names, values in and without quotes, text fields.
class CifWords {
 public:
  // Begins with the line of this number.
  CifWords(std::string_view text, std::size_t line) : text_(text) {
    while (line_ < line && at_ < text_.size()) step();
  }

  // Moves to the next word; false at the end.
  bool next() {
    while (at_ < text_.size() && (is_white(text_[at_]) || text_[at_] == '#')) {
      if (text_[at_] == '#') skip_to("\n");
      step();
    }
    if (at_ >= text_.size()) return false;
    begin_ = at_;
    word_line_ = line_;
    const char first = text_[at_];
    if (first == ';' && (at_ == 0 || text_[at_ - 1] == '\n')) {
      skip_to("\n;");
      step();
      step();
    } else if (first == '\'' || first == '"') {
      do step();
      while (at_ < text_.size() && !(text_[at_] == first && ends_after(at_)));
      step();
    } else {
      while (at_ < text_.size() && !is_white(text_[at_])) step();
    }
    return true;
  }

  bool is_name() const { return text_[begin_] == '_'; }
  std::size_t line() const { return word_line_; }

 private:
  static bool is_white(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }
  bool ends_after(std::size_t at) const {
    return at + 1 >= text_.size() || is_white(text_[at + 1]);
  }
  void step() {
    if (at_ < text_.size() && text_[at_++] == '\n') ++line_;
  }
  void skip_to(std::string_view end) {
    const std::size_t found = text_.find(end, at_);
    while (at_ < std::min(found, text_.size())) step();
  }

  std::string_view text_;
  std::size_t at_ = 0;
  std::size_t line_ = 1;
  std::size_t begin_ = 0;
  std::size_t word_line_ = 0;
};

}  // namespace

// The parser keeps no lines of values, and errors are rare: they are counted again.
std::size_t CifTable::line_of_row(std::string_view text, std::size_t row) const {
  if (width_ == 0 || line_ == 0) return line_;
  CifWords words(text, line_);
  bool more = words.next();
  while (more && !words.is_name()) more = words.next();
  while (more && words.is_name()) more = words.next();
  for (std::size_t value = 0; more && value < row * width_; ++value) more = words.next();
  return more ? words.line() : line_;
}

std::optional<std::size_t> CifTable::column(std::string_view tag) const {
  const auto found = std::find(tags_.begin(), tags_.end(), tag);
  if (found == tags_.end()) return {};
  return static_cast<std::size_t>(found - tags_.begin());
}

std::string_view CifTable::unquoted(std::string_view value) {
  if (value[0] != ';') return value.substr(1, value.size() - 2);
  const bool field = value.size() > 2 && value[value.size() - 2] == '\n';
  return field ? value.substr(1, value.size() - 3) : value;
}

double CifTable::number(std::size_t row, std::size_t column) const {
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  std::string_view value = raw(row, column);
  if (!value.empty() && value.back() == ')') {
    const std::size_t digits = value.find_last_not_of("0123456789", value.size() - 2);
    if (digits == std::string_view::npos || value[digits] != '(') return kNone;
    value = value.substr(0, digits);
  }
  const double number = to_number(value).value_or(kNone);
  return std::isfinite(number) ? number : kNone;
}

CifBlock read_cif(std::string_view text, const std::string& file, const CifColumns& wanted) {
  if (std::optional<CifBlock> block = scan_cif(text, wanted)) return std::move(*block);
  return read_cif_document(text, file);
}

}  // namespace korvex::read

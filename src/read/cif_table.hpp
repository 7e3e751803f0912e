// The tables of an mmCIF text, apart from what they mean.
//
// Behind this header stands gemmi, which is compiled as C++17: its classes hold vectors of types
// that are not complete yet, which clang refuses in C++20. So nothing here may need more than
// C++17.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::read {

// One category of a data block. Rows and columns count from 0.
class CifTable {
 public:
  CifTable() = default;
  // `tags` are those of the columns, without their category, in lower case; `values` come row after
  // row, as they are written; `line` is that of the table's beginning, 0 where it is not known.
  // `is_loop` is false for single values, which make one row.
  CifTable(std::vector<std::string> tags, std::vector<std::string> values, std::size_t line,
           bool is_loop);

  std::size_t rows() const { return tags_.empty() ? 0 : values_.size() / tags_.size(); }
  std::size_t line() const { return line_; }
  // The line of `text`, from which the table was read, on which a row begins. O(text).
  std::size_t line_of_row(std::string_view text, std::size_t row) const;
  std::optional<std::size_t> column(std::string_view tag) const;

  // The value as it is written.
  const std::string& raw(std::size_t row, std::size_t column) const {
    return values_[row * tags_.size() + column];
  }
  // False where the value is `?` or `.`.
  bool has(std::size_t row, std::size_t column) const;
  // The value without its quotes; empty for `?` and `.`.
  std::string text(std::size_t row, std::size_t column) const;
  // The value as a number, its uncertainty in brackets left out; NaN where it is no finite one.
  double number(std::size_t row, std::size_t column) const;

 private:
  std::vector<std::string> tags_;
  std::vector<std::string> values_;
  std::size_t line_ = 0;
  bool is_loop_ = false;
};

// The categories that tell chains; a category that the block has not is empty.
struct CifBlock {
  CifTable atom_site;
  CifTable entity;
  CifTable struct_asym;
  CifTable cell;
};

// The first data block with atoms of a structure. Throws Error where the text is not well-formed or
// has no such block.
CifBlock read_cif(std::string_view text, const std::string& file);

}  // namespace korvex::read

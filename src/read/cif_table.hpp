// The tables of an mmCIF text, apart from what they mean.
//
// Nothing here may need more than C++17: behind cif_document.cpp stands gemmi, whose classes hold
// vectors of types that are not complete yet, which clang refuses in C++20.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace korvex::read {

// Where a value stands in the text that holds a table's values.
struct CifValue {
  std::uint32_t begin = 0;
  std::uint32_t length = 0;
};

// One category of a data block. Rows and columns count from 0.
class CifTable {
 public:
  CifTable() = default;
  // `tags` are those of the columns, without their category, in lower case; `values` come row after
  // row, places in `held`, which must outlive the table; `line` is that of the table's beginning, 0
  // where it is not known. `width` is the number of columns that the loop has in the text, of which
  // the table may have fewer; 0 for single values, which make one row.
  CifTable(std::vector<std::string> tags, const char* held, std::vector<CifValue> values,
           std::size_t line, std::size_t width)
      : tags_(std::move(tags)),
        held_(held),
        values_(std::move(values)),
        line_(line),
        width_(width) {}

  std::size_t rows() const { return tags_.empty() ? 0 : values_.size() / tags_.size(); }
  std::size_t line() const { return line_; }
  // The line of `text`, from which the table was read, on which a row begins. O(text).
  std::size_t line_of_row(std::string_view text, std::size_t row) const;
  std::optional<std::size_t> column(std::string_view tag) const;

  // The value as it is written.
  std::string_view raw(std::size_t row, std::size_t column) const {
    const CifValue value = values_[row * tags_.size() + column];
    return {held_ + value.begin, value.length};
  }
  // False where the value is `?` or `.`.
  bool has(std::size_t row, std::size_t column) const { return !is_null(raw(row, column)); }
  // The value without its quotes; empty for `?` and `.`.
  std::string_view text(std::size_t row, std::size_t column) const {
    const std::string_view value = raw(row, column);
    if (value.empty() || is_null(value)) return {};
    const bool plain = value[0] != '"' && value[0] != '\'' && value[0] != ';';
    return plain ? value : unquoted(value);
  }
  // The value as a number, its uncertainty in brackets left out; NaN where it is no finite one.
  double number(std::size_t row, std::size_t column) const;

 private:
  static bool is_null(std::string_view value) {
    return value.size() == 1 && (value[0] == '?' || value[0] == '.');
  }

  static std::string_view unquoted(std::string_view value);

  std::vector<std::string> tags_;
  const char* held_ = nullptr;
  std::vector<CifValue> values_;
  std::size_t line_ = 0;
  std::size_t width_ = 0;
};

// The categories that tell chains; a category that the block has not is empty.
struct CifBlock {
  CifTable atom_site;
  CifTable entity;
  CifTable struct_asym;
  CifTable cell;
  CifTable qa_metric;
  CifTable struct_conn;
  std::shared_ptr<const void> owner;  // of values that are not in the text itself
};

// Tags of atom_site, in lower case.
using CifColumns = std::vector<std::string_view>;

// The first data block with atoms of a structure, of whose atom_site the columns that are wanted
// are there, others may be. The text must outlive the block. Throws Error where the text is not
// well-formed or has no such block.
CifBlock read_cif(std::string_view text, const std::string& file, const CifColumns& wanted);

// The same by gemmi's grammar, with all columns: slow, and right about every text.
CifBlock read_cif_document(std::string_view text, const std::string& file);

// The same of BinaryCIF, with empty lines. Values are the words that mmCIF would have.
CifBlock read_bcif(std::string_view bytes, const std::string& file, const CifColumns& wanted);

// The same where the text is written as archives write it, and nothing where it is not or breaks a
// rule: read_cif_document tells then. O(text), above 200 MB/s.
std::optional<CifBlock> scan_cif(std::string_view text, const CifColumns& wanted);

}  // namespace korvex::read

#include "read/cif_table.hpp"

#include <algorithm>
#include <cmath>
#include <gemmi/cif.hpp>
#include <gemmi/numb.hpp>
#include <limits>
#include <tao/pegtl/parse_error.hpp>
#include <utility>

#include "read/text.hpp"

namespace korvex::read {
namespace {

namespace cif = gemmi::cif;

cif::Document read_document(std::string_view text, const std::string& file) {
  try {
    return cif::read_memory(text.data(), text.size(), file.c_str());
  } catch (const tao::pegtl::parse_error& error) {
    const std::size_t line = error.positions().empty() ? 0 : error.positions().front().line;
    fail_at(file, line,
            "not well-formed mmCIF near here (the file may be cut short); copy it again");
  } catch (const std::runtime_error& error) {
    fail_at(file, 0, std::string("not well-formed mmCIF: ") + error.what());
  }
}

std::size_t line_of(const cif::Item& item) {
  return static_cast<std::size_t>(std::max(item.line_number, 0));
}

// Moves a category, such as "_entity.", out of a block: its first loop, or else its single values
// as one row.
CifTable take_table(cif::Block& block, const std::string& category) {
  std::vector<std::string> tags;
  std::vector<std::string> values;
  std::size_t line = 0;
  const auto column = [&category](const std::string& tag) {
    return gemmi::to_lower(tag.substr(category.size()));
  };
  for (cif::Item& item : block.items) {
    if (!item.has_prefix(category)) continue;
    if (line == 0) line = line_of(item);
    if (item.type == cif::ItemType::Pair) {
      tags.push_back(column(item.pair[0]));
      values.push_back(std::move(item.pair[1]));
    } else if (item.type == cif::ItemType::Loop) {
      tags.clear();
      for (const std::string& tag : item.loop.tags) {
        tags.push_back(gemmi::istarts_with(tag, category) ? column(tag) : std::string());
      }
      return {std::move(tags), std::move(item.loop.values), line_of(item), true};
    }
  }
  return {std::move(tags), std::move(values), line, false};
}

// Goes through the words of a CIF text: names, values in and without quotes, text fields.
class Words {
 public:
  // Begins with the line of this number.
  Words(std::string_view text, std::size_t line) : text_(text) {
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

CifTable::CifTable(std::vector<std::string> tags, std::vector<std::string> values, std::size_t line,
                   bool is_loop)
    : tags_(std::move(tags)), values_(std::move(values)), line_(line), is_loop_(is_loop) {}

// The parser keeps no lines of values, and errors are rare: they are counted again.
std::size_t CifTable::line_of_row(std::string_view text, std::size_t row) const {
  if (!is_loop_ || line_ == 0) return line_;
  Words words(text, line_);
  bool more = words.next();
  while (more && !words.is_name()) more = words.next();
  while (more && words.is_name()) more = words.next();
  for (std::size_t value = 0; more && value < row * tags_.size(); ++value) more = words.next();
  return more ? words.line() : line_;
}

std::optional<std::size_t> CifTable::column(std::string_view tag) const {
  const auto found = std::find(tags_.begin(), tags_.end(), tag);
  if (found == tags_.end()) return {};
  return static_cast<std::size_t>(found - tags_.begin());
}

bool CifTable::has(std::size_t row, std::size_t column) const {
  return !cif::is_null(raw(row, column));
}

std::string CifTable::text(std::size_t row, std::size_t column) const {
  return cif::as_string(raw(row, column));
}

double CifTable::number(std::size_t row, std::size_t column) const {
  const double value = cif::as_number(raw(row, column));
  return std::isfinite(value) ? value : std::numeric_limits<double>::quiet_NaN();
}

CifBlock read_cif(std::string_view text, const std::string& file) {
  cif::Document document = read_document(text, file);
  for (cif::Block& block : document.blocks) {
    if (!block.has_tag("_atom_site.Cartn_x")) continue;
    return {take_table(block, "_atom_site."), take_table(block, "_entity."),
            take_table(block, "_struct_asym."), take_table(block, "_cell.")};
  }
  fail_at(file, 0,
          "no _atom_site.Cartn_x: this CIF holds no atoms of a structure; give an mmCIF "
          "coordinate file");
}

}  // namespace korvex::read

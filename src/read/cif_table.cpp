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
      return {std::move(tags), std::move(item.loop.values), line_of(item)};
    }
  }
  return {std::move(tags), std::move(values), line};
}

}  // namespace

CifTable::CifTable(std::vector<std::string> tags, std::vector<std::string> values, std::size_t line)
    : tags_(std::move(tags)), values_(std::move(values)), line_(line) {}

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
            take_table(block, "_struct_asym.")};
  }
  fail_at(file, 0,
          "no _atom_site.Cartn_x: this CIF holds no atoms of a structure; give an mmCIF "
          "coordinate file");
}

}  // namespace korvex::read

#include <algorithm>
#include <array>
#include <gemmi/cif.hpp>
#include <tao/pegtl/parse_error.hpp>
#include <utility>

#include "read/cif_table.hpp"
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

// The values of all tables, one behind the other.
struct HeldValues {
  std::string text;

  CifValue add(const std::string& value) {
    const std::size_t begin = text.size();
    text += value;
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(value.size())};
  }
};

// What a table is made of.
struct TableParts {
  std::vector<std::string> tags;
  std::vector<CifValue> values;
  std::size_t line = 0;
  std::size_t width = 0;
};

// A category, such as "_entity.", of a block: its first loop, or else its single values as one row.
TableParts parts_of(const cif::Block& block, const std::string& category, HeldValues& held) {
  std::vector<std::string> tags;
  std::vector<CifValue> values;
  std::size_t line = 0;
  const auto column = [&category](const std::string& tag) {
    return gemmi::to_lower(tag.substr(category.size()));
  };
  for (const cif::Item& item : block.items) {
    if (!item.has_prefix(category)) continue;
    if (line == 0) line = line_of(item);
    if (item.type == cif::ItemType::Pair) {
      tags.push_back(column(item.pair[0]));
      values.push_back(held.add(item.pair[1]));
    } else if (item.type == cif::ItemType::Loop) {
      tags.clear();
      for (const std::string& tag : item.loop.tags)
        tags.push_back(gemmi::istarts_with(tag, category) ? column(tag) : std::string());
      values.clear();
      for (const std::string& value : item.loop.values) values.push_back(held.add(value));
      const std::size_t width = tags.size();
      return {std::move(tags), std::move(values), line_of(item), width};
    }
  }
  return {std::move(tags), std::move(values), line, 0};
}

}  // namespace

CifBlock read_cif_document(std::string_view text, const std::string& file) {
  const cif::Document document = read_document(text, file);
  for (const cif::Block& block : document.blocks) {
    if (!block.has_tag("_atom_site.Cartn_x")) continue;
    const auto held = std::make_shared<HeldValues>();
    std::array<TableParts, 6> parts;
    const std::array<const char*, 6> categories = {
        "_atom_site.", "_entity.", "_struct_asym.", "_cell.", "_ma_qa_metric.", "_struct_conn."};
    for (std::size_t i = 0; i < parts.size(); ++i) parts[i] = parts_of(block, categories[i], *held);
    const auto table = [&](std::size_t i) {
      TableParts& part = parts[i];
      return CifTable(std::move(part.tags), held->text.data(), std::move(part.values), part.line,
                      part.width);
    };
    return {table(0), table(1), table(2), table(3), table(4), table(5), held};
  }
  fail_at(file, 0,
          "no _atom_site.Cartn_x: this CIF holds no atoms of a structure; give an mmCIF "
          "coordinate file");
}

}  // namespace korvex::read

#include "korvex/catalogue.hpp"

#include <charconv>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "engine/catalogue/knot_rows.hpp"
#include "korvex/knot_name.hpp"

namespace korvex {
namespace {

// Whole numbers with a blank between them.
std::vector<std::int64_t> numbers_in(std::string_view text) {
  std::vector<std::int64_t> numbers;
  const char* const end = text.data() + text.size();
  for (const char* next = text.data(); next < end;) {
    next = std::from_chars(next, end, numbers.emplace_back()).ptr;
    if (next < end) ++next;
  }
  return numbers;
}

KnotType type_of(const KnotTableRow& row) {
  const Chirality chirality = row.chirality == 'a' ? Chirality::kAmphichiral : Chirality::kChiral;
  return {row.name,
          row.plain,
          row.crossings,
          chirality,
          row.signature,
          row.determinant,
          numbers_in(row.alexander),
          jones_of_text(row.jones),
          homfly_of_text(row.homfly),
          row.gauss_code};
}

KnotName name_of(const KnotType& type) { return KnotName::parse(type.name).value(); }

KnotType mirror_of(const KnotType& type) {
  KnotType image = type;
  image.name = name_of(type).mirror().text();
  image.signature = -type.signature;
  image.jones = mirror(type.jones);
  image.homfly = mirror(type.homfly);
  image.gauss_code = Diagram::of_gauss_code(type.gauss_code).mirror().gauss_code();
  return image;
}

std::vector<KnotType> make_catalogue() {
  std::vector<KnotType> types;
  for (const KnotTableRow& row : knot_table_rows()) {
    types.push_back(type_of(row));
    if (types.back().chirality == Chirality::kChiral) types.push_back(mirror_of(types.back()));
  }
  return types;
}

using TypesByName = std::unordered_map<std::string_view, std::vector<const KnotType*>>;

// Types by the names that they have with and without hands.
TypesByName make_index() {
  TypesByName by_name;
  for (const KnotType& type : catalogue()) {
    by_name[type.plain].push_back(&type);
    if (type.name != type.plain) by_name[type.name].push_back(&type);
  }
  return by_name;
}

// Those of that very text; nullptr if there are none.
const std::vector<const KnotType*>* types_written(std::string_view name) {
  static const TypesByName by_name = make_index();
  const auto found = by_name.find(name);
  return found == by_name.end() ? nullptr : &found->second;
}

}  // namespace

bool KnotType::is_prime() const { return name_of(*this).is_prime(); }

std::span<const KnotType> catalogue() {
  static const std::vector<KnotType> types = make_catalogue();
  return types;
}

std::vector<const KnotType*> knot_types_named(std::string_view name) {
  if (const auto* const written = types_written(name)) return *written;
  const auto meant = KnotName::parse(name);
  if (!meant) return {};
  const auto* const alike = types_written(meant->plain().text());
  if (alike == nullptr) return {};
  std::vector<const KnotType*> types = *alike;
  std::erase_if(types, [&](const KnotType* type) { return !meant->covers(name_of(*type)); });
  return types;
}

const KnotType* find_knot_type(std::string_view name) {
  const auto types = knot_types_named(name);
  return types.empty() ? nullptr : types.front();
}

}  // namespace korvex

#include "korvex/catalogue.hpp"

#include <algorithm>
#include <sstream>
#include <utility>

#include "engine/catalogue/knot_rows.hpp"

namespace korvex {
namespace {

KnotType type_of(const KnotTableRow& row) {
  std::vector<std::int64_t> alexander;
  std::istringstream coefficients(row.alexander);
  for (std::int64_t coefficient = 0; coefficients >> coefficient;) alexander.push_back(coefficient);
  const Chirality chirality = row.chirality == 'a' ? Chirality::kAmphichiral : Chirality::kChiral;
  return {row.name,
          row.plain,
          row.crossings,
          chirality,
          row.signature,
          row.determinant,
          std::move(alexander),
          jones_of_text(row.jones),
          homfly_of_text(row.homfly),
          row.gauss_code};
}

// Changes the hand of every factor and puts those of one kind in order again, + before -.
std::string mirrored_name(const std::string& name) {
  std::vector<std::string> factors;
  std::istringstream parts(name);
  for (std::string factor; std::getline(parts, factor, '#');) {
    if (factor[0] == '+' || factor[0] == '-') factor[0] = factor[0] == '+' ? '-' : '+';
    factors.push_back(factor);
  }
  for (std::size_t k = 1; k < factors.size(); ++k)
    for (std::size_t j = k; j > 0 && factors[j][0] == '+' && factors[j - 1][0] == '-' &&
                            factors[j].substr(1) == factors[j - 1].substr(1);
         --j)
      std::swap(factors[j], factors[j - 1]);
  std::string mirrored;
  for (const std::string& factor : factors) mirrored += (mirrored.empty() ? "" : "#") + factor;
  return mirrored;
}

KnotType mirror_of(const KnotType& type) {
  KnotType image = type;
  image.name = mirrored_name(type.name);
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

}  // namespace

std::span<const KnotType> catalogue() {
  static const std::vector<KnotType> types = make_catalogue();
  return types;
}

const KnotType* find_knot_type(std::string_view name) {
  for (const KnotType& type : catalogue())
    if (type.name == name || type.plain == name) return &type;
  return nullptr;
}

}  // namespace korvex

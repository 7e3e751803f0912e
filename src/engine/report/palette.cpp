#include "korvex/palette.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>

#include "korvex/catalogue.hpp"

namespace korvex {
namespace {

constexpr int kMostCrossingsOfOwn = 8;
constexpr std::size_t kShared = 35;

// By tools/make_palette.py: each is as far from all before it as can be, to eyes without red or
// green receptors as well.
constexpr std::array kColours{
    "#5500cc", "#668800", "#7799ff", "#880055", "#99cc00", "#ff5599", "#cc2288", "#4466ff",
    "#ccbbff", "#992200", "#66dd99", "#77aa00", "#6666bb", "#553388", "#00aabb", "#007755",
    "#3311ff", "#669966", "#33cccc", "#5588cc", "#88bb66", "#66ee66", "#6644aa", "#cc1155",
    "#99aaee", "#5555dd", "#4488ff", "#557700", "#335511", "#ee3399", "#5577dd", "#5511aa",
    "#883377", "#66ddcc", "#77aa66", "#88bb11", "#55cc99", "#55dd66", "#11bbbb", "#991144",
    "#0099aa", "#779933", "#8899dd", "#aa44aa", "#aadd11", "#cc4477", "#007788", "#aa2233",
    "#33eebb", "#771177", "#5533dd", "#55ee99", "#dd2255", "#008866", "#cc7788", "#4444ff",
    "#992299", "#005599", "#77cc77", "#dd33cc", "#ff44ff", "#ee55aa", "#ee0011", "#772266",
    "#5533bb", "#996633", "#bb22cc", "#77bb88", "#77ddee", "#ee7744", "#aa3377", "#009988",
    "#8888ee", "#664488", "#6655bb", "#66cc55", "#9966aa", "#ff88ee", "#992266", "#bb88cc",
    "#995588", "#cc7755", "#661199", "#aa55dd", "#aa5500", "#2211dd", "#882233", "#6677bb",
    "#4466aa", "#0077cc", "#8877ee", "#cc99dd", "#995544", "#bb4499", "#aa8800", "#8822cc",
    "#bb77aa", "#4411bb", "#880044", "#ff55dd", "#5533aa", "#ff66bb", "#aa7744", "#00ee44",
    "#ccaaff", "#007799", "#6644bb", "#2200ee", "#7788dd", "#ff99dd", "#993344", "#990055",
};

// The types with a colour of their own, numbered as the catalogue has them.
const std::map<std::string_view, std::size_t>& numbers_of_own() {
  static const auto numbers = [] {
    std::map<std::string_view, std::size_t> own;
    for (const KnotType& type : catalogue())
      if (0 < type.crossings && type.crossings <= kMostCrossingsOfOwn)
        own.emplace(type.name, own.size());
    return own;
  }();
  return numbers;
}

}  // namespace

std::string colour_of_type(std::string_view type) {
  if (type == "0_1") return "#e4e4e4";
  const auto& own = numbers_of_own();
  if (const auto found = own.find(type); found != own.end()) return kColours.at(found->second);
  std::uint32_t hash = 2166136261u;  // G. Fowler, L. C. Noll and K.-P. Vo's FNV-1a
  for (const char c : type) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return kColours[kColours.size() - kShared + hash % kShared];
}

}  // namespace korvex

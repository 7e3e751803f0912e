#include "engine/report/palette.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace korvex {
namespace {

struct Named {
  std::string_view type;
  double hue;  // of the circle
};

// Those that are met most are well apart.
constexpr std::array kCommon{
    Named{"3_1", 0.60}, Named{"4_1", 0.08}, Named{"5_1", 0.35}, Named{"5_2", 0.97},
    Named{"6_1", 0.78}, Named{"6_2", 0.48}, Named{"6_3", 0.16}, Named{"7_1", 0.24},
};

double hue_of(const std::string& plain) {
  for (const Named& common : kCommon)
    if (common.type == plain) return common.hue;
  std::uint32_t hash = 2166136261u;  // G. Fowler, L. C. Noll and K.-P. Vo's FNV-1a
  for (const char c : plain) hash = (hash ^ static_cast<unsigned char>(c)) * 16777619u;
  return static_cast<double>(hash % 997) / 997;
}

// From hue, saturation and value: each channel is a trapezium over the hues, shifted by a third.
std::string colour(double hue, double saturation, double value) {
  constexpr std::array kShifts{5.0, 3.0, 1.0};
  std::string text = "#";
  for (const double shift : kShifts) {
    const double k = std::fmod(shift + 6 * hue, 6.0);
    const double part = std::max(0.0, std::min({k, 4 - k, 1.0}));
    const int level = static_cast<int>(std::lround(255 * value * (1 - saturation * part)));
    constexpr std::string_view kDigits = "0123456789abcdef";
    text += kDigits[static_cast<std::size_t>(level / 16)];
    text += kDigits[static_cast<std::size_t>(level % 16)];
  }
  return text;
}

}  // namespace

std::string colour_of_type(std::string_view type) {
  if (type == "0_1") return "#e4e4e4";
  std::string plain;
  for (const char c : type)
    if (c != '+' && c != '-') plain += c;
  const bool left = !type.empty() && type.front() == '-';
  return colour(hue_of(plain), left ? 0.75 : 0.55, left ? 0.72 : 0.95);
}

}  // namespace korvex

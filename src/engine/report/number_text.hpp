// Numbers as text, whatever the locale.
#pragma once

#include <array>
#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

namespace korvex {

// In `form` with `precision` digits, as printf writes it in the locale "C".
inline std::string number_text(double number, std::chars_format form, int precision) {
  std::array<char, 512> text{};  // more than any double takes with the digits that are asked for
  const auto [end, error] =
      std::to_chars(text.data(), text.data() + text.size(), number, form, precision);
  return error == std::errc() ? std::string(text.data(), end) : std::string("?");
}

// Six digits, as a stream writes them.
inline std::string number_text(double number) {
  return number_text(number, std::chars_format::general, 6);
}

// As many digits behind the point.
inline std::string fixed_text(double number, int decimals) {
  return number_text(number, std::chars_format::fixed, decimals);
}

// A time, with as many digits as it takes to tell it.
inline std::string time_text(double time) {
  std::array<char, 64> text{};
  const auto [end, error] = std::to_chars(text.data(), text.data() + text.size(), time);
  return {text.data(), end};
}

// Exact shares have nine digits behind the point: what is beyond them is rounding.
inline double nine_digits(double share) { return std::round(share * 1e9) / 1e9; }
inline std::string nine_digits_text(double share) { return fixed_text(share, 9); }

}  // namespace korvex

#include <cstddef>
#include <iostream>
#include <vector>

#include "korvex.h"
#include "records/wrapping.hpp"

namespace {

// The sign and the magnitude of the term c * t^i; a magnitude of 1 is left out before t.
void show_coefficient(int c, std::size_t i, bool first) {
  if (c >= 1) {
    if (i > 0 && !first) std::cout << " + ";
    if (i == 0 || c != 1) std::cout << c;
  } else if (i == 0) {
    std::cout << "-" << korvex::records::wrapping_negate(c);
  } else {
    std::cout << " - ";
    if (c != -1) std::cout << korvex::records::wrapping_negate(c);
  }
}

void show_power(int c, std::size_t i) {
  if (korvex::records::wrapping_multiply(c, c) != 1) std::cout << "*";
  std::cout << "t";
  if (i >= 2) std::cout << "^" << i;
}

void show(const polynomial<int>& poly) {
  bool first = true;
  for (std::size_t i = 0; i < poly.size(); ++i) {
    const int c = poly[i];
    if (c == 0) continue;
    show_coefficient(c, i, first);
    if (i > 0) show_power(c, i);
    first = false;
  }
  if (first) std::cout << "0";
}

}  // namespace

void ShowPoly(polynomial<int> poly) { show(poly); }

void ShowMatrix(const std::vector<std::vector<polynomial<int>>>& matrix) {
  std::cout << "Macierz:\n";
  for (const auto& row : matrix) {
    for (const auto& entry : row) {
      show(entry);
      std::cout << ",   ";
    }
    std::cout << std::endl;
  }
}

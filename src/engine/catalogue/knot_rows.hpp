// The checked-in rows that the catalogue is made of.
#pragma once

#include <span>

namespace korvex {

// A knot that stands for its mirror image as well. Signs before the factors of its name are hands.
struct KnotTableRow {
  const char* name;
  const char* plain;
  int crossings;
  char chirality;  // a: amphichiral, c: chiral
  int signature;
  long determinant;
  const char* alexander;
  const char* jones;
  const char* homfly;
  const char* gauss_code;
};

// In the order of the catalogue.
std::span<const KnotTableRow> knot_table_rows();

}  // namespace korvex

#include <array>

#include "korvex.h"

KnotRecord knotsArray[42];

namespace {

// In order of the knot ordinal. The value at -2 is stored for the first fifteen records and for
// 3_1#5_1 only; those of 7_5 and 3_1#5_1 are not the polynomials' own, and hosts may rely on them.
// Made when they are asked for: where memory runs out before main, no program could say so.
const std::array<KnotRecord, 42>& stored_knots() {
  static const std::array<KnotRecord, 42> kKnots = {{
      {{1}, 1, 1, "01"},
      {{1, -1, 1}, 7, 13, "3_1"},
      {{1, -3, 1}, 11, 19, "4_1"},
      {{1, -1, 1, -1, 1}, 31, 121, "5_1"},
      {{2, -3, 2}, 16, 29, "5_2"},
      {{2, -5, 2}, 20, 35, "6_1"},
      {{1, -3, 3, -3, 1}, 59, 199, "6_2"},
      {{1, -3, 5, -3, 1}, 67, 217, "6_3"},
      {{1, -1, 1, -1, 1, -1, 1}, 127, 1093, "7_1"},
      {{3, -5, 3}, 25, 5, "7_2"},
      {{2, -3, 3, -3, 2}, 76, 281, "7_3"},
      {{4, -7, 4}, 34, 61, "7_4"},
      {{2, -4, 5, -4, 2}, 104, 329, "7_5"},
      {{1, -5, 7, -5, 1}, 95, 295, "7_6"},
      {{1, -5, 9, -5, 1}, 103, 313, "7_7"},
      {{3, -7, 3}, 0, 17, "8_1"},
      {{1, -3, 3, -3, 3, -3, 1}, 0, 1819, "8_2"},
      {{4, -9, 4}, 0, 67, "8_3"},
      {{2, -5, 5, -5, 2}, 0, 359, "8_4"},
      {{1, -3, 4, -5, 4, -3, 1}, 0, 1963, "8_5"},
      {{2, -6, 7, -6, 2}, 0, 407, "8_6"},
      {{1, -3, 5, -5, 5, -3, 1}, 0, 2053, "8_7"},
      {{2, -6, 9, -6, 2}, 0, 425, "8_8"},
      {{1, -3, 5, -7, 5, -3, 1}, 0, 2107, "8_9"},
      {{1, -3, 6, -7, 6, -3, 1}, 0, 2197, "8_10"},
      {{2, -7, 9, -7, 2}, 0, 455, "8_11"},
      {{1, -7, 13, -7, 1}, 0, 409, "8_12"},
      {{2, -7, 11, -7, 2}, 0, 473, "8_13"},
      {{2, -8, 11, -8, 2}, 0, 503, "8_14"},
      {{3, -8, 11, -8, 3}, 0, 65, "8_15"},
      {{1, -4, 8, -9, 8, -4, 1}, 0, 2677, "8_16"},
      {{1, -4, 8, -11, 8, -4, 1}, 0, 2731, "8_17"},
      {{1, -5, 10, -13, 10, -5, 1}, 0, 3211, "8_18"},
      {{1, -1, 0, 1, 0, -1, 1}, 0, 949, "8_19"},
      {{1, -2, 3, -2, 1}, 0, 169, "8_20|3_1#3_1"},
      {{1, -4, 5, -4, 1}, 0, 247, "8_21|3_1#4_1"},
      {{1, -1, 1, -1, 1, -1, 1, -1, 1}, 0, 9841, "9_1"},
      {{1, -2, 3, -3, 3, -2, 1}, 112, 1573, "3_1#5_1"},
      {{2, -5, 7, -5, 2}, 0, 377, "3_1#5_2"},
      {{1}, 0, 0, "-3"},
      {{1}, 0, 0, "Problem with projecting"},
      {{1}, 0, 0, "-2"},
  }};
  return kKnots;
}

bool has_value_at_minus_2(int ordinal) { return ordinal < 15 || ordinal == 37; }

}  // namespace

// Every projection fills the table, which a host may have written to; mostly it is as it was. What
// a host keeps in a value at -2 that is not stored stays there.
void FillKnotsArray() {
  for (int ordinal = 0; ordinal < 42; ++ordinal) {
    const KnotRecord& stored = stored_knots()[static_cast<std::size_t>(ordinal)];
    KnotRecord& record = knotsArray[ordinal];
    if (record.poly != stored.poly) record.poly = stored.poly;
    if (has_value_at_minus_2(ordinal)) record.valueAtMinus2 = stored.valueAtMinus2;
    record.valueAtMinus3 = stored.valueAtMinus3;
    if (record.name != stored.name) record.name = stored.name;
  }
}

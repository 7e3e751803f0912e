// One row of the Alexander matrix.
#pragma once

#include <cstddef>

#include "korvex.h"
#include "records/wrapping.hpp"

namespace korvex::alexander {

// The entries of a row. The two under-arcs bear `in` and `out`, the over-arc `over`; where arcs
// coincide their entries are summed, and `summed_in`, `summed_out` hold those sums.
template <class Entry>
struct RowEntries {
  Entry over;        // 1 - t
  Entry in;          // of the incoming under-arc
  Entry out;         // of the outgoing under-arc
  Entry summed_in;   // over + in
  Entry summed_out;  // over + out
};

// The entries at t of rows by the type of their crossing.
struct NumericRowEntries {
  RowEntries<double> negative;
  RowEntries<double> positive;
};

inline NumericRowEntries numeric_row_entries(int t) {
  const double point = t;
  const double minus_t = records::wrapping_negate(t);
  const double one_minus_t = records::wrapping_add(1, records::wrapping_negate(t));
  return {{one_minus_t, point, -1.0, 1.0, minus_t}, {one_minus_t, -1.0, point, minus_t, 1.0}};
}

// Calls set(column, entry) for the row of `crossing`; a later call for a column replaces the entry.
template <class Entry, class Set>
void fill_row(const Crossing& crossing, const RowEntries<Entry>& entries, const Entry& zero,
              Set set) {
  const auto over = static_cast<std::size_t>(crossing.overArc);
  const auto in = static_cast<std::size_t>(crossing.underArcIn);
  const auto out = static_cast<std::size_t>(crossing.underArcOut);
  if (over == in && over != out) {
    set(over, entries.summed_in);
    set(out, entries.out);
  } else if (over == out && over != in) {
    set(over, entries.summed_out);
    set(in, entries.in);
  } else if (over != in) {
    set(over, entries.over);
    set(in, entries.in);
    set(out, entries.out);
  } else {
    set(over, zero);
  }
}

}  // namespace korvex::alexander

#include <cstddef>
#include <vector>

#include "alexander/fox_row.hpp"
#include "alexander/stored_polynomial.hpp"
#include "korvex.h"

namespace {

using korvex::alexander::RowEntries;
using korvex::alexander::stored_polynomial;

template <class Entry>
std::vector<std::vector<Entry>> fox_matrix(const std::vector<Crossing>& crossings,
                                           const RowEntries<Entry>& negative,
                                           const RowEntries<Entry>& positive, const Entry& zero) {
  const std::size_t n = crossings.size();
  std::vector<std::vector<Entry>> matrix(n, std::vector<Entry>(n, zero));
  for (std::size_t k = 0; k < n; ++k) {
    korvex::alexander::fill_row(
        crossings[k], crossings[k].type != 0 ? positive : negative, zero,
        [&](std::size_t column, const Entry& entry) { matrix[k][column] = entry; });
  }
  if (!matrix.empty()) matrix.pop_back();
  return matrix;
}

}  // namespace

std::vector<std::vector<polynomial<int>>> CreateFoxMatrix(const std::vector<Crossing>& crossings) {
  const auto zero = stored_polynomial({0});
  const auto one = stored_polynomial({1});
  const auto minus_one = stored_polynomial({-1});
  const auto t = stored_polynomial({0, 1});
  const auto minus_t = stored_polynomial({0, -1});
  const auto one_minus_t = stored_polynomial({1, -1});
  return fox_matrix<polynomial<int>>(crossings, {one_minus_t, t, minus_one, one, minus_t},
                                     {one_minus_t, minus_one, t, minus_t, one}, zero);
}

std::vector<std::vector<double>> CreateFoxMatrix_double(const std::vector<Crossing>& crossings,
                                                        int t) {
  const korvex::alexander::NumericRowEntries entries = korvex::alexander::numeric_row_entries(t);
  return fox_matrix<double>(crossings, entries.negative, entries.positive, 0.0);
}

#include <cstddef>
#include <vector>

#include "alexander/stored_polynomial.hpp"
#include "records/wrapping.hpp"
#include "reference/reference.hpp"

namespace reference {

namespace {

using korvex::alexander::stored_polynomial;

// One row of the matrix. The two under-arcs bear `in` and `out`, the over-arc `over`; where arcs
// coincide their entries are summed, and `summed_in`, `summed_out` hold those sums.
template <class Entry>
struct RowEntries {
  Entry over;        // 1 - t
  Entry in;          // of the incoming under-arc
  Entry out;         // of the outgoing under-arc
  Entry summed_in;   // over + in
  Entry summed_out;  // over + out
};

template <class Entry>
void fill_row(std::vector<Entry>& row, const Crossing& crossing, const RowEntries<Entry>& entries,
              const Entry& zero) {
  const auto over = static_cast<std::size_t>(crossing.overArc);
  const auto in = static_cast<std::size_t>(crossing.underArcIn);
  const auto out = static_cast<std::size_t>(crossing.underArcOut);
  if (over == in && over != out) {
    row[over] = entries.summed_in;
    row[out] = entries.out;
  } else if (over == out && over != in) {
    row[over] = entries.summed_out;
    row[in] = entries.in;
  } else if (over != in) {
    row[over] = entries.over;
    row[in] = entries.in;
    row[out] = entries.out;
  } else {
    row[over] = zero;
  }
}

template <class Entry>
std::vector<std::vector<Entry>> fox_matrix(const std::vector<Crossing>& crossings,
                                           const RowEntries<Entry>& negative,
                                           const RowEntries<Entry>& positive, const Entry& zero) {
  const std::size_t n = crossings.size();
  std::vector<std::vector<Entry>> matrix(n, std::vector<Entry>(n, zero));
  for (std::size_t k = 0; k < n; ++k) {
    fill_row(matrix[k], crossings[k], crossings[k].type != 0 ? positive : negative, zero);
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
  const double point = t;
  const double minus_t = korvex::records::wrapping_negate(t);
  const double one_minus_t = korvex::records::wrapping_add(1, korvex::records::wrapping_negate(t));
  return fox_matrix<double>(crossings, {one_minus_t, point, -1.0, 1.0, minus_t},
                            {one_minus_t, -1.0, point, minus_t, 1.0}, 0.0);
}

}  // namespace reference

#include "alexander/numeric_determinant.hpp"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

#include "alexander/fox_row.hpp"
#include "alexander/row_elimination.hpp"
#include "records/wrapping.hpp"

namespace korvex::alexander {
namespace {

constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();

// The matrix during elimination. Rows are known by where they stood at first; each waits in the
// list of the column that it begins with, so that a step meets no others.
class Elimination {
 public:
  explicit Elimination(std::vector<NumericRow> rows)
      : rows_(rows.size()), beginning_with_(rows.size()), row_at_(rows.size()) {
    std::iota(row_at_.begin(), row_at_.end(), std::uint32_t{0});
    place_of_ = row_at_;
    for (std::uint32_t i = 0; i < rows.size(); ++i) {
      rows_[i].entries = std::move(rows[i]);
      std::erase_if(rows_[i].entries, [](const NumericEntry& entry) { return entry.value == 0; });
      wait(i);
    }
  }

  double determinant(int p) {
    const std::size_t n = rows_.size();
    // A last row of zeros stays that, and ends the search for some pivot.
    if (n > 0 && rows_.back().entries.empty()) return 0.0;
    std::vector<double> pivots(n);
    double sign = 1.0;
    for (std::uint32_t k = 0; k < n; ++k) {
      const std::uint32_t r = place_of_pivot(k);
      pivots[k] = value_at(row_at_[r], k);
      if (std::fabs(pivots[k]) <= kSmallestPivot) return 0.0;
      if (r != k) {
        swap_places(k, r);
        sign = -sign;
      }
      eliminate_below(k, r);
    }
    return product_without_factors(
        sign, n, [&](std::size_t k) { return pivots[k]; }, p);
  }

 private:
  struct Row {
    NumericRow entries;
    double rest = 0;  // what its other entries are: 0 or not a number
  };

  // `row` has no entry before those it holds.
  void wait(std::uint32_t row) {
    if (!rows_[row].entries.empty())
      beginning_with_[rows_[row].entries.front().column].push_back(row);
  }

  // Of a row that begins with column k or later.
  double value_at(std::uint32_t row, std::uint32_t k) const {
    const Row& of = rows_[row];
    return !of.entries.empty() && of.entries.front().column == k ? of.entries.front().value
                                                                 : of.rest;
  }

  // The first place from k on whose row has a usable entry in column k; the last of all where none
  // has.
  std::uint32_t place_of_pivot(std::uint32_t k) const {
    auto first = static_cast<std::uint32_t>(rows_.size() - 1);
    for (const std::uint32_t row : beginning_with_[k])
      if (place_of_[row] >= k && std::fabs(rows_[row].entries.front().value) > kSmallestPivot)
        first = std::min(first, place_of_[row]);
    return first;
  }

  void swap_places(std::uint32_t a, std::uint32_t b) {
    std::swap(row_at_[a], row_at_[b]);
    place_of_[row_at_[a]] = a;
    place_of_[row_at_[b]] = b;
  }

  // Takes column k from the rows that begin with it. Those passed over in the search for the pivot,
  // which is row k now and stood at `from`, count as zero there.
  void eliminate_below(std::uint32_t k, std::uint32_t from) {
    const Row pivot_row = std::move(rows_[row_at_[k]]);
    const double pivot = pivot_row.entries.empty() || pivot_row.entries.front().column != k
                             ? pivot_row.rest
                             : pivot_row.entries.front().value;
    for (const std::uint32_t row : std::exchange(beginning_with_[k], {})) {
      if (place_of_[row] <= k) continue;  // a pivot's
      Row& mine = rows_[row];
      const double value = mine.entries.front().value;
      if (place_of_[row] > from && std::fabs(value) > kSmallestPivot)
        subtract(mine, value / pivot, pivot_row);
      else
        mine.entries.erase(mine.entries.begin());
      wait(row);
    }
  }

  // mine -= factor * theirs, behind the column that both begin with.
  void subtract(Row& mine, double factor, const Row& theirs) {
    sum_.clear();
    auto a = mine.entries.begin() + 1;
    auto b = theirs.entries.begin() + 1;
    const double nothing = factor * theirs.rest;
    const bool drops_zeros = !std::isnan(mine.rest) && !std::isnan(nothing);
    while (a != mine.entries.end() || b != theirs.entries.end()) {
      const bool takes_a =
          a != mine.entries.end() && (b == theirs.entries.end() || a->column <= b->column);
      const bool takes_b =
          b != theirs.entries.end() && (a == mine.entries.end() || b->column <= a->column);
      const std::uint32_t column = takes_a ? a->column : b->column;
      const double product = takes_b ? factor * b->value : nothing;
      const double value = (takes_a ? a->value : mine.rest) - product;
      if (value != 0 || !drops_zeros) sum_.push_back({column, value});
      a += takes_a ? 1 : 0;
      b += takes_b ? 1 : 0;
    }
    mine.entries.assign(sum_.begin(), sum_.end());
    if (!drops_zeros) mine.rest = kNotANumber;
  }

  std::vector<Row> rows_;
  std::vector<std::vector<std::uint32_t>> beginning_with_;
  std::vector<std::uint32_t> row_at_;
  std::vector<std::uint32_t> place_of_;
  NumericRow sum_;
};

void set(NumericRow& row, std::uint32_t column, double value) {
  const auto at = std::find_if(row.begin(), row.end(),
                               [&](const NumericEntry& e) { return e.column >= column; });
  if (at != row.end() && at->column == column)
    at->value = value;
  else
    row.insert(at, {column, value});
}

}  // namespace

double sparse_det_double(std::vector<NumericRow> rows, int p) {
  return Elimination(std::move(rows)).determinant(p);
}

double alexander_value(const std::vector<Crossing>& crossings, int t) {
  // Fewer are sooner eliminated whole vectors at a time.
  constexpr std::size_t kFewCrossings = 100;
  if (crossings.size() < kFewCrossings) {
    auto matrix = CreateFoxMatrix_double(crossings, t);
    return matrix.empty() ? 1.0 : det_double(matrix, t);
  }
  const NumericRowEntries entries = numeric_row_entries(t);
  std::vector<NumericRow> rows(crossings.size() - 1);
  for (std::size_t k = 0; k < rows.size(); ++k) {
    rows[k].reserve(3);
    fill_row(crossings[k], crossings[k].type != 0 ? entries.positive : entries.negative, 0.0,
             [&](std::size_t column, double value) {
               if (column < rows.size()) set(rows[k], static_cast<std::uint32_t>(column), value);
             });
  }
  return sparse_det_double(std::move(rows), t);
}

}  // namespace korvex::alexander

#include "alexander/sparse_determinant.hpp"

#include <algorithm>
#include <limits>

#include "alexander/division_free_determinant.hpp"

namespace korvex::alexander {

namespace {

constexpr std::uint32_t kUnitPolynomial[] = {1};
constexpr std::size_t kNone = std::numeric_limits<std::size_t>::max();

}  // namespace

SparseMatrix::SparseMatrix(std::size_t size)
    : rows_(size, Row(&memory_), &memory_),
      left_(size, &memory_),
      entries_(size, 0, &memory_),
      column_of_(size, kNone, &memory_),
      factor_{kUnitPolynomial, 1, 0} {
  for (std::size_t k = 0; k < size; ++k) left_[k] = k;
}

void SparseMatrix::append(std::size_t row, std::size_t column, const int* coefficients,
                          std::size_t count) {
  const Laurent value = trimmed(reinterpret_cast<const std::uint32_t*>(coefficients), count, 0);
  if (is_zero(value)) return;
  if (rows_[row].empty()) rows_[row].reserve(3);
  rows_[row].push_back({column, value});
  ++entries_[column];
}

std::vector<int> SparseMatrix::determinant() {
  while (!left_.empty()) {
    const std::optional<Pivot> pivot = cheapest_pivot();
    if (!pivot) break;
    take(*pivot);
  }
  if (!left_.empty()) multiply(remaining_determinant());
  if (is_zero(factor_)) return {};
  const std::uint32_t unit = is_odd_permutation() ? 0U - unit_ : unit_;
  const auto lowest = static_cast<std::size_t>(factor_.low);
  std::vector<int> coefficients(lowest + factor_.size, 0);
  for (std::size_t k = 0; k < factor_.size; ++k)
    coefficients[lowest + k] = static_cast<int>(unit * factor_.c[k]);
  return coefficients;
}

// The single entry of a row or column, else the unit whose elimination may fill in the fewest
// entries. Nothing where there is no unit, or no entry.
std::optional<SparseMatrix::Pivot> SparseMatrix::cheapest_pivot() const {
  std::optional<Pivot> best;
  std::size_t least = kNone;
  for (const std::size_t r : left_) {
    const Row& row = rows_[r];
    for (std::size_t place = 0; place < row.size(); ++place) {
      const std::size_t fill = (row.size() - 1) * (entries_[row[place].column] - 1);
      if (fill >= least || (fill > 0 && !is_unit(row[place].value))) continue;
      best = Pivot{r, place};
      least = fill;
      if (fill < 2) return best;
    }
  }
  return best;
}

void SparseMatrix::take(Pivot pivot) {
  left_.erase(std::find(left_.begin(), left_.end(), pivot.row));
  const Row pivot_row = std::move(rows_[pivot.row]);
  const Entry entry = pivot_row[pivot.place];
  column_of_[pivot.row] = entry.column;
  multiply(entry.value);
  for (const Entry& e : pivot_row) --entries_[e.column];
  for (const std::size_t r : left_) {
    if (entries_[entry.column] == 0) return;
    Row& row = rows_[r];
    const auto found = std::find_if(row.begin(), row.end(),
                                    [&](const Entry& e) { return e.column == entry.column; });
    if (found == row.end()) continue;
    --entries_[entry.column];
    if (pivot_row.size() == 1) {
      row.erase(found);
    } else {
      const Laurent factor = negated_quotient(found->value, entry.value, memory_);
      eliminate(row, factor, pivot_row, entry.column);
    }
  }
}

// row += factor * pivot_row, without `column`, which cancels.
void SparseMatrix::eliminate(Row& row, const Laurent& factor, const Row& pivot_row,
                             std::size_t column) {
  Row sum(&memory_);
  sum.reserve(row.size() + pivot_row.size() - 2);
  auto mine = row.begin();
  auto theirs = pivot_row.begin();
  while (mine != row.end() || theirs != pivot_row.end()) {
    const std::size_t next = std::min(mine != row.end() ? mine->column : kNone,
                                      theirs != pivot_row.end() ? theirs->column : kNone);
    const bool is_mine = mine != row.end() && mine->column == next;
    const bool is_theirs = theirs != pivot_row.end() && theirs->column == next;
    if (next != column) {
      Laurent value = is_mine ? mine->value : Laurent{};
      if (is_theirs) value = plus_product(value, factor, theirs->value, memory_);
      if (!is_zero(value)) sum.push_back({next, value});
      entries_[next] += (is_zero(value) ? 0U : 1U);
      entries_[next] -= (is_mine ? 1U : 0U);
    }
    if (is_mine) ++mine;
    if (is_theirs) ++theirs;
  }
  row = std::move(sum);
}

void SparseMatrix::multiply(const Laurent& value) {
  if (is_unit(value)) {
    unit_ *= *value.c;
    factor_.low += value.low;
  } else if (is_zero(value)) {
    factor_ = value;
  } else if (!is_zero(factor_)) {
    factor_ = plus_product({}, factor_, value, memory_);
  }
}

// Of the rows left; the columns left go to them in order.
Laurent SparseMatrix::remaining_determinant() {
  std::vector<bool> is_taken(column_of_.size(), false);
  for (const std::size_t column : column_of_)
    if (column != kNone) is_taken[column] = true;
  std::vector<std::size_t> place(column_of_.size(), 0);
  std::size_t next = 0;
  for (std::size_t c = 0; c < is_taken.size(); ++c) {
    if (is_taken[c]) continue;
    column_of_[left_[next]] = c;
    place[c] = next++;
  }
  std::vector<Laurent> dense(next * next);
  for (std::size_t k = 0; k < next; ++k)
    for (const Entry& entry : rows_[left_[k]]) dense[k * next + place[entry.column]] = entry.value;
  return division_free_determinant(dense, next, memory_);
}

bool SparseMatrix::is_odd_permutation() {
  bool odd = false;
  for (std::size_t r = 0; r < column_of_.size(); ++r)
    for (; column_of_[r] != r; odd = !odd) std::swap(column_of_[r], column_of_[column_of_[r]]);
  return odd;
}

}  // namespace korvex::alexander

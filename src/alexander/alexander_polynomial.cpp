#include "alexander/alexander_polynomial.hpp"

#include <array>
#include <cstddef>
#include <span>
#include <utility>

#include "alexander/fox_row.hpp"
#include "alexander/sparse_determinant.hpp"
#include "alexander/stored_polynomial.hpp"

namespace korvex::alexander {

namespace {

struct LinearEntry {
  std::array<int, 2> c;
  std::size_t count;
};

constexpr LinearEntry kZero{{0, 0}, 0};
constexpr LinearEntry kOne{{1, 0}, 1};
constexpr LinearEntry kMinusOne{{-1, 0}, 1};
constexpr LinearEntry kT{{0, 1}, 2};
constexpr LinearEntry kMinusT{{0, -1}, 2};
constexpr LinearEntry kOneMinusT{{1, -1}, 2};

constexpr RowEntries<const LinearEntry*> kPositive{&kOneMinusT, &kMinusOne, &kT, &kMinusT, &kOne};
constexpr RowEntries<const LinearEntry*> kNegative{&kOneMinusT, &kT, &kMinusOne, &kOne, &kMinusT};

// The entries of one row, the columns rising.
class Row {
 public:
  struct Entry {
    std::size_t column;
    const LinearEntry* value;
  };

  explicit Row(const Crossing& crossing) {
    const LinearEntry* const zero = &kZero;
    fill_row(crossing, crossing.type != 0 ? kPositive : kNegative, zero,
             [this](std::size_t column, const LinearEntry* value) {
               set({column, value});
             });
  }

  std::span<const Entry> entries() const { return {entries_.data(), count_}; }

 private:
  void set(Entry entry) {
    std::size_t place = 0;
    while (place < count_ && entries_[place].column < entry.column) ++place;
    if (place == count_ || entries_[place].column != entry.column)
      for (std::size_t k = count_++; k > place; --k) entries_[k] = entries_[k - 1];
    entries_[place] = entry;
  }

  std::array<Entry, 3> entries_;
  std::size_t count_ = 0;
};

}  // namespace

polynomial<int> alexander_polynomial(const std::vector<Crossing>& crossings) {
  if (crossings.size() < 2) return stored_polynomial({1});
  const std::size_t rows = crossings.size() - 1;
  SparseMatrix matrix(rows);
  for (std::size_t k = 0; k < rows; ++k) {
    const Row row(crossings[k]);
    for (const auto& [column, value] : row.entries())
      if (column < rows) matrix.append(k, column, value->c.data(), value->count);
  }
  std::vector<int> determinant = matrix.determinant();
  // The one entry of a matrix of one row is stored as {0}, which is normalised to 1.
  if (rows == 1 && determinant.empty()) return stored_polynomial({1});
  return NormalizePoly(stored_polynomial(std::move(determinant)));
}

}  // namespace korvex::alexander

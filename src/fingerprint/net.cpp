#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <span>
#include <utility>
#include <vector>

#include "korvex.h"

namespace {

Job candidate(const std::vector<ChainAtom>& chain, std::size_t begin, std::size_t end) {
  return {0,
          0,
          chain[begin - 1].id,
          chain[end - 1].id,
          static_cast<std::int32_t>(begin),
          static_cast<std::int32_t>(end)};
}

// A strong row: the centre of a square of marks.
struct Centre {
  std::int64_t begin;
  std::int64_t end;
  std::size_t order;  // place among the rows
};

// The marks of all squares, seen one row of the grid at a time: memory grows with the chain's
// length and not with its square.
class MarkGrid {
 public:
  // Positions are 1-based, to `n`. A square holds the pairs within `reach` of its centre.
  MarkGrid(std::vector<Centre> centres, std::int64_t n, std::int64_t reach)
      : centres_(std::move(centres)),
        n_(n),
        reach_(reach),
        marks_(static_cast<std::size_t>(n) + 2) {
    std::stable_sort(centres_.begin(), centres_.end(),
                     [](const Centre& a, const Centre& b) { return a.begin < b.begin; });
  }

  // Calls `visit(row, column)` for the marked pairs with row < column, in order.
  template <class Visit>
  void for_each_marked(Visit visit) {
    std::size_t first = 0;
    std::size_t last = 0;
    for (std::int64_t row = 1; row < n_; ++row) {
      while (last < centres_.size() && centres_[last].begin <= row + reach_) ++last;
      while (first < last && centres_[first].begin < row - reach_) ++first;
      if (first == last) continue;
      mark({centres_.data() + first, last - first}, row);
      auto place = marks_.begin() + row + 1;
      while ((place = std::find(place, marks_.end(), kMarked)) != marks_.end()) {
        visit(row, place - marks_.begin());
        ++place;
      }
    }
  }

 private:
  static constexpr unsigned char kMarked = 1;

  // The squares that meet the row mark their columns; a centre is unmarked unless the square of a
  // later row covers it.
  void mark(std::span<const Centre> squares, std::int64_t row) {
    std::fill(marks_.begin(), marks_.end(), 0);
    for (const Centre& square : squares) {
      const std::int64_t from = std::max<std::int64_t>(1, square.end - reach_);
      const std::int64_t to = std::min(n_, square.end + reach_);
      if (from <= to) std::fill(marks_.begin() + from, marks_.begin() + to + 1, kMarked);
    }
    for (const Centre& centre : squares) {
      if (centre.begin != row || centre.end < 1 || centre.end > n_) continue;
      marks_[static_cast<std::size_t>(centre.end)] = is_marked_last(squares, centre) ? kMarked : 0;
    }
  }

  // Whether, of the squares that hold this centre, the last has its own centre elsewhere.
  bool is_marked_last(std::span<const Centre> squares, const Centre& centre) const {
    const Centre* last = &centre;
    for (const Centre& other : squares)
      if (std::abs(other.end - centre.end) <= reach_ && other.order > last->order) last = &other;
    return last->begin != centre.begin || last->end != centre.end;
  }

  std::vector<Centre> centres_;
  std::int64_t n_;
  std::int64_t reach_;
  std::vector<unsigned char> marks_;  // of one row of the grid, by column
};

}  // namespace

int PrepareJobsFromNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates,
                       int step) {
  const auto n = static_cast<std::uint32_t>(chain.size());
  const auto spacing = static_cast<std::uint32_t>(step);
  for (std::uint32_t i = 0; i < n; i += spacing)
    for (std::uint32_t j = n - 1; j > i; j = j < spacing ? 0 : j - spacing)
      candidates.push_back(candidate(chain, i + 1, j + 1));
  std::clog << "Choosen " << candidates.size() << " points on the net of matrix.\n";
  return 1;
}

int PrepareJobsAroundNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates,
                         const std::vector<RowFile>& rows, int step, int threshold) {
  std::vector<Centre> centres;
  for (std::size_t k = 0; k < rows.size(); ++k)
    if (rows[k].strength > threshold) centres.push_back({rows[k].begin, rows[k].end, k});
  MarkGrid grid(std::move(centres), static_cast<std::int64_t>(chain.size()),
                std::int64_t{step} - 1);
  grid.for_each_marked([&](std::int64_t row, std::int64_t column) {
    candidates.push_back(
        candidate(chain, static_cast<std::size_t>(row), static_cast<std::size_t>(column)));
  });
  std::clog << "There is " << candidates.size() << " more points on the net of matrix.\n";
  return 0;
}

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <vector>

#include "reference/reference.hpp"

namespace reference {

namespace {

Job candidate(const std::vector<ChainAtom>& chain, std::size_t begin, std::size_t end) {
  return {0,
          0,
          chain[begin - 1].id,
          chain[end - 1].id,
          static_cast<std::int32_t>(begin),
          static_cast<std::int32_t>(end)};
}

// Pairs of 1-based positions in a chain of n atoms.
class MarkGrid {
 public:
  explicit MarkGrid(std::size_t n) : n_(n), marks_((n + 1) * (n + 1)) {}

  // Marks the pairs within `reach` of (row, column), but for that pair itself.
  void mark_around(std::int64_t row, std::int64_t column, std::int64_t reach) {
    const std::int64_t last = static_cast<std::int64_t>(n_);
    for (std::int64_t r = std::max<std::int64_t>(1, row - reach); r <= std::min(last, row + reach);
         ++r) {
      for (std::int64_t c = std::max<std::int64_t>(1, column - reach);
           c <= std::min(last, column + reach); ++c) {
        marks_[index(static_cast<std::size_t>(r), static_cast<std::size_t>(c))] = true;
      }
    }
    if (row >= 1 && row <= last && column >= 1 && column <= last) {
      marks_[index(static_cast<std::size_t>(row), static_cast<std::size_t>(column))] = false;
    }
  }

  bool is_marked(std::size_t row, std::size_t column) const { return marks_[index(row, column)]; }

 private:
  std::size_t index(std::size_t row, std::size_t column) const { return row * (n_ + 1) + column; }

  std::size_t n_;
  std::vector<bool> marks_;
};

}  // namespace

int PrepareJobsFromNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates,
                       int step) {
  const auto n = static_cast<std::uint32_t>(chain.size());
  const auto spacing = static_cast<std::uint32_t>(step);
  for (std::uint32_t i = 0; i < n; i += spacing) {
    for (std::uint32_t j = n - 1; j > i; j = j < spacing ? 0 : j - spacing) {
      candidates.push_back(candidate(chain, i + 1, j + 1));
    }
  }
  std::clog << "Choosen " << candidates.size() << " points on the net of matrix.\n";
  return 1;
}

int PrepareJobsAroundNet(const std::vector<ChainAtom>& chain, std::vector<Job>& candidates,
                         const std::vector<RowFile>& rows, int step, int threshold) {
  const std::size_t n = chain.size();
  MarkGrid grid(n);
  for (const RowFile& row : rows) {
    if (row.strength <= threshold) continue;
    grid.mark_around(row.begin, row.end, std::int64_t{step} - 1);
  }
  for (std::size_t r = 1; r < n; ++r) {
    for (std::size_t c = r + 1; c <= n; ++c) {
      if (grid.is_marked(r, c)) candidates.push_back(candidate(chain, r, c));
    }
  }
  std::clog << "There is " << candidates.size() << " more points on the net of matrix.\n";
  return 0;
}

}  // namespace reference

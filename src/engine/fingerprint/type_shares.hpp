// Exact shares of knot types in all sub-chains, in memory that grows with the types of each.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace korvex {

struct ShareOfType {
  std::int32_t type;
  double share;
};

// Shares by pair of stations. Sub-chains of which nothing is known are unknotted.
class TypeShares {
 public:
  TypeShares() = default;
  explicit TypeShares(std::size_t stations) : cells_(stations * (stations - 1) / 2) {}

  // The place of a sub-chain among all, 0 <= begin < end: by ends, then by begins.
  static std::size_t cell(std::size_t begin, std::size_t end) {
    return end * (end - 1) / 2 + begin;
  }

  std::vector<ShareOfType>& of(std::size_t begin, std::size_t end) {
    return cells_[cell(begin, end)];
  }
  const std::vector<ShareOfType>& of(std::size_t begin, std::size_t end) const {
    return cells_[cell(begin, end)];
  }

  double share(std::size_t type, std::size_t begin, std::size_t end) const {
    const auto& known = of(begin, end);
    if (known.empty()) return type == 0 ? 1 : 0;
    for (const ShareOfType& some : known)
      if (static_cast<std::size_t>(some.type) == type) return some.share;
    return 0;
  }

  std::vector<std::vector<ShareOfType>>& cells() { return cells_; }

 private:
  std::vector<std::vector<ShareOfType>> cells_;
};

}  // namespace korvex

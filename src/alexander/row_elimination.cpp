#include "alexander/row_elimination.hpp"

#include <cmath>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "alexander/row_elimination.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

#include "simd/dispatch.hpp"

HWY_BEFORE_NAMESPACE();
namespace korvex::alexander::HWY_NAMESPACE {
namespace {

namespace hn = hwy::HWY_NAMESPACE;

// The update by as many whole vectors of `d` as fit from j on. Where it stopped.
template <class Tag>
HWY_INLINE std::size_t subtract(Tag d, double* row, const double* pivot_row, double factor,
                                std::size_t j, std::size_t count) {
  const auto f = hn::Set(d, factor);
  for (; j + hn::Lanes(d) <= count; j += hn::Lanes(d)) {
    const auto product = hn::Mul(f, hn::LoadU(d, pivot_row + j));
    hn::StoreU(hn::Sub(hn::LoadU(d, row + j), product), d, row + j);
  }
  return j;
}

void EliminateColumn(std::vector<std::vector<double>>& rows, std::size_t k, std::size_t from) {
  const std::size_t n = rows.size();
  const double* const pivot_row = rows[k].data();
  for (std::size_t i = from; i < n; ++i) {
    double* const row = rows[i].data();
    if (!(std::fabs(row[k]) > kSmallestPivot)) continue;
    const double factor = row[k] / pivot_row[k];
    std::size_t j = subtract(hn::ScalableTag<double>(), row, pivot_row, factor, k, n);
    j = subtract(hn::CappedTag<double, 2>(), row, pivot_row, factor, j, n);
    subtract(hn::CappedTag<double, 1>(), row, pivot_row, factor, j, n);
  }
}

}  // namespace
}  // namespace korvex::alexander::HWY_NAMESPACE
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace korvex::alexander {

KORVEX_VARIANTS(EliminateColumn);

void eliminate_column(std::vector<std::vector<double>>& rows, std::size_t k, std::size_t from) {
  KORVEX_VARIANT(EliminateColumn)(rows, k, from);
}

}  // namespace korvex::alexander
#endif

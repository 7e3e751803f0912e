#include "engine/fingerprint/ray_sweep.hpp"

#include <algorithm>
#include <cmath>

namespace korvex {
namespace {

// What rounding does to coordinates of this size is below a tenth of it.
constexpr double kRounding = 1e-13;

// Strips narrower than this, and bonds that run along their plane, are not decided.
constexpr double kNarrow = 1e-6;

}  // namespace

bool RaySweep::is_free(const Point& ray, Extension extension, std::size_t first, std::size_t last) {
  const Point origin = chain_[extension.from];
  const Point bond = chain_[extension.to] - origin;
  const Point across = cross(ray, bond);
  const double width = norm(across);
  if (!(width > kNarrow)) return false;
  const Point normal = (1 / width) * across;
  const Strip strip{origin, normal, cross(normal, ray), ray, width, dot(ray, bond) / width};
  for (std::size_t k = first; k <= last; ++k) heights_[k] = dot(normal, chain_[k] - origin);

  const std::size_t other_end = extension.from == first ? last : first;
  if (std::abs(heights_[other_end]) <= kRounding) {
    const double place = dot(strip.along, chain_[other_end] - origin);
    if (place >= -kRounding && place <= width + kRounding) return false;
  }
  for (std::size_t k = first; k < last; ++k) {
    const double low = std::min(heights_[k], heights_[k + 1]);
    const double high = std::max(heights_[k], heights_[k + 1]);
    if (low > kRounding || high < -kRounding) continue;
    if (k == extension.from || k + 1 == extension.from) {
      // In the strip's corner alone, unless it runs on in the plane.
      if (high - low <= kNarrow) return false;
      continue;
    }
    if (meets_bond(strip, k)) return false;
  }
  return true;
}

// Also true where it is not certain.
bool RaySweep::meets_bond(const Strip& strip, std::size_t bond) const {
  const Point from = chain_[bond] - strip.origin;
  const Point to = chain_[bond + 1] - strip.origin;
  const double fall = heights_[bond] - heights_[bond + 1];
  const double begin = dot(strip.along, from);
  const double end = dot(strip.along, to);
  if (std::max(begin, end) < -kRounding || std::min(begin, end) > strip.width + kRounding)
    return false;
  if (std::abs(fall) < kNarrow) return true;
  const double part = heights_[bond] / fall;
  const double error = 2 * kRounding / std::abs(fall);
  const double place = begin + part * (end - begin);
  const double place_error = error * std::abs(end - begin) + kRounding;
  if (place < -place_error || place > strip.width + place_error) return false;
  const double low = dot(strip.up, from);
  const double high = dot(strip.up, to);
  const double over = low + part * (high - low) - strip.slope * place;
  const double over_error =
      error * std::abs(high - low) + kRounding + std::abs(strip.slope) * (place_error + kRounding);
  return over > -over_error;
}

}  // namespace korvex

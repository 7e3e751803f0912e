#include "read/byte_stream.hpp"

#include <algorithm>

namespace korvex::read {

std::string_view ByteStream::ahead(std::size_t count) {
  constexpr std::size_t kAtOnce = std::size_t{1} << 18;
  if (window_.size() - begin_ < count && !at_end_) {
    window_.erase(0, begin_);
    dropped_ += begin_;
    begin_ = 0;
    // A length that the bytes only claim costs no memory before they are there.
    while (window_.size() < count && !at_end_)
      at_end_ = !read_more(*source_, window_, window_.size() + kAtOnce);
  }
  return std::string_view(window_).substr(begin_);
}

bool ByteStream::skip(std::uint64_t count) {
  constexpr std::size_t kAtOnce = std::size_t{1} << 16;
  while (count > 0) {
    const std::size_t some = std::min<std::uint64_t>(count, kAtOnce);
    const std::size_t there = std::min(ahead(some).size(), some);
    if (there == 0) return false;
    drop(there);
    count -= there;
  }
  return true;
}

}  // namespace korvex::read

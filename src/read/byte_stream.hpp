// A window that moves over bytes from front to back, for formats that are not text.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "read/bytes.hpp"

namespace korvex::read {

class ByteStream {
 public:
  explicit ByteStream(std::unique_ptr<ByteSource> source) : source_(std::move(source)) {}

  // What is in the window: `count` bytes or more, or all that are left. Valid until the next call.
  std::string_view ahead(std::size_t count);
  // Moves on; no farther than the end of the window.
  void drop(std::size_t count) { begin_ += count; }
  // Moves on, wherever the window ends; false where the bytes end before.
  bool skip(std::uint64_t count);

  // The number of bytes before the window.
  std::uint64_t place() const { return dropped_ + begin_; }

 private:
  std::unique_ptr<ByteSource> source_;
  std::string window_;
  std::size_t begin_ = 0;      // what is before it has been dropped
  std::uint64_t dropped_ = 0;  // bytes that have left the window
  bool at_end_ = false;
};

}  // namespace korvex::read

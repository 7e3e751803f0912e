// The fuzzer's bytes, read as numbers.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace fuzz {

class Bytes {
 public:
  Bytes(const std::uint8_t* data, std::size_t size) : data_(data), left_(size) {}

  std::size_t left() const { return left_; }

  // The next bytes as a value of a trivial type; zeros stand in for bytes that are missing.
  template <class Value>
  Value take() {
    Value value{};
    const std::size_t count = std::min(sizeof value, left_);
    if (count > 0) std::memcpy(&value, data_, count);
    data_ += count;
    left_ -= count;
    return value;
  }

 private:
  const std::uint8_t* data_;
  std::size_t left_;
};

}  // namespace fuzz

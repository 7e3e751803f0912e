// Numbers as trajectories in binary have them, of either byte order.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace korvex::read {

// Takes numbers off the front of bytes, of which there must be enough.
class Numbers {
 public:
  Numbers(std::string_view bytes, bool big_endian) : bytes_(bytes), big_(big_endian) {}

  std::int32_t integer() { return static_cast<std::int32_t>(take(4)); }
  std::int64_t long_integer() { return static_cast<std::int64_t>(take(8)); }
  // Of 1, 2 or 4 bytes.
  std::int64_t whole(std::size_t width, bool is_signed) {
    const std::uint64_t value = take(width);
    const auto spare = static_cast<unsigned>(64 - 8 * width);
    return is_signed ? static_cast<std::int64_t>(value << spare) >> spare
                     : static_cast<std::int64_t>(value);
  }
  double single() { return std::bit_cast<float>(static_cast<std::uint32_t>(take(4))); }
  double real(bool is_double) { return is_double ? std::bit_cast<double>(take(8)) : single(); }

 private:
  std::uint64_t take(std::size_t count) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < count; ++i) {
      const auto byte = static_cast<unsigned char>(bytes_[big_ ? i : count - 1 - i]);
      value = value << 8U | byte;
    }
    bytes_.remove_prefix(count);
    return value;
  }

  std::string_view bytes_;
  bool big_;
};

}  // namespace korvex::read

// MessagePack, as far as BinaryCIF uses it: values that point into the bytes.
//
// Written here because packaged readers copy every byte and follow nested values as deep as a
// damaged file asks for.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace korvex::read {

struct Packed {
  enum class Kind { kNone, kBool, kInteger, kReal, kText, kBytes, kArray, kMap };

  Kind kind = Kind::kNone;
  std::int64_t integer = 0;            // of a truth value 0 or 1
  double real = 0;                     // of an integer the same
  std::string_view bytes;              // of texts and bytes
  std::vector<Packed> items;           // of an array or a map
  std::vector<std::string_view> keys;  // of a map

  // The value of a key; one of the kind kNone where there is none.
  const Packed& operator[](std::string_view key) const;
};

// Throws Error (bad input), in the name of `file`, where the bytes are no one whole value.
Packed read_message_pack(std::string_view bytes, const std::string& file);

}  // namespace korvex::read

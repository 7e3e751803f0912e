#include "read/message_pack.hpp"

#include <algorithm>
#include <bit>

#include "read/text.hpp"

namespace korvex::read {
namespace {

class PackReader {
 public:
  PackReader(std::string_view bytes, const std::string& file) : rest_(bytes), file_(file) {}

  Packed read() {
    const Packed value = next(0);
    if (!rest_.empty()) fail("bytes follow its end");
    return value;
  }

 private:
  [[noreturn]] void fail(const char* what) const {
    fail_at(file_, 0,
            std::string("the MessagePack data is damaged (") + what +
                "); copy or download the file again");
  }

  std::string_view take(std::uint64_t count) {
    if (count > rest_.size()) fail("it is cut short");
    const std::string_view taken = rest_.substr(0, count);
    rest_.remove_prefix(count);
    return taken;
  }

  std::uint64_t number(std::size_t size) {
    std::uint64_t value = 0;
    for (const char byte : take(size)) value = value << 8U | static_cast<unsigned char>(byte);
    return value;
  }

  static Packed integer_of(std::int64_t value) {
    Packed packed;
    packed.kind = Packed::Kind::kInteger;
    packed.integer = value;
    packed.real = static_cast<double>(value);
    return packed;
  }

  // Of `size` bytes in two's complement.
  Packed signed_integer(std::size_t size) {
    const auto spare = static_cast<unsigned>(64 - 8 * size);
    return integer_of(static_cast<std::int64_t>(number(size) << spare) >> spare);
  }

  Packed real(double value) const {
    Packed packed;
    packed.kind = Packed::Kind::kReal;
    packed.real = value;
    return packed;
  }

  Packed bytes(Packed::Kind kind, std::uint64_t size) {
    Packed packed;
    packed.kind = kind;
    packed.bytes = take(size);
    return packed;
  }

  // Every value takes a byte, so that a count cannot ask for more than the bytes hold.
  void check_count(std::uint64_t count) const {
    if (count > rest_.size()) fail("it is cut short");
  }

  Packed array(std::uint64_t count, int depth) {
    check_count(count);
    Packed packed;
    packed.kind = Packed::Kind::kArray;
    for (; count > 0; --count) packed.items.push_back(next(depth + 1));
    return packed;
  }

  Packed map(std::uint64_t count, int depth) {
    check_count(count);
    Packed packed;
    packed.kind = Packed::Kind::kMap;
    for (; count > 0; --count) {
      const Packed key = next(depth + 1);
      if (key.kind != Packed::Kind::kText) fail("a key is no text");
      packed.keys.push_back(key.bytes);
      packed.items.push_back(next(depth + 1));
    }
    return packed;
  }

  Packed next(int depth) {
    constexpr int kDeepest = 32;
    if (depth > kDeepest) fail("its values are nested too deep");
    const auto tag = static_cast<unsigned>(number(1));
    if (tag < 0x80) return integer_of(tag);
    if (tag < 0x90) return map(tag & 0xfU, depth);
    if (tag < 0xa0) return array(tag & 0xfU, depth);
    if (tag < 0xc0) return bytes(Packed::Kind::kText, tag & 0x1fU);
    if (tag >= 0xe0) return integer_of(static_cast<std::int64_t>(tag) - 0x100);
    return next_long(tag, depth);
  }

  Packed next_long(unsigned tag, int depth) {
    switch (tag) {
      case 0xc0:
        return {};
      case 0xc2:
      case 0xc3: {
        Packed packed = integer_of(tag - 0xc2);
        packed.kind = Packed::Kind::kBool;
        return packed;
      }
      case 0xc4:
      case 0xc5:
      case 0xc6:
        return bytes(Packed::Kind::kBytes, number(std::size_t{1} << (tag - 0xc4)));
      case 0xca:
        return real(std::bit_cast<float>(static_cast<std::uint32_t>(number(4))));
      case 0xcb:
        return real(std::bit_cast<double>(number(8)));
      case 0xcc:
      case 0xcd:
      case 0xce:
      case 0xcf:
        return integer_of(static_cast<std::int64_t>(number(std::size_t{1} << (tag - 0xcc))));
      case 0xd0:
      case 0xd1:
      case 0xd2:
      case 0xd3:
        return signed_integer(std::size_t{1} << (tag - 0xd0));
      case 0xd9:
      case 0xda:
      case 0xdb:
        return bytes(Packed::Kind::kText, number(std::size_t{1} << (tag - 0xd9)));
      case 0xdc:
      case 0xdd:
        return array(number(std::size_t{2} << (tag - 0xdc)), depth);
      case 0xde:
      case 0xdf:
        return map(number(std::size_t{2} << (tag - 0xde)), depth);
      default:
        fail("it has a value of an unknown kind");
    }
  }

  std::string_view rest_;
  const std::string& file_;
};

}  // namespace

const Packed& Packed::operator[](std::string_view key) const {
  static const Packed kNothing;
  const auto found = std::find(keys.begin(), keys.end(), key);
  return found == keys.end() ? kNothing : items[static_cast<std::size_t>(found - keys.begin())];
}

Packed read_message_pack(std::string_view bytes, const std::string& file) {
  return PackReader(bytes, file).read();
}

}  // namespace korvex::read

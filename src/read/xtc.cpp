// XTC files: frames of a head, a box and positions that GROMACS's compression has turned into whole
// numbers of 1/precision nanometres. The numbers are big-endian (XDR).
//
// Compressed positions are a stream of bits. An atom comes as three numbers within the frame's
// bounds, mixed into one. A bit behind it says whether a run follows; then five bits give three
// times the length of the run, plus how the range of its numbers changes for the next: runs are
// atoms that are told by their small distance from the atom before. The first of a run stands
// before the atom that it follows in the stream, as the atoms of water molecules do best.
#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>

#include "read/parsers.hpp"
#include "read/xdr.hpp"

namespace korvex::read {
namespace {

__extension__ using Wide = unsigned __int128;

// The ranges of small distances, about 2^(i/3), so that three of them fit in i bits.
constexpr std::array<std::uint32_t, 73> kRanges = {
    0,        0,        0,       0,       0,       0,       0,       0,       0,       8,
    10,       12,       16,      20,      25,      32,      40,      50,      64,      80,
    101,      128,      161,     203,     256,     322,     406,     512,     645,     812,
    1024,     1290,     1625,    2048,    2580,    3250,    4096,    5060,    6501,    8192,
    10321,    13003,    16384,   20642,   26007,   32768,   41285,   52015,   65536,   82570,
    104031,   131072,   165140,  208063,  262144,  330280,  416127,  524287,  660561,  832255,
    1048576,  1321122,  1664510, 2097152, 2642245, 3329021, 4194304, 5284491, 6658042, 8388607,
    10568983, 13316085, 16777216};
constexpr std::int32_t kFirstRange = 9;

constexpr std::size_t kSpare = 16;  // bytes behind the packed ones that may be looked at

struct Whole {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t z = 0;
};

// Sums and differences of damaged input may leave the range.
std::int32_t wrapped_sum(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

Whole operator+(const Whole& a, const Whole& b) {
  return {wrapped_sum(a.x, b.x), wrapped_sum(a.y, b.y), wrapped_sum(a.z, b.z)};
}

// Goes through the bits, the highest of a byte first. Behind the end come zeros.
class Bits {
 public:
  // `bytes` has kSpare more bytes than `size`.
  Bits(const char* bytes, std::size_t size) : bytes_(bytes), size_(8 * size) {}

  bool is_past_end() const { return place_ > size_; }

  // A number of up to 32 bits.
  std::uint32_t take(unsigned count) {
    const std::uint64_t window = ahead();
    place_ += count;
    return count == 0 ? 0 : static_cast<std::uint32_t>(window >> (64 - count));
  }

  // Three numbers below `sizes`, mixed into one of `count` bits whose bytes come lowest first.
  Whole take_three(unsigned count, const std::array<std::uint32_t, 3>& sizes) {
    if (count > 56) return take_wide(count, sizes);
    const std::uint64_t mixed = take_bytes(count);
    const std::uint64_t rest = mixed / sizes[2];
    return {static_cast<std::int32_t>(rest / sizes[1]), static_cast<std::int32_t>(rest % sizes[1]),
            static_cast<std::int32_t>(mixed % sizes[2])};
  }

 private:
  // 57 bits or more, at the top.
  std::uint64_t ahead() const {
    const std::size_t byte = std::min(place_, size_) / 8;
    std::uint64_t window = 0;
    std::memcpy(&window, bytes_ + byte, sizeof window);
    if constexpr (std::endian::native == std::endian::little) window = __builtin_bswap64(window);
    return window << place_ % 8;
  }

  // Up to 56 bits.
  std::uint64_t take_bytes(unsigned count) {
    const std::uint64_t window = ahead();
    place_ += count;
    const unsigned whole = count / 8 * 8;
    const unsigned rest = count - whole;
    std::uint64_t value = __builtin_bswap64(window) & ((std::uint64_t{1} << whole) - 1);
    if (rest != 0) value |= window << whole >> (64 - rest) << whole;
    return value;
  }

  Whole take_wide(unsigned count, const std::array<std::uint32_t, 3>& sizes) {
    Wide mixed = take_bytes(32);
    mixed |= Wide{take_bytes(std::min(count, 64U) - 32)} << 32U;
    if (count > 64) mixed |= Wide{take_bytes(count - 64)} << 64U;
    const Wide rest = mixed / sizes[2];
    return {static_cast<std::int32_t>(rest / sizes[1]), static_cast<std::int32_t>(rest % sizes[1]),
            static_cast<std::int32_t>(mixed % sizes[2])};
  }

  const char* bytes_;
  std::size_t size_;
  std::size_t place_ = 0;
};

// What stands before the bits of a frame.
struct Packing {
  double precision = 0;
  std::array<std::int32_t, 3> low{};
  std::array<std::int32_t, 3> high{};
  std::int32_t range = 0;
  std::uint64_t bytes = 0;
};

// Unpacks the positions of a frame.
class Unpacker {
 public:
  Unpacker(const Packing& packing, const char* bytes)
      : bits_(bytes, packing.bytes), low_{packing.low[0], packing.low[1], packing.low[2]} {
    bool is_wide = false;
    Wide product = 1;
    for (std::size_t i = 0; i < 3; ++i) {
      sizes_[i] = static_cast<std::uint32_t>(packing.high[i]) -
                  static_cast<std::uint32_t>(packing.low[i]) + 1;
      widths_[i] = static_cast<unsigned>(std::bit_width(sizes_[i]));
      is_wide = is_wide || sizes_[i] > 0xffffffU;
      product *= sizes_[i];
    }
    const auto high = static_cast<std::uint64_t>(product >> 64U);
    const auto low = static_cast<std::uint64_t>(product);
    if (!is_wide)
      width_ = static_cast<unsigned>(high != 0 ? 64 + std::bit_width(high) : std::bit_width(low));
    is_sound_ = sizes_[0] != 0 && sizes_[1] != 0 && sizes_[2] != 0 && set_range(packing.range);
  }

  // Hands the atoms over one after another; false where the bits are damaged.
  template <typename Sink>
  bool unpack(std::size_t atoms, const Sink& sink) {
    std::uint32_t run = 0;
    std::size_t count = 0;
    while (is_sound_ && count < atoms) {
      Whole before = low_ + take_atom();
      ++count;
      int change = 0;
      if (bits_.take(1) != 0) {
        run = bits_.take(5);
        change = static_cast<int>(run % 3) - 1;
        run -= run % 3;
      }
      if (run / 3 > atoms - count || bits_.is_past_end()) return false;
      if (run == 0) sink(before);
      for (std::uint32_t i = 0; i < run; i += 3, ++count) {
        const Whole near =
            before + (bits_.take_three(static_cast<unsigned>(range_), small_) + offset_);
        sink(near);
        if (i == 0) sink(before);
        before = near;
      }
      is_sound_ = set_range(range_ + change);
    }
    return is_sound_ && !bits_.is_past_end();
  }

 private:
  Whole take_atom() {
    if (width_ != 0) return bits_.take_three(width_, sizes_);
    const auto part = [this](std::size_t i) {
      return static_cast<std::int32_t>(bits_.take(widths_[i]));
    };
    const std::int32_t x = part(0);
    const std::int32_t y = part(1);
    return {x, y, part(2)};
  }

  bool set_range(std::int32_t range) {
    range_ = range;
    if (range < kFirstRange || range >= static_cast<std::int32_t>(kRanges.size())) return false;
    const std::uint32_t size = kRanges[static_cast<std::size_t>(range)];
    small_ = {size, size, size};
    const auto middle = -static_cast<std::int32_t>(size / 2);
    offset_ = {middle, middle, middle};
    return true;
  }

  Bits bits_;
  Whole low_;
  std::array<std::uint32_t, 3> sizes_{};
  std::array<unsigned, 3> widths_{};
  unsigned width_ = 0;  // of three numbers in one; 0 where each has bits of its own
  std::int32_t range_ = kFirstRange;
  std::array<std::uint32_t, 3> small_{};
  Whole offset_;
  bool is_sound_ = true;
};

class XtcParser {
 public:
  XtcParser(ByteStream& bytes, const std::string& file, FrameChains& chains)
      : bytes_(bytes), file_(file), chains_(chains) {}

  void parse() {
    for (frame_.number = 1; !bytes_.ahead(1).empty(); ++frame_.number) {
      if (chains_.is_past(frame_.number)) return;
      read_frame(chains_.wants(frame_.number));
    }
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    fail_at(file_, 0, "frame " + std::to_string(frame_.number) + " " + what);
  }

  Numbers take(std::size_t count) {
    const std::string_view there = bytes_.ahead(count);
    if (there.size() < count) fail("is not whole; the file may be cut short: copy it again");
    bytes_.drop(count);
    return {there.substr(0, count), true};
  }

  void read_frame(bool wanted) {
    constexpr std::size_t kHead = 56;
    constexpr std::int32_t kOften = 1995;
    constexpr std::int32_t kLarge = 2023;  // lengths of 64 bits
    constexpr std::int32_t kUnpacked = 9;  // up to so many atoms are not compressed
    Numbers head = take(kHead);
    const std::int32_t magic = head.integer();
    if (magic != kOften && magic != kLarge)
      fail("does not begin as one of an XTC file; the file may be damaged");
    const std::int32_t atoms = head.integer();
    frame_.step = head.integer();
    frame_.time = finite_time(head.single());
    read_box(head);
    if (atoms < 0 || head.integer() != atoms) fail("has two numbers of atoms");
    const auto count = static_cast<std::size_t>(atoms);
    if (atoms <= kUnpacked)
      read_unpacked(count);
    else
      read_packed(count, magic == kLarge, wanted);
    if (wanted) chains_.take(frame_);
  }

  void read_box(Numbers& head) {
    frame_.cell.edges.clear();
    for (int edge = 0; edge < 3; ++edge) {
      const double x = kScale * head.single();
      const double y = kScale * head.single();
      const double z = kScale * head.single();
      frame_.cell.edges.push_back({x, y, z});
    }
  }

  void read_unpacked(std::size_t atoms) {
    Numbers numbers = take(12 * atoms);
    frame_.positions.clear();
    for (std::size_t i = 0; i < atoms; ++i) {
      const double x = kScale * numbers.single();
      const double y = kScale * numbers.single();
      const double z = kScale * numbers.single();
      if (!std::isfinite(x + y + z)) fail("has a position that is not finite");
      frame_.positions.push_back({x, y, z});
    }
  }

  void read_packed(std::size_t atoms, bool large, bool wanted) {
    Numbers head = take(large ? 40 : 36);
    Packing packing;
    packing.precision = head.single();
    for (std::int32_t& low : packing.low) low = head.integer();
    for (std::int32_t& high : packing.high) high = head.integer();
    packing.range = head.integer();
    const std::int64_t bytes = large ? head.long_integer() : head.integer();
    // An atom takes one bit at the least.
    const bool sound = bytes >= 0 && bytes < (std::int64_t{1} << 40) &&
                       atoms <= 8 * static_cast<std::uint64_t>(bytes) &&
                       std::isfinite(packing.precision) && packing.precision > 0;
    if (!sound) fail("has a length or a precision that cannot be; the file may be damaged");
    packing.bytes = static_cast<std::uint64_t>(bytes);
    const std::uint64_t padded = (packing.bytes + 3) / 4 * 4;
    if (!wanted) {
      if (!bytes_.skip(padded)) fail("is not whole; the file may be cut short: copy it again");
      return;
    }
    const std::string_view there = bytes_.ahead(padded);
    if (there.size() < padded) fail("is not whole; the file may be cut short: copy it again");
    packed_.assign(there.substr(0, packing.bytes));
    packed_.resize(packed_.size() + kSpare);
    bytes_.drop(padded);
    unpack(atoms, packing);
  }

  void unpack(std::size_t atoms, const Packing& packing) {
    frame_.positions.resize(atoms);
    Point* next = frame_.positions.data();
    const double unit = kScale / packing.precision;
    const bool whole = Unpacker(packing, packed_.data()).unpack(atoms, [&](const Whole& atom) {
      *next++ = {atom.x * unit, atom.y * unit, atom.z * unit};
    });
    if (!whole) fail("cannot be unpacked; the file may be damaged");
  }

  static constexpr double kScale = 10;  // ångström in a nanometre

  ByteStream& bytes_;
  const std::string& file_;
  FrameChains& chains_;
  Frame frame_;
  std::string packed_;
};

}  // namespace

void parse_xtc(ByteStream& bytes, const std::string& file, FrameChains& chains) {
  XtcParser(bytes, file, chains).parse();
}

}  // namespace korvex::read

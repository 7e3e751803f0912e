// TRR files: frames of a head that tells the size of each of their parts, a box, virials,
// positions, velocities and forces, in single or double precision. The numbers are big-endian
// (XDR), lengths are nanometres.
#include <cmath>

#include "read/parsers.hpp"
#include "read/xdr.hpp"

namespace korvex::read {
namespace {

class TrrParser {
 public:
  TrrParser(ByteStream& bytes, const std::string& file, FrameChains& chains)
      : bytes_(bytes), file_(file), chains_(chains) {}

  void parse() {
    for (frame_.number = 1; !bytes_.ahead(1).empty(); ++frame_.number) {
      if (chains_.is_past(frame_.number)) return;
      read_frame();
    }
  }

 private:
  // Sizes of the parts of a frame in bytes.
  struct Sizes {
    std::uint64_t before_box = 0;
    std::uint64_t box = 0;
    std::uint64_t before_positions = 0;
    std::uint64_t positions = 0;
    std::uint64_t behind = 0;
  };

  [[noreturn]] void fail(const std::string& what) const {
    fail_at(file_, 0, "frame " + std::to_string(frame_.number) + " " + what);
  }

  [[noreturn]] void fail_cut() const {
    fail("is not whole; the file may be cut short: copy it again");
  }

  Numbers take(std::size_t count) {
    const std::string_view there = bytes_.ahead(count);
    if (there.size() < count) fail_cut();
    bytes_.drop(count);
    return {there.substr(0, count), true};
  }

  void skip(std::uint64_t count) {
    if (!bytes_.skip(count)) fail_cut();
  }

  std::uint64_t size(Numbers& head) const {
    const std::int32_t value = head.integer();
    if (value < 0) fail("has a length below zero; the file may be damaged");
    return static_cast<std::uint64_t>(value);
  }

  void read_frame() {
    constexpr std::int32_t kMagic = 1993;
    constexpr std::size_t kTitle = 12;  // "GMX_trn_file", behind its length twice
    Numbers start = take(12);
    const bool begins = start.integer() == kMagic && start.integer() == kTitle + 1;
    if (!begins || start.integer() != kTitle)
      fail("does not begin as one of a TRR file; the file may be damaged");
    skip(kTitle);
    Numbers head = take(13 * 4);
    Sizes sizes;
    sizes.before_box = size(head);
    sizes.before_box += size(head);
    sizes.box = size(head);
    for (int part = 0; part < 4; ++part) sizes.before_positions += size(head);
    sizes.positions = size(head);
    sizes.behind = size(head);
    sizes.behind += size(head);
    const std::uint64_t atoms = size(head);
    frame_.step = head.integer();
    head.integer();
    const bool is_double = find_precision(sizes, atoms);
    // The time, then a coupling that is not needed.
    Numbers end = take(is_double ? 16 : 8);
    frame_.time = finite_time(end.real(is_double));
    read_parts(sizes, atoms, is_double);
  }

  // True for double, false for single precision.
  bool find_precision(const Sizes& sizes, std::uint64_t atoms) const {
    const bool is_double =
        sizes.box == 9 * 8 || (sizes.box == 0 && atoms != 0 && sizes.positions == 3 * 8 * atoms);
    const std::uint64_t width = is_double ? 8 : 4;
    const bool sound = (sizes.box == 0 || sizes.box == 9 * width) &&
                       (sizes.positions == 0 || sizes.positions == 3 * width * atoms);
    if (!sound) fail("has parts of lengths that cannot be; the file may be damaged");
    return is_double;
  }

  Point read_point(Numbers& numbers, bool is_double) const {
    constexpr double kScale = 10;  // ångström in a nanometre
    const double x = kScale * numbers.real(is_double);
    const double y = kScale * numbers.real(is_double);
    return {x, y, kScale * numbers.real(is_double)};
  }

  void read_parts(const Sizes& sizes, std::uint64_t atoms, bool is_double) {
    skip(sizes.before_box);
    frame_.cell.edges.clear();
    Numbers box = take(sizes.box);
    for (int edge = 0; sizes.box != 0 && edge < 3; ++edge)
      frame_.cell.edges.push_back(read_point(box, is_double));
    skip(sizes.before_positions);
    // A frame may hold velocities alone.
    const bool wanted = sizes.positions != 0 && chains_.wants(frame_.number);
    if (!wanted) return skip(sizes.positions + sizes.behind);
    Numbers numbers = take(sizes.positions);
    frame_.positions.clear();
    for (std::uint64_t i = 0; i < atoms; ++i) {
      const Point point = read_point(numbers, is_double);
      if (!std::isfinite(point.x + point.y + point.z)) fail("has a position that is not finite");
      frame_.positions.push_back(point);
    }
    skip(sizes.behind);
    chains_.take(frame_);
  }

  ByteStream& bytes_;
  const std::string& file_;
  FrameChains& chains_;
  Frame frame_;
};

}  // namespace

void parse_trr(ByteStream& bytes, const std::string& file, FrameChains& chains) {
  TrrParser(bytes, file, chains).parse();
}

}  // namespace korvex::read

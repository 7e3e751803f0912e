// DCD files: Fortran records, each between two equal lengths, of either byte order and with lengths
// of 32 or 64 bits. A head, titles, the number of atoms and which of them move; then for each frame
// a box where the head says so, the x, y and z of all atoms, or behind the first frame of those
// that move, and perhaps a fourth coordinate.
#include <array>
#include <cmath>
#include <numbers>

#include "read/parsers.hpp"
#include "read/xdr.hpp"

namespace korvex::read {
namespace {

class DcdParser {
 public:
  DcdParser(ByteStream& bytes, const std::string& file, FrameChains& chains)
      : bytes_(bytes), file_(file), chains_(chains) {}

  void parse() {
    read_head();
    for (frame_.number = 1; !bytes_.ahead(1).empty(); ++frame_.number) {
      if (chains_.is_past(frame_.number)) return;
      read_frame();
    }
  }

 private:
  [[noreturn]] void fail(const std::string& what) const {
    const std::string place =
        frame_.number == 0 ? "the head" : "frame " + std::to_string(frame_.number);
    fail_at(file_, 0, place + " " + what);
  }

  [[noreturn]] void fail_cut() const {
    fail("is not whole; the file may be cut short: copy it again");
  }

  Numbers take(std::size_t count) {
    const std::string_view there = bytes_.ahead(count);
    if (there.size() < count) fail_cut();
    bytes_.drop(count);
    return {there.substr(0, count), big_};
  }

  std::uint64_t length() {
    Numbers numbers = take(is_long_ ? 8 : 4);
    const std::int64_t value = is_long_ ? numbers.long_integer() : numbers.integer();
    if (value < 0) fail("has a record of a length below zero; the file may be damaged");
    return static_cast<std::uint64_t>(value);
  }

  void end_record(std::uint64_t size) {
    if (length() != size) fail("has a record of two lengths; the file may be damaged");
  }

  // A record of this size.
  Numbers record(std::uint64_t size, const char* what) {
    if (length() != size) {
      fail(std::string("has a record of a wrong length where ") + what +
           " belong; the file may be damaged");
    }
    const std::uint64_t mark = is_long_ ? 8 : 4;
    const std::string_view there = bytes_.ahead(size + mark);
    if (there.size() < size + mark) fail_cut();
    const std::string_view content = there.substr(0, size);
    Numbers end(there.substr(size), big_);
    const std::int64_t again = is_long_ ? end.long_integer() : end.integer();
    if (static_cast<std::uint64_t>(again) != size)
      fail("has a record of two lengths; the file may be damaged");
    bytes_.drop(size + mark);
    return {content, big_};
  }

  // A record of any size, whose content is not needed.
  void skip_record() {
    const std::uint64_t size = length();
    if (!bytes_.skip(size)) fail_cut();
    end_record(size);
  }

  void read_head() {
    frame_.number = 0;
    constexpr std::int32_t kHead = 84;
    const std::string_view start = bytes_.ahead(12);
    if (start.size() < 12) fail_cut();
    is_long_ = start.substr(8, 4) == "CORD";
    big_ = start[is_long_ ? 7 : 3] == kHead;
    Numbers head = record(kHead, "settings");
    head.integer();  // CORD
    std::array<std::int32_t, 20> settings{};
    for (std::int32_t& setting : settings) setting = head.integer();
    const bool is_charmm = settings[19] != 0;
    first_step_ = settings[1];
    steps_ = settings[2];
    has_box_ = is_charmm && settings[10] != 0;
    has_fourth_ = is_charmm && settings[11] != 0;
    skip_record();  // titles
    const std::int32_t atoms = record(4, "numbers of atoms").integer();
    const std::int32_t fixed = settings[8];
    if (atoms < 0 || fixed < 0 || fixed > atoms)
      fail("has a number of atoms that cannot be; the file may be damaged");
    atoms_ = static_cast<std::size_t>(atoms);
    if (fixed > 0) read_moving(atoms_ - static_cast<std::size_t>(fixed));
  }

  void read_moving(std::size_t count) {
    Numbers numbers = record(4 * count, "the atoms that move");
    for (std::size_t i = 0; i < count; ++i) {
      const std::int32_t atom = numbers.integer();
      if (atom < 1 || static_cast<std::size_t>(atom) > atoms_)
        fail("names an atom that is not there; the file may be damaged");
      moving_.push_back(static_cast<std::size_t>(atom) - 1);
    }
    has_fixed_ = true;
  }

  void read_frame() {
    if (has_box_) read_box(record(48, "the box"));
    const bool first = frame_.number == 1;
    const bool all = first || !has_fixed_;
    const bool wanted = chains_.wants(frame_.number);
    // Atoms that do not move are told by the first frame alone.
    if (wanted || (first && has_fixed_))
      for (const auto axis : {&Point::x, &Point::y, &Point::z}) read_axis(axis, all);
    else
      for (int axis = 0; axis < 3; ++axis) skip_record();
    if (has_fourth_) skip_record();
    frame_.step = first_step_ + (frame_.number - 1) * steps_;
    if (wanted) chains_.take(frame_);
  }

  void read_axis(double Point::*axis, bool all) {
    const std::size_t count = all ? atoms_ : moving_.size();
    Numbers numbers = record(4 * count, "coordinates");
    frame_.positions.resize(atoms_);
    for (std::size_t i = 0; i < count; ++i) {
      const double value = numbers.single();
      if (!std::isfinite(value)) fail("has a position that is not finite");
      frame_.positions[all ? i : moving_[i]].*axis = value;
    }
  }

  // Lengths and angles, a gamma b beta alpha c, where the angles are degrees or their cosines.
  // Other boxes are left out.
  void read_box(Numbers numbers) {
    std::array<double, 6> box{};
    for (double& value : box) value = numbers.real(true);
    const auto angle = [](double value) {
      const bool is_cosine = value >= -1 && value <= 1;
      return is_cosine ? std::acos(value) * 180 / std::numbers::pi : value;
    };
    frame_.cell = cell_of({box[0], box[2], box[5]}, {angle(box[4]), angle(box[3]), angle(box[1])});
  }

  ByteStream& bytes_;
  const std::string& file_;
  FrameChains& chains_;
  Frame frame_;
  bool big_ = false;
  bool is_long_ = false;
  bool has_box_ = false;
  bool has_fourth_ = false;
  bool has_fixed_ = false;
  std::size_t atoms_ = 0;
  std::vector<std::size_t> moving_;
  std::int64_t first_step_ = 0;
  std::int64_t steps_ = 0;
};

}  // namespace

void parse_dcd(ByteStream& bytes, const std::string& file, FrameChains& chains) {
  DcdParser(bytes, file, chains).parse();
}

}  // namespace korvex::read

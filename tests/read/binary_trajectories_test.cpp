// XTC, TRR and DCD files, shipped and written here.
#include <gtest/gtest.h>

#include <bit>
#include <random>
#include <string>
#include <vector>

#include "korvex/read.hpp"
#include "support/damage.hpp"
#include "support/reading.hpp"
#include "support/temporary_directory.hpp"

namespace {

using korvex::Chain;
using korvex::Point;
using korvex::ReadOptions;
using reading::chain;
using reading::chains;
using reading::complaint;
using reading::contains;
using reading::numbers;

std::string trajectory(const char* name) { return support::data_file("trajectories/") + name; }

// Numbers behind one another.
class BinaryWriter {
 public:
  explicit BinaryWriter(bool big_endian = true) : big_(big_endian) {}

  BinaryWriter& integer(std::int32_t value) { return put(static_cast<std::uint32_t>(value), 4); }
  BinaryWriter& long_integer(std::int64_t value) {
    return put(static_cast<std::uint64_t>(value), 8);
  }
  BinaryWriter& single(float value) { return put(std::bit_cast<std::uint32_t>(value), 4); }
  BinaryWriter& real(double value) { return put(std::bit_cast<std::uint64_t>(value), 8); }
  BinaryWriter& text(const std::string& bytes) {
    bytes_ += bytes;
    return *this;
  }
  const std::string& bytes() const { return bytes_; }

 private:
  BinaryWriter& put(std::uint64_t value, int size) {
    for (int i = 0; i < size; ++i) {
      bytes_ += static_cast<char>(value >> 8 * (big_ ? size - 1 - i : i));
    }
    return *this;
  }

  bool big_;
  std::string bytes_;
};

// Bits, the first the highest of its byte.
class BitWriter {
 public:
  void put(std::uint32_t value, unsigned count) {
    for (unsigned i = count; i-- > 0;) {
      if (used_ % 8 == 0) bytes_ += '\0';
      if ((value >> i & 1U) != 0) bytes_.back() |= static_cast<char>(0x80U >> used_ % 8);
      ++used_;
    }
  }
  std::string padded() const { return bytes_ + std::string((4 - bytes_.size() % 4) % 4, '\0'); }
  std::size_t size() const { return bytes_.size(); }

 private:
  std::string bytes_;
  std::size_t used_ = 0;
};

using Wholes = std::vector<std::array<std::int32_t, 3>>;

// An XTC frame of whole numbers of 1/precision nanometres, each number in 32 bits: bounds so wide
// that the three are not mixed.
std::string wide_xtc_frame(const Wholes& atoms, float precision, std::int32_t magic = 1995) {
  constexpr std::int32_t kLow = -0x3fffffff;
  constexpr std::int32_t kHigh = 0x40000000;
  BitWriter bits;
  for (const auto& atom : atoms) {
    for (const std::int32_t value : atom) bits.put(static_cast<std::uint32_t>(value - kLow), 32);
    bits.put(0, 1);
  }
  BinaryWriter out;
  const auto count = static_cast<std::int32_t>(atoms.size());
  out.integer(magic).integer(count).integer(500).single(2.5F);
  for (const float edge : {4.F, 0.F, 0.F, 0.F, 5.F, 0.F, 0.F, 0.F, 6.F}) out.single(edge);
  out.integer(count).single(precision);
  for (int i = 0; i < 3; ++i) out.integer(kLow);
  for (int i = 0; i < 3; ++i) out.integer(kHigh);
  out.integer(12);
  const auto size = static_cast<std::int32_t>(bits.size());
  return magic == 1995 ? out.integer(size).text(bits.padded()).bytes()
                       : out.long_integer(size).text(bits.padded()).bytes();
}

Wholes some_atoms() {
  Wholes atoms;
  for (std::int32_t i = 0; i < 12; ++i) atoms.push_back({i * 380, -i % 3 * 100, 123456 - i});
  return atoms;
}

TEST(ReadXtc, GivesThePositionsOfTheSameRunsDcd) {
  const std::vector<Chain> packed = korvex::read_chains(trajectory("ring_3_1.xtc"));
  const std::vector<Chain> exact = korvex::read_chains(trajectory("ring_3_1.dcd"));
  ASSERT_EQ(packed.size(), 50U);
  ASSERT_EQ(exact.size(), 50U);
  for (std::size_t i = 0; i < packed.size(); ++i) {
    EXPECT_EQ(packed[i].model, exact[i].model);
    ASSERT_EQ(packed[i].points.size(), 120U);
    for (std::size_t j = 0; j < 120; ++j) {
      // A thousandth of a nanometre, rounded.
      ASSERT_NEAR(packed[i].points[j].x, exact[i].points[j].x, 0.0051);
      ASSERT_NEAR(packed[i].points[j].y, exact[i].points[j].y, 0.0051);
      ASSERT_NEAR(packed[i].points[j].z, exact[i].points[j].z, 0.0051);
    }
  }
}

TEST(ReadXtc, LengthsBecomeAngstrom) {
  for (const std::int32_t magic : {1995, 2023}) {
    const Chain read = chain(wide_xtc_frame(some_atoms(), 1000, magic), {.unwrap = false});
    ASSERT_EQ(read.points.size(), 12U);
    EXPECT_NEAR(read.points[3].x, 11.4, 1e-12);
    EXPECT_NEAR(read.points[4].y, -1, 1e-12);
    EXPECT_NEAR(read.points[11].z, 1234.45, 1e-9);
    EXPECT_EQ(read.time, 2.5);
    EXPECT_EQ(read.step, 500);
    EXPECT_EQ(numbers(read).back(), 12);
  }
}

TEST(ReadXtc, FewAtomsAreNotPacked) {
  BinaryWriter out;
  out.integer(1995).integer(2).integer(1).single(0);
  for (int i = 0; i < 9; ++i) out.single(0);
  out.integer(2);
  for (int i = 0; i < 6; ++i) out.single(static_cast<float>(i) / 4);
  const Chain read = chain(out.bytes());
  ASSERT_EQ(read.points.size(), 2U);
  EXPECT_EQ(read.points[1], Point({7.5, 10, 12.5}));
}

TEST(ReadXtc, FramesMayBeChosen) {
  const std::string file = trajectory("ring_3_1.xtc");
  const std::vector<Chain> all = korvex::read_chains(file);
  const std::vector<Chain> some = korvex::read_chains(file, {.models = {5, 40, 10}});
  ASSERT_EQ(some.size(), 4U);
  for (std::size_t i = 0; i < some.size(); ++i) EXPECT_EQ(some[i], all[4 + 10 * i]);
}

// A TRR frame of atoms on a line, with virials, velocities and forces around the positions.
std::string trr_frame(std::int32_t atoms, bool is_double, bool has_positions = true) {
  BinaryWriter out;
  const std::int32_t width = is_double ? 8 : 4;
  const std::int32_t each = 3 * width * atoms;
  out.integer(1993).integer(13).integer(12).text("GMX_trn_file").integer(0).integer(0);
  out.integer(9 * width).integer(9 * width).integer(0).integer(0).integer(0);
  out.integer(has_positions ? each : 0).integer(each).integer(0);
  out.integer(atoms).integer(70).integer(0);
  const auto put = [&](double value) {
    is_double ? out.real(value) : out.single(static_cast<float>(value));
  };
  put(1.5);
  put(0);
  for (int i = 0; i < 18; ++i) put(i % 4 == 0 ? 8 : 0);
  for (std::int32_t i = 0; has_positions && i < 3 * atoms; ++i) put(i % 3 == 0 ? 0.25 * i : 1);
  for (std::int32_t i = 0; i < 3 * atoms; ++i) put(-1);
  return out.bytes();
}

TEST(ReadTrr, BothPrecisionsAreRead) {
  for (const bool is_double : {false, true}) {
    const Chain read = chain(trr_frame(7, is_double));
    ASSERT_EQ(read.points.size(), 7U);
    EXPECT_EQ(read.points[2], Point({15, 10, 10}));
    EXPECT_EQ(read.time, 1.5);
    EXPECT_EQ(read.step, 70);
  }
}

TEST(ReadTrr, FramesOfVelocitiesAloneHaveNoChain) {
  const std::string text = trr_frame(3, false) + trr_frame(3, false, false) + trr_frame(3, false);
  const std::vector<Chain> read = chains(text);
  ASSERT_EQ(read.size(), 2U);
  EXPECT_EQ(read[1].model, 3);
}

struct DcdKind {
  bool big_endian;
  bool long_marks;
};

// Two frames of four atoms, of which the second moves alone, with a box and a fourth coordinate.
std::string dcd_file(const DcdKind& kind, bool fixed = true) {
  BinaryWriter out(kind.big_endian);
  const auto record = [&](const BinaryWriter& content) {
    const auto size = static_cast<std::int32_t>(content.bytes().size());
    const auto mark = [&] { kind.long_marks ? out.long_integer(size) : out.integer(size); };
    mark();
    out.text(content.bytes());
    mark();
  };
  BinaryWriter head(kind.big_endian);
  head.text("CORD").integer(2).integer(100).integer(10);
  for (int i = 3; i < 8; ++i) head.integer(0);
  head.integer(fixed ? 3 : 0).integer(0).integer(1).integer(1);
  for (int i = 12; i < 19; ++i) head.integer(0);
  record(head.integer(24));
  record(BinaryWriter(kind.big_endian).integer(1).text(std::string(80, 't')));
  record(BinaryWriter(kind.big_endian).integer(4));
  if (fixed) record(BinaryWriter(kind.big_endian).integer(2));
  for (int frame = 0; frame < 2; ++frame) {
    BinaryWriter box(kind.big_endian);
    for (const double value : {50., 0., 60., 90., 90., 70.}) box.real(value);
    record(box);
    const bool all = frame == 0 || !fixed;
    for (int axis = 0; axis < 3; ++axis) {
      BinaryWriter values(kind.big_endian);
      for (int atom = 0; atom < 4; ++atom) {
        if (all || atom == 1) values.single(static_cast<float>(10 * atom + axis + 100 * frame));
      }
      record(values);
    }
    record(BinaryWriter(kind.big_endian).single(0));
  }
  return out.bytes();
}

TEST(ReadDcd, GivesThePositionsOfTheSameRunsDump) {
  const std::vector<Chain> packed = korvex::read_chains(trajectory("ring_3_1.dcd"));
  const std::vector<Chain> dumped = korvex::read_chains(trajectory("ring_3_1.lammpstrj"));
  ASSERT_EQ(packed.size(), dumped.size());
  for (std::size_t i = 0; i < packed.size(); ++i) {
    const double scale = packed[i].bond / dumped[i].bond;
    for (std::size_t j = 1; j < packed[i].points.size(); ++j) {
      const Point one = packed[i].points[j] - packed[i].points[0];
      const Point other = scale * (dumped[i].points[j] - dumped[i].points[0]);
      ASSERT_LT(norm(one - other), 0.1) << i << " " << j;
    }
  }
}

TEST(ReadDcd, EveryByteOrderAndLengthOfMarksIsRead) {
  for (const DcdKind& kind : {DcdKind{false, false}, {true, false}, {false, true}, {true, true}}) {
    for (const bool fixed : {true, false}) {
      const std::vector<Chain> read =
          chains(dcd_file(kind, fixed), {.gaps = korvex::GapPolicy::kBridge, .unwrap = false});
      ASSERT_EQ(read.size(), 2U);
      EXPECT_EQ(read[0].points[3], Point({30, 31, 32}));
      EXPECT_EQ(read[1].points[1], Point({110, 111, 112}));
      EXPECT_EQ(read[1].points[2].x, fixed ? 20 : 120);
      EXPECT_EQ(read[1].step, 110);
    }
  }
}

TEST(ReadDcd, AtomsThatDoNotMoveAreThoseOfTheFirstFrame) {
  const Chain read =
      chain(dcd_file({false, false}), {.models = {2, 2, 1}, .gaps = korvex::GapPolicy::kBridge});
  EXPECT_EQ(read.points[0], Point({0, 1, 2}));
  EXPECT_EQ(read.points[1].x, 110);
}

std::vector<std::string> binary_samples() {
  return {wide_xtc_frame(some_atoms(), 1000) + wide_xtc_frame(some_atoms(), 100),
          support::content("trajectories/ring_3_1.xtc").substr(0, 1400),
          trr_frame(4, false) + trr_frame(4, true), dcd_file({false, false}),
          dcd_file({true, true}, false)};
}

void expect_chains_or_complaint(const std::string& bytes) {
  try {
    for (const Chain& read : chains(bytes)) {
      for (const Point& point : read.points) {
        ASSERT_TRUE(std::isfinite(point.x + point.y + point.z));
      }
    }
  } catch (const korvex::Error& error) {
    EXPECT_TRUE(contains(error.what(), "text: ") || contains(error.what(), "text:"))
        << error.what();
  }
}

TEST(BinaryTrajectories, AreReadOrRefusedAtEveryCut) {
  for (const std::string& sample : binary_samples()) {
    for (std::size_t size = 0; size < sample.size(); ++size) {
      expect_chains_or_complaint(sample.substr(0, size));
    }
  }
}

TEST(BinaryTrajectories, AreReadOrRefusedWhateverIsChanged) {
  std::mt19937 random(12);
  for (const std::string& sample : binary_samples()) {
    for (int trial = 0; trial < 400; ++trial) {
      expect_chains_or_complaint(support::damaged(sample, random));
    }
  }
}

TEST(BinaryTrajectories, DamageIsNamedWithItsFrame) {
  const std::string frame = wide_xtc_frame(some_atoms(), 1000);
  EXPECT_TRUE(contains(complaint(frame + frame.substr(0, 90)), "text: frame 2 is not whole"));
  EXPECT_TRUE(contains(complaint(frame + std::string(80, 'x')), "frame 2 does not begin as one"));
  std::string none = frame;
  none[55] = 1;
  EXPECT_TRUE(contains(complaint(frame + none), "frame 2 has two numbers of atoms"));
  std::string longer = frame;
  longer[88] = 0x7f;
  EXPECT_TRUE(contains(complaint(longer), "frame 1 is not whole"));
  EXPECT_TRUE(contains(complaint(trr_frame(3, true).substr(0, 70)), "frame 1 is not whole"));
  EXPECT_TRUE(contains(complaint(dcd_file({false, false}).substr(0, 95)), "the head is not whole"));
  EXPECT_TRUE(contains(complaint(frame, {.atoms = {"CA"}}), "no names of atoms"));
  EXPECT_TRUE(contains(complaint(frame, {.models = {2, 3, 1}}), "no model has one of the wanted"));
}

TEST(BinaryTrajectories, HaveTheChainsOfATopology) {
  TemporaryDirectory directory;
  const std::string gro = support::content("trajectories/ring_3_1.gro");
  const std::string models = support::content("trajectories/ring_3_1.models.pdb");
  for (const auto& [name, text] :
       {std::pair<std::string, std::string>{"a.gro", gro}, {"b.pdb", models}}) {
    const Chain named = korvex::read_chains(trajectory("ring_3_1.xtc"),
                                            {.topology = directory.write(name, text)})[0];
    const Chain alone = chains(text)[0];
    EXPECT_EQ(named.residues, alone.residues) << name;
    EXPECT_EQ(named.name, alone.name);
    EXPECT_EQ(named.points.size(), 120U);
  }
}

TEST(BinaryTrajectories, HaveTheMoleculesAndBondsOfADataFile) {
  TemporaryDirectory directory;
  std::string data = "a title\n\n12 atoms\n11 bonds\n\nAtoms # bond\n\n";
  for (int i = 12; i >= 1; --i) {
    data += std::to_string(i) + " 1 " + (i == 5 ? "2" : "1") + " 0 0 0\n";
  }
  data += "\nBonds\n\n";
  for (int i = 1; i < 12; ++i) {
    data += std::to_string(i) + " 1 " + std::to_string(i) + " " + std::to_string(i + 1) + "\n";
  }
  const std::string frame = wide_xtc_frame(some_atoms(), 1000);
  const std::string file = directory.write("chains.data", data);
  const ReadOptions options = {.gaps = korvex::GapPolicy::kBridge, .unwrap = false};
  ReadOptions with = options;
  with.topology = file;
  const Chain whole = chain(frame, with);
  EXPECT_EQ(whole.name, "1");
  EXPECT_EQ(whole.points, chain(frame, options).points);
  with.atoms = {"2"};
  EXPECT_EQ(numbers(chain(frame, with)), std::vector<std::int32_t>({5}));
  with.topology = directory.write("few.data", "t\n\nAtoms\n\n1 1 0 0 0\n2 1 0 0 0\n");
  with.atoms = {};
  EXPECT_TRUE(contains(complaint(frame, with), "has 12 atoms in its frames, but the topology"));
  with.topology = directory.write("points", "0 0 0\n1 1 1\n");
  EXPECT_TRUE(contains(complaint(frame, with), "is no topology"));
}

}  // namespace

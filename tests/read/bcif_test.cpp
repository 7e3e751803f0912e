// BinaryCIF, packed here by each of its encodings.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "korvex/read.hpp"
#include "read/message_pack.hpp"
#include "support/damage.hpp"
#include "support/reading.hpp"

namespace {

using korvex::Chain;
using reading::complaint;
using reading::contains;

// MessagePack.
std::string big_endian(std::uint64_t value, int size) {
  std::string bytes;
  for (int i = size - 1; i >= 0; --i) bytes += static_cast<char>(value >> (8 * i));
  return bytes;
}

std::string packed(const std::string& text) { return "\xda" + big_endian(text.size(), 2) + text; }

std::string packed(std::int64_t value) {
  return "\xd3" + big_endian(static_cast<std::uint64_t>(value), 8);
}

std::string packed_real(double value) {
  return "\xcb" + big_endian(std::bit_cast<std::uint64_t>(value), 8);
}

std::string packed_bytes(const std::string& bytes) {
  return "\xc6" + big_endian(bytes.size(), 4) + bytes;
}

std::string packed_array(const std::vector<std::string>& items) {
  std::string all = "\xdc" + big_endian(items.size(), 2);
  for (const std::string& item : items) all += item;
  return all;
}

// Keys and packed values in turn.
std::string packed_map(const std::vector<std::string>& pairs) {
  std::string all = "\xde" + big_endian(pairs.size() / 2, 2);
  for (std::size_t i = 0; i < pairs.size(); i += 2) all += packed(pairs[i]) + pairs[i + 1];
  return all;
}

std::string little_endian(const std::vector<std::int64_t>& values, int size) {
  std::string bytes;
  for (const std::int64_t value : values) {
    for (int i = 0; i < size; ++i) bytes += static_cast<char>(value >> (8 * i));
  }
  return bytes;
}

std::string byte_array(int type) {
  return packed_map({"kind", packed("ByteArray"), "type", packed(type)});
}

std::string data_of(const std::string& bytes, const std::vector<std::string>& encodings) {
  return packed_map({"encoding", packed_array(encodings), "data", packed_bytes(bytes)});
}

std::string column(const std::string& name, const std::string& data,
                   const std::string& mask = "\xc0") {
  return packed_map({"name", packed(name), "data", data, "mask", mask});
}

std::string texts(const std::string& all, const std::vector<std::int64_t>& offsets,
                  const std::vector<std::int64_t>& rows) {
  return packed_map(
      {"encoding",
       packed_array({packed_map({"kind", packed("StringArray"), "stringData", packed(all),
                                 "offsets", packed_bytes(little_endian(offsets, 4)),
                                 "offsetEncoding", packed_array({byte_array(3)}), "dataEncoding",
                                 packed_array({byte_array(1)})})}),
       "data", packed_bytes(little_endian(rows, 1))});
}

std::string file_of(const std::vector<std::string>& columns, std::int64_t rows) {
  const std::string table = packed_map(
      {"name", packed("_atom_site"), "rowCount", packed(rows), "columns", packed_array(columns)});
  const std::string block =
      packed_map({"header", packed("TEST"), "categories", packed_array({table})});
  return packed_map(
      {"version", packed("0.3.0"), "encoder", packed("test"), "dataBlocks", packed_array({block})});
}

const char* const kSmallText = R"(data_test
loop_
_atom_site.group_PDB
_atom_site.label_atom_id
_atom_site.label_alt_id
_atom_site.label_comp_id
_atom_site.label_asym_id
_atom_site.label_seq_id
_atom_site.auth_seq_id
_atom_site.Cartn_x
_atom_site.Cartn_y
_atom_site.Cartn_z
ATOM CA . GLY A 1 -3 1.5 0.25 -1
ATOM CA . ALA A 2 -2 5.25 0.5 -2
ATOM CA . GLY A 3 300 9.125 0.75 -3.5
)";

std::string whole_file() {
  const std::string fixed_point = packed_map(
      {"kind", packed("FixedPoint"), "factor", packed_real(1000), "srcType", packed(33)});
  const std::string delta =
      packed_map({"kind", packed("Delta"), "origin", packed(1500), "srcType", packed(3)});
  const auto packing = [](int bytes, bool is_unsigned) {
    return packed_map({"kind", packed("IntegerPacking"), "byteCount", packed(bytes), "isUnsigned",
                       is_unsigned ? "\xc3" : "\xc2", "srcSize", packed(3)});
  };
  const std::string runs =
      packed_map({"kind", packed("RunLength"), "srcType", packed(3), "srcSize", packed(3)});
  const std::string intervals =
      packed_map({"kind", packed("IntervalQuantization"), "min", packed_real(0), "max",
                  packed_real(1), "numSteps", packed(5), "srcType", packed(33)});
  std::string singles;
  for (const float value : {-1.F, -2.F, -3.5F}) {
    singles += little_endian({std::bit_cast<std::int32_t>(value)}, 4);
  }
  return file_of({column("group_PDB", texts("ATOM", {0, 4}, {0, 0, 0})),
                  column("label_atom_id", texts("CA", {0, 2}, {0, 0, 0})),
                  column("label_alt_id", texts("", {0, 0}, {0, 0, 0}),
                         data_of(little_endian({1, 1, 1}, 1), {byte_array(4)})),
                  column("label_comp_id", texts("GLYALA", {0, 3, 6}, {0, 1, 0})),
                  column("label_asym_id", texts("A", {0, 1}, {0, 0, 0})),
                  column("label_seq_id", data_of(little_endian({1, 2, 3}, 2), {byte_array(2)})),
                  column("auth_seq_id", data_of(little_endian({-3, -2, 127, 127, 46}, 1),
                                                {packing(1, false), byte_array(1)})),
                  column("Cartn_x", data_of(little_endian({0, 3750, 3875}, 2),
                                            {fixed_point, delta, packing(2, true), byte_array(5)})),
                  column("Cartn_y", data_of(little_endian({1, 1, 2, 1, 3, 1}, 4),
                                            {intervals, runs, byte_array(3)})),
                  column("Cartn_z", data_of(singles, {byte_array(32)}))},
                 3);
}

TEST(ReadBinaryCif, GivesTheChainsOfTheSameText) {
  const std::vector<Chain> binary = reading::chains(whole_file());
  EXPECT_EQ(binary, reading::chains(kSmallText));
  ASSERT_EQ(binary.size(), 1U);
  EXPECT_EQ(reading::numbers(binary[0]), std::vector<std::int32_t>({-3, -2, 300}));
}

TEST(ReadBinaryCif, MissingColumnsAreNamedAsInText) {
  const std::string x = column("Cartn_x", data_of(little_endian({1}, 1), {byte_array(1)}));
  EXPECT_TRUE(contains(complaint(file_of({x}, 1)), "_atom_site has no column cartn_y"));
  EXPECT_TRUE(contains(complaint(file_of({}, 0)), "no _atom_site.Cartn_x"));
  EXPECT_TRUE(contains(complaint(file_of({x}, 2)), "a column of a wrong length"));
  const std::string odd = column("Cartn_x", data_of("x", {byte_array(9)}));
  EXPECT_TRUE(contains(complaint(file_of({odd}, 1)), "an unknown type of numbers"));
}

TEST(ReadBinaryCif, IsReadOrRefusedAtEveryCutAndChange) {
  const std::string whole = whole_file();
  const auto try_out = [](const std::string& bytes) {
    try {
      for (const Chain& chain : reading::chains(bytes)) {
        for (const korvex::Point& point : chain.points) {
          ASSERT_TRUE(std::isfinite(point.x + point.y + point.z));
        }
      }
    } catch (const korvex::Error& error) {
      EXPECT_TRUE(contains(error.what(), "text")) << error.what();
    }
  };
  for (std::size_t size = 0; size < whole.size(); ++size) try_out(whole.substr(0, size));
  std::mt19937 random(8);
  for (int trial = 0; trial < 2000; ++trial) try_out(support::damaged(whole, random));
}

TEST(MessagePack, DepthAndCountsAreLimited) {
  const auto refusal = [](const std::string& bytes) -> std::string {
    try {
      korvex::read::read_message_pack(bytes, "pack");
    } catch (const korvex::Error& error) {
      return error.what();
    }
    return "";
  };
  EXPECT_TRUE(contains(refusal(std::string(100000, '\x91')), "nested too deep"));
  EXPECT_TRUE(contains(refusal("\xdd\xff\xff\xff\xff"), "cut short"));
  EXPECT_TRUE(contains(refusal("\xc6\x7f\xff\xff\xff"), "cut short"));
  EXPECT_TRUE(contains(refusal("\x81\x01\x01"), "a key is no text"));
  EXPECT_TRUE(contains(refusal("\xc1"), "unknown kind"));
  EXPECT_TRUE(contains(refusal("\xc3\xc3"), "bytes follow"));
  EXPECT_EQ(korvex::read::read_message_pack("\xd1\xff\xfe", "pack").integer, -2);
  EXPECT_EQ(korvex::read::read_message_pack("\xe0", "pack").integer, -32);
}

}  // namespace

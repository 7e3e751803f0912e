// Long inputs, which are read piece by piece, give what short ones do.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "korvex/read.hpp"
#include "read/text.hpp"
#include "read/text_feed.hpp"
#include "support/damage.hpp"
#include "support/reading.hpp"

namespace {

using korvex::Chain;
using korvex::Source;
using reading::contains;

std::string repeated(const std::string& text, std::size_t size) {
  std::string all;
  while (all.size() < size) all += text;
  return all;
}

constexpr std::size_t kLong = std::size_t{5} << 18;

// That `text`, over and over, gives the chains of one time over and over, from memory as from a
// pipe.
void expect_repeats(const std::string& text) {
  const std::vector<Chain> once = reading::chains(text);
  const std::string all = repeated(text, kLong);
  const std::size_t times = all.size() / text.size();
  for (const bool piped : {false, true}) {
    std::istringstream stream(all);
    std::size_t count = 0;
    visit_chains(piped ? Source::stream(stream, "text") : Source::memory(all, "text"), {},
                 [&](Chain&& chain) {
                   Chain wanted = once[count % once.size()];
                   chain.model = wanted.model;
                   EXPECT_EQ(chain, wanted) << count;
                   ++count;
                   return !testing::Test::HasFailure();
                 });
    EXPECT_EQ(count, times * once.size());
  }
}

std::string with_line_ends(const std::string& text, const std::string& end) {
  std::string changed;
  for (const char c : text) changed += c == '\n' ? end : std::string(1, c);
  return changed;
}

TEST(LongInput, OfEveryFormatIsReadFrameByFrame) {
  expect_repeats(support::content("trajectories/ring_3_1.gro"));
  expect_repeats(support::content("trajectories/ring_3_1.lammpstrj"));
  expect_repeats(support::content("trajectories/ring_3_1.models.pdb"));
  expect_repeats("3\nt= 1.5\nC 0 0 0\nC 1 0 0\nC 1 1 0\n\n2\n\nC 0 0 0\nC 1 0 0\n");
  expect_repeats(support::content("trajectories/ring_3_1.xtc"));
}

TEST(LongInput, MayEndItsLinesInAnyWay) {
  const std::string gro = support::content("trajectories/ring_3_1.gro");
  for (const char* end : {"\r", "\r\n", "\r\r\n"}) expect_repeats(with_line_ends(gro, end));
}

TEST(LongInput, MayBeginWithAMarkAndEndInZeros) {
  const std::string xyz = repeated("1\n\nC 0 0 0\n", kLong);
  const std::size_t frames = reading::chains(xyz).size();
  EXPECT_EQ(reading::chains("\xef\xbb\xbf" + xyz + std::string(300000, '\0')).size(), frames);
}

TEST(LongInput, IsRefusedWhereItIsNoText) {
  const std::string xyz = repeated("1\n\nC 0 0 0\n", kLong);
  EXPECT_TRUE(contains(reading::complaint(xyz + "1\n\nC 0 \0 0\n"), "text:"));
  EXPECT_TRUE(contains(reading::complaint(xyz + std::string(10, '\0') + "x"), "is not text"));
  EXPECT_TRUE(contains(reading::complaint(xyz + "1\nC 0 0\n"), "the file ends after 0 of the 1"));
}

TEST(LongInput, IsRefusedWhereALineHasNoEnd) {
  EXPECT_TRUE(contains(reading::complaint("1\n" + std::string(std::size_t{18} << 20, 'x')),
                       "longer than any line"));
}

TEST(LongInput, BondsBehindTheModelsCloseRings) {
  std::string model;
  for (int i = 1; i <= 6; ++i) {
    char line[81];
    std::snprintf(line, sizeof line, "ATOM  %5d  CA  ALA A%4d    %8.3f%8.3f%8.3f  1.00  0.00\n", i,
                  i, 3.8 * (i > 3 ? 6 - i : i), 3.8 * (i > 3 ? 1 : 0), 0.0);
    model += line;
  }
  const std::string models = repeated("MODEL\n" + model + "ENDMDL\n", kLong);
  const std::string text = models + "CONECT    1    6\nEND\n";
  const std::vector<Chain> read = reading::chains(text);
  EXPECT_EQ(read.size(), models.size() / (model.size() + 13));
  for (const Chain& chain : read) ASSERT_TRUE(chain.closed);
  std::istringstream stream(text);
  try {
    korvex::read_chains(Source::stream(stream, "pipe"));
    ADD_FAILURE() << "no complaint";
  } catch (const korvex::Error& error) {
    EXPECT_TRUE(contains(error.what(), "bonds behind the models come too late")) << error.what();
  }
}

TEST(LongInput, EndsBehindTheLastFrameThatIsSelected) {
  const std::string xyz = repeated("1\n\nC 0 0 0\n", kLong) + "broken";
  EXPECT_EQ(reading::chains(xyz, {.models = {2, 9, 3}}).size(), 3U);
  EXPECT_TRUE(contains(reading::complaint(xyz), "expected the number of atoms"));
}

TEST(FrameTimes, AreReadWhereTheFormatHasThem) {
  const auto first = [](const std::string& text) { return reading::chains(text).front(); };
  EXPECT_EQ(first("1\nLattice=\"1 0 0 0 1 0 0 0 1\" Time=2.5 Step=7\nC 0 0 0\n").time, 2.5);
  EXPECT_EQ(first("1\nLattice=\"1 0 0 0 1 0 0 0 1\" Time=2.5 Step=7\nC 0 0 0\n").step, 7);
  EXPECT_EQ(first("1\nframe t= 0.5\nC 0 0 0\n").time, 0.5);
  EXPECT_EQ(first("1\nweight=3 nothing\nC 0 0 0\n").time, std::nullopt);
  EXPECT_EQ(first("1\nt=inf\nC 0 0 0\n").time, std::nullopt);
  const std::string atom = "1\n    1ALA     CA    1   0.100   0.200   0.300\n 1 1 1\n";
  EXPECT_EQ(first("Protein t=  12.50000 step= 500\n" + atom).time, 12.5);
  EXPECT_EQ(first("Protein t=  12.50000 step= 500\n" + atom).step, 500);
  const Chain dumped = first(
      "ITEM: TIMESTEP\n3000\nITEM: TIME\n1.5\nITEM: NUMBER OF ATOMS\n1\nITEM: ATOMS id xu yu zu\n1 "
      "0 0 0\n");
  EXPECT_EQ(dumped.step, 3000);
  EXPECT_EQ(dumped.time, 1.5);
}

}  // namespace

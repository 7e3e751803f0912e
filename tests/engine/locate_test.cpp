#include "korvex/locate.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <stop_token>

#include "engine/fingerprint/fingerprint_data.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

// A fingerprint of 20 residues and 10 votes: votes for some type in rectangles of sub-chains.
struct VotesOf {
  std::int32_t type;
  Stations begins;
  Stations ends;
  int count;
};

Fingerprint made(std::vector<std::string> types, const std::vector<VotesOf>& votes) {
  FingerprintData data{{.directions = 10}, {}, std::move(types), TypeCounts(20)};
  for (std::int32_t k = 0; k < 20; ++k) data.stations.push_back(k);
  for (const VotesOf& some : votes)
    for (int k = 0; k < some.count; ++k) data.counts.add(some.type, some.begins, some.ends);
  data.counts.sum_up();
  return FingerprintData::shared(std::move(data));
}

Chain labelled_chain() {
  Chain chain;
  chain.source = "some.pdb";
  chain.name = "A";
  chain.points.resize(20);
  for (std::int32_t k = 0; k < 20; ++k) chain.residues.push_back({k + 100, ' ', "GLY"});
  chain.residues[5].insertion_code = 'A';
  return chain;
}

std::string written(const Location& location, ReportFormat format,
                    const Chain& chain = labelled_chain()) {
  std::ostringstream out;
  LocationReport report(format, out);
  report.add(chain, location);
  report.finish();
  return out.str();
}

std::string written(const Fingerprint& fingerprint, ReportFormat format) {
  std::ostringstream out;
  write_fingerprint(fingerprint, {}, format, out);
  return out.str();
}

TEST(Locate, FindsTheShortestSubChainThatReachesTheThreshold) {
  const auto fingerprint =
      made({"0_1", "+3_1"}, {{1, {0, 5}, {14, 19}, 4}, {1, {0, 4}, {15, 19}, 3}});
  const Location location = locate(fingerprint);
  EXPECT_EQ(location.type, "+3_1");
  EXPECT_DOUBLE_EQ(location.share, 0.7);
  EXPECT_EQ(location.factors, std::vector<std::string>{"+3_1"});
  ASSERT_EQ(location.knots.size(), 1u);
  const KnotPlace& knot = location.knots[0];
  EXPECT_EQ(knot.core, (Stretch{4, 15}));
  EXPECT_DOUBLE_EQ(knot.core_share, 0.7);
  EXPECT_EQ(knot.longest, (Stretch{0, 19}));
  EXPECT_EQ(knot.sub_chains, 25u);
  EXPECT_EQ(knot.tail_before, 4);
  EXPECT_EQ(knot.tail_after, 4);
  EXPECT_FALSE(knot.slipknot());
  EXPECT_EQ(locate(fingerprint, {.threshold = 0.4}).knots[0].core, (Stretch{5, 14}));
}

TEST(Locate, FindsASlipknot) {
  const Location location = locate(made({"0_1", "4_1"}, {{1, {0, 3}, {10, 14}, 9}}));
  EXPECT_EQ(location.type, "0_1");
  EXPECT_TRUE(location.factors.empty());
  ASSERT_EQ(location.knots.size(), 1u);
  const KnotPlace& knot = location.knots[0];
  EXPECT_EQ(knot.core, (Stretch{3, 10}));
  EXPECT_EQ(knot.whole_share, 0);
  EXPECT_FALSE(knot.undone_before);
  ASSERT_TRUE(knot.undone_after);
  EXPECT_EQ(*knot.undone_after, (Threading{15, {11, 15}, {15, 19}, "0_1"}));
}

TEST(Locate, DoesNotTakeADipForASlipknot) {
  // Gone with residues 13 and 14, and again with 17 for good where the second row says so.
  const std::vector<VotesOf> returning{{1, {0, 3}, {10, 12}, 8},
                                       {1, {0, 3}, {13, 13}, 2},
                                       {1, {0, 3}, {14, 14}, 1},
                                       {1, {0, 3}, {15, 16}, 6}};
  std::vector<VotesOf> to_the_end = returning;
  to_the_end.push_back({1, {0, 3}, {17, 19}, 7});
  const KnotPlace dip = locate(made({"0_1", "4_1"}, to_the_end)).knots.at(0);
  EXPECT_FALSE(dip.slipknot());
  EXPECT_EQ(dip.dips_after, (std::vector<Dip>{{13, 15, 0.1, "0_1"}}));
  EXPECT_TRUE(dip.dips_before.empty());
  const KnotPlace slipknot = locate(made({"0_1", "4_1"}, returning)).knots.at(0);
  ASSERT_TRUE(slipknot.undone_after);
  EXPECT_EQ(slipknot.undone_after->residue, 17);
  EXPECT_EQ(slipknot.dips_after, dip.dips_after);
}

TEST(Locate, StopsWhenAsked) {
  const Fingerprint fingerprint = made({"0_1", "4_1"}, {{1, {0, 3}, {10, 14}, 9}});
  std::stop_source source;
  const korvex::Run run{.stop = source.get_token()};
  EXPECT_EQ(locate(fingerprint, {}, run).knots.size(), 1u);
  source.request_stop();
  try {
    locate(fingerprint, {}, run);
    ADD_FAILURE() << "went on";
  } catch (const Error& error) {
    EXPECT_EQ(error.code(), ErrorCode::kCancelled);
  }
}

TEST(Locate, SeesADipBeforeTheCore) {
  const KnotPlace knot =
      locate(made({"0_1", "4_1"}, {{1, {0, 2}, {16, 19}, 9}, {1, {5, 6}, {16, 19}, 9}}))
          .knots.at(0);
  EXPECT_EQ(knot.core, (Stretch{6, 16}));
  EXPECT_FALSE(knot.slipknot());
  EXPECT_EQ(knot.dips_before, (std::vector<Dip>{{4, 2, 0, "0_1"}}));
}

TEST(Locate, TakesAFactorOfALongerSubChainForTheKnot) {
  const KnotPlace knot = locate(made({"0_1", "+3_1", "+3_1#4_1"},
                                     {{1, {0, 3}, {10, 11}, 10}, {2, {0, 3}, {15, 19}, 10}}))
                             .knots.at(1);
  EXPECT_EQ(knot.type, "+3_1");
  EXPECT_FALSE(knot.slipknot());
  EXPECT_EQ(knot.dips_after, (std::vector<Dip>{{12, 15, 0, "0_1"}}));
}

TEST(Locate, TellsNoSlipknotWhereALongerSubChainIsOfNoKnownType) {
  for (const char* unknown : {"?1-5+7-5+1", "?key:1f00ba5", "3_1|4_1"}) {
    const Location location = locate(
        made({"0_1", "+3_1", unknown}, {{1, {0, 3}, {10, 11}, 10}, {2, {0, 3}, {18, 19}, 10}}));
    for (const KnotPlace& knot : location.knots) {
      EXPECT_FALSE(knot.type == "+3_1" && knot.slipknot()) << unknown;
    }
  }
}

TEST(Locate, FindsAllPlacesOfAType) {
  const Location location =
      locate(made({"0_1", "+3_1"}, {{1, {0, 2}, {6, 8}, 10}, {1, {10, 11}, {17, 19}, 10}}));
  ASSERT_EQ(location.knots.size(), 2u);
  EXPECT_EQ(location.knots[0].core, (Stretch{11, 17}));
  EXPECT_EQ(location.knots[0].longest, (Stretch{10, 19}));
  EXPECT_EQ(location.knots[0].sub_chains, 6u);
  EXPECT_EQ(location.knots[1].core, (Stretch{2, 6}));
  EXPECT_EQ(location.knots[1].longest, (Stretch{0, 8}));
  EXPECT_EQ(location.knots[1].sub_chains, 9u);
}

TEST(Locate, GivesOnePlaceWhereMinimalSubChainsOverlap) {
  const Location location = locate(
      made({"0_1", "+3_1"},
           {{1, {2, 2}, {9, 9}, 10}, {1, {4, 4}, {10, 10}, 10}, {1, {10, 10}, {17, 17}, 10}}));
  ASSERT_EQ(location.knots.size(), 1u);
  EXPECT_EQ(location.knots[0].core, (Stretch{4, 10}));
  EXPECT_EQ(location.knots[0].sub_chains, 3u);
}

// An open trefoil of 36 points, of the hand of the sign, by A. R. Shastri, Tohoku Math. J. 44, 11
// (1992).
std::vector<Point> long_trefoil(double hand) {
  std::vector<Point> points;
  for (int k = 0; k < 36; ++k) {
    const double t = -2.3 + 4.6 * k / 35;
    points.push_back({hand * (t * t * t - 3 * t), t * t * t * t - 4 * t * t,
                      0.6 * (t * t * t * t * t - 10 * t)});
  }
  return points;
}

TEST(Locate, FindsEachKnotThatIsTiedIntoAChain) {
  std::vector<Point> chain{{0, 0, 0}};
  const auto lead_on = [&](int points) {
    for (int k = 0; k < points; ++k) chain.push_back(chain.back() + Point{0, 0, 4});
  };
  const auto tie = [&](double hand) {
    const auto knot = long_trefoil(hand);
    const Point from = chain.back() + Point{0, 0, 4};
    for (const Point& p : knot) chain.push_back(from + (p - knot.front()));
  };
  lead_on(79);
  tie(1);  // residues 81 to 116
  lead_on(30);
  tie(1);  // 147 to 182
  lead_on(30);
  tie(-1);  // 213 to 248
  lead_on(79);
  const Location location = locate(fingerprint(chain, {.directions = 10}));
  EXPECT_EQ(location.type, "+3_1#+3_1#-3_1");
  std::map<std::string, std::vector<Stretch>> cores;
  for (const KnotPlace& knot : location.knots) {
    EXPECT_FALSE(knot.slipknot()) << knot.type;
    cores[knot.type].push_back(knot.core);
  }
  ASSERT_EQ(cores["+3_1"].size(), 2u);
  ASSERT_EQ(cores["-3_1"].size(), 1u);
  std::sort(cores["+3_1"].begin(), cores["+3_1"].end(),
            [](const Stretch& a, const Stretch& b) { return a.first < b.first; });
  const auto lies_in = [](const Stretch& core, int first, int last) {
    return core.first + 1 >= first && core.last + 1 <= last;
  };
  EXPECT_TRUE(lies_in(cores["+3_1"][0], 81, 116));
  EXPECT_TRUE(lies_in(cores["+3_1"][1], 147, 182));
  EXPECT_TRUE(lies_in(cores["-3_1"][0], 213, 248));
}

TEST(Locate, DoesNotTakeAMoreComplicatedKnotForAnUndoneOne) {
  const Location location = locate(
      made({"0_1", "+3_1", "+3_1#4_1"},
           {{1, {2, 3}, {10, 14}, 10}, {2, {0, 1}, {10, 19}, 10}, {2, {2, 3}, {15, 19}, 10}}));
  EXPECT_EQ(location.type, "+3_1#4_1");
  EXPECT_EQ(location.factors, (std::vector<std::string>{"+3_1", "4_1"}));
  for (const KnotPlace& knot : location.knots) EXPECT_FALSE(knot.slipknot()) << knot.type;
}

TEST(Locate, OfNoChainAtAllIsUnknotted) {
  const auto nothing = FingerprintData::shared({{}, {}, {"0_1"}, TypeCounts(0)});
  EXPECT_EQ(locate(nothing).type, "0_1");
}

TEST(Locate, RefusesAThresholdThatIsNoShare) {
  const auto fingerprint = made({"0_1"}, {});
  for (const double bad : {0.0, -1.0, 1.5, std::nan("")})
    EXPECT_THROW(locate(fingerprint, {.threshold = bad}), Error);
}

TEST(WriteLocation, NamesResiduesAsTheFileDoes) {
  const Location location = locate(made({"0_1", "+3_1"}, {{1, {0, 5}, {10, 12}, 10}}));
  EXPECT_EQ(written(location, ReportFormat::kText),
            "some.pdb chain A: 0_1, share 1.00\n"
            "  +3_1: core 105A-110 (6 residues, share 1.00), tails 5 and 9 residues, in 18 "
            "sub-chains, the longest 100-112\n"
            "    slipknot: with residue 113 +3_1 becomes 0_1; loop 111-113, tail 113-119\n");
  const auto json = nlohmann::json::parse(written(location, ReportFormat::kJson));
  EXPECT_EQ(json[0]["knots"][0]["core"]["begin"], "105A");
  EXPECT_EQ(json[0]["knots"][0]["core"]["begin_index"], 5);
  EXPECT_EQ(json[0]["knots"][0]["undone_after"]["residue"], "113");
  EXPECT_NE(written(location, ReportFormat::kPymol).find("chain A and resi 105-110"),
            std::string::npos);
  EXPECT_NE(written(location, ReportFormat::kChimerax).find("/A:105A-110 red"), std::string::npos);
  EXPECT_NE(
      written(location, ReportFormat::kTsv).find("some.pdb\t1\tA\t+3_1\t105A\t110\t1\t0\t5\t9"),
      std::string::npos);
}

TEST(WriteLocation, TellsDips) {
  const Location location =
      locate(made({"0_1", "4_1"}, {{1, {0, 3}, {10, 12}, 8}, {1, {0, 3}, {15, 19}, 6}}));
  EXPECT_NE(written(location, ReportFormat::kText)
                .find("    dip: with residue 113 4_1 becomes 0_1, share 0.00 at the least; with "
                      "residue 115 it is back\n"),
            std::string::npos);
  const auto json = nlohmann::json::parse(written(location, ReportFormat::kJson));
  EXPECT_EQ(json[0]["knots"][0]["slipknot"], false);
  EXPECT_EQ(json[0]["knots"][0]["dips_after"][0]["back_index"], 15);
  EXPECT_EQ(written(location, ReportFormat::kPymol).find("loop"), std::string::npos);
}

TEST(WriteTsv, HasALineForEveryTypeOfAKnottedSubChain) {
  EXPECT_EQ(written(made({"0_1", "+3_1"}, {{1, {2, 2}, {9, 9}, 4}}), ReportFormat::kTsv),
            "begin\tend\ttype\tvotes\ttrials\tshare\tlow\thigh\tgaps\tlongest_gap\n"
            "3\t10\t0_1\t6\t10\t0.6\t0.312674\t0.83182\t0\t0\n"
            "3\t10\t+3_1\t4\t10\t0.4\t0.16818\t0.687326\t0\t0\n");
}

TEST(Doubts, AboutGapsStandWithTheCoresAndSubChainsThatHoldThem) {
  const Fingerprint fingerprint = made({"0_1", "+3_1"}, {{1, {0, 5}, {14, 19}, 6}});
  Chain chain = labelled_chain();
  chain.gaps = {{4, 9.5}, {5, 12.25}, {13, 8}, {14, 20}};  // the core is 5 to 14
  chain.ends = ChainEnds::kNear;
  const Location location = locate(fingerprint);
  EXPECT_NE(written(location, ReportFormat::kTsv, chain).find("\t2\t4\t20\t0\tnear\t0\t\t\t\t\n"),
            std::string::npos);
  EXPECT_NE(written(location, ReportFormat::kText, chain).find("2 bridged gaps in it"),
            std::string::npos);
  const auto json = nlohmann::json::parse(written(location, ReportFormat::kJson, chain));
  EXPECT_EQ(json[0]["gaps"], 4);
  EXPECT_EQ(json[0]["longest_gap"], 20);
  EXPECT_EQ(json[0]["ends"], "near");
  EXPECT_EQ(json[0]["knots"][0]["core_gaps"], 2);
  std::ostringstream out;
  write_fingerprint(fingerprint, chain.residues, ReportFormat::kTsv, out, chain.gaps);
  EXPECT_NE(out.str().find("105A\t114\t0_1\t4\t10\t0.4\t0.16818\t0.687326\t2\t12.25\n"),
            std::string::npos);
}

TEST(WriteJson, HoldsTheVotesOfKnottedSubChains) {
  const auto json = nlohmann::json::parse(
      written(made({"0_1", "+3_1"}, {{1, {2, 2}, {9, 9}, 4}}), ReportFormat::kJson));
  EXPECT_EQ(json["trials"], 10);
  EXPECT_EQ(json["types"][1], "+3_1");
  EXPECT_EQ(json["labels"][19], "20");
  EXPECT_EQ(json["sub_chains"].dump(), "[[2,9,[[0,6],[1,4]]]]");
}

TEST(WriteMatrix, PutsTypesUnderTheirThresholds) {
  const auto fingerprint =
      made({"0_1", "+3_1", "4_1"}, {{1, {2, 2}, {9, 9}, 6}, {2, {2, 2}, {9, 9}, 3}});
  std::string zeros;
  for (int k = 0; k < 10; ++k) zeros += "0 ";
  std::string more;
  for (int k = 0; k < 9; ++k) more += "0 ";
  EXPECT_EQ(
      written(fingerprint, ReportFormat::kMatrix),
      "# 1 20 >90 >87 >84 >81 >78 >75 >72 >69 >66 >63 >60 >57 >54 >51 >48 >45 >42 >39 >36 >33 "
      ">30 >27 >24 >21 >18 >15 >12 >9 >6 >3 >0 IN 1 20\n3 10 0 " +
          zeros + "+3_1 " + more + "4_1 " + more + "0 3 10\n");
}

TEST(WriteMatrix, OfAnUnknottedChainSaysSo) {
  const std::string text = written(made({"0_1"}, {}), ReportFormat::kMatrix);
  EXPECT_EQ(text.substr(text.find('\n')), "\nUNKNOT\n");
}

TEST(WriteNpz, IsReadByNumpy) {
  const auto path = std::filesystem::path(testing::TempDir()) / "korvex_fingerprint.npz";
  {
    std::ofstream out(path, std::ios::binary);
    const Chain chain = labelled_chain();
    write_fingerprint(made({"0_1", "+3_1"}, {{1, {2, 3}, {9, 9}, 6}}), chain.residues,
                      ReportFormat::kNpz, out);
  }
  const std::string script =
      "import numpy as n; f = n.load('" + path.string() +
      "'); assert f['stations'].tolist() == list(range(20)); "
      "assert f['labels'][5] == '105A' and f['labels'][6] == '106'; "
      "assert f['types'].tolist() == ['0_1', '+3_1']; assert f['trials'] == 10; "
      "assert f['dominant'].shape == (20, 20) and f['dominant'][2, 9] == 1; "
      "assert f['dominant'][0, 9] == 0 and f['dominant'][9, 2] == -1; "
      "assert abs(f['share'][2, 9] - 0.6) < 1e-6 and f['share'][0, 9] == 1; "
      "assert f['begin'].tolist() == [2, 3] and f['end'].tolist() == [9, 9]; "
      "assert f['type'].tolist() == [1, 1] and f['count'].tolist() == [6, 6]";
  EXPECT_EQ(std::system(("/usr/bin/python3 -c \"" + script + "\"").c_str()), 0);
  std::filesystem::remove(path);
}

}  // namespace
}  // namespace korvex

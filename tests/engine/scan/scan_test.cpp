#include "korvex/scan.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "support/data_file.hpp"
#include "support/tar.hpp"
#include "support/temporary_directory.hpp"

namespace korvex {
namespace {

std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) ADD_FAILURE() << "cannot read " << path;
  return text.str();
}

std::size_t lines_in(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Shipped proteins with bad members in between: 8 members, 7 chains, 2 of them knotted.
class ScanTest : public testing::Test {
 protected:
  ScanTest() {
    const auto protein = [](const char* name) {
      return content_of(support::data_file(std::string("proteins/") + name));
    };
    const std::string tim = protein("1tim.pdb.gz");
    archive_ = directory_.write("models.tar",
                                support::tar_of({{"in/1ubq.pdb", protein("1ubq.pdb")},
                                                 {"in/2efv.pdb", protein("2efv_CA.pdb")},
                                                 {"in/README", "nothing but words\n"},
                                                 {"in/1tim.pdb.gz", tim},
                                                 {"in/cut.pdb.gz", tim.substr(0, tim.size() / 2)},
                                                 {"in/1xd3.pdb", protein("1xd3_A_bound.pdb")},
                                                 {"in/empty.pdb", ""},
                                                 {"in/1crn.cif", protein("1crn.cif")}}));
  }

  ScanPlan plan(const std::string& name) const {
    ScanPlan plan;
    plan.sources = {archive_, support::data_file("proteins/1crn.pdb")};
    plan.directory = directory_.path(name);
    plan.options.piece = 3;
    plan.options.trials = 20;
    plan.options.directions = 10;
    plan.options.step = 5;
    return plan;
  }

  // The results of a scan that nothing disturbed.
  std::string undisturbed(const ScanPlan& plan, unsigned threads = 1) const {
    korvex::Run run;
    run.threads = threads;
    scan(plan, run);
    return content_of(merge_scan(plan.directory).path);
  }

  std::string part(const std::string& scan, const std::string& name) const {
    return directory_.path(scan) + "/parts/" + name;
  }

  static std::string refusal(const ScanPlan& plan) {
    try {
      scan(plan);
    } catch (const Error& error) {
      return error.what();
    }
    ADD_FAILURE() << "nothing is refused";
    return {};
  }

  TemporaryDirectory directory_;
  std::string archive_;
};

TEST_F(ScanTest, FindsTheKnottedChainsAmongBadMembers) {
  ScanPlan exact = plan("exact");
  exact.options.trials = 0;
  exact.options.directions = 0;
  exact.options.step = 10;
  const ScanOutcome outcome = scan(exact);
  EXPECT_EQ(outcome.counts, (ScanCounts{9, 7, 2, 0, 3}));
  EXPECT_EQ(text_of(outcome.counts), "9 files, 7 chains: 2 knotted, 0 slipknots, 3 failed");
  EXPECT_EQ(outcome.pieces, 4U);
  const std::string table = content_of(merge_scan(exact.directory).path);
  EXPECT_EQ(lines_in(table), 2U + 7 + 3);
  for (const char* line :
       {"\tin/2efv.pdb\t1\tA\t82\t\t-3_1\t0.774115326\t0.774115326\t0.774115326\texact\t6\t86\t",
        "\tin/1xd3.pdb\t1\tA\t229\t\t-5_2\t0.679867405\t",
        "\tin/1ubq.pdb\t1\tA\t76\t\t0_1\t0.994086063\t", "the gzip data is cut short",
        "/in/empty.pdb: is empty"})
    EXPECT_NE(table.find(line), std::string::npos) << line << "\n" << table;
}

TEST_F(ScanTest, KnottedOnlyLeavesOutTheRestButCountsIt) {
  ScanPlan knotted = plan("knotted");
  knotted.options.knotted_only = true;
  EXPECT_EQ(scan(knotted).counts, (ScanCounts{9, 7, 2, 0, 3}));
  EXPECT_EQ(lines_in(content_of(merge_scan(knotted.directory).path)), 2U + 2 + 3);
}

TEST_F(ScanTest, JsonHasAnObjectALine) {
  ScanPlan json = plan("json");
  json.options.format = ReportFormat::kJson;
  const std::string lines = undisturbed(json);
  EXPECT_EQ(lines_in(lines), 1U + 7 + 3);
  EXPECT_NE(
      lines.find("\n{\"source\":\"" + archive_ + "\",\"member\":\"in/1ubq.pdb\",\"model\":1,"),
      std::string::npos)
      << lines;
}

TEST_F(ScanTest, ThreadsAndShardsChangeNoByte) {
  const std::string alone = undisturbed(plan("alone"));
  EXPECT_EQ(undisturbed(plan("threads"), 4), alone);
  for (const std::size_t shards : {2U, 3U, 7U}) {
    ScanPlan shared = plan("shards" + std::to_string(shards));
    ScanCounts counts;
    for (std::size_t shard = shards; shard > 0; --shard) {
      shared.shard = {shard, shards};
      counts += scan(shared).counts;
      shared.resume = true;
    }
    EXPECT_EQ(counts, (ScanCounts{9, 7, 2, 0, 3}));
    const MergedScan merged = merge_scan(shared.directory);
    EXPECT_EQ(merged.counts, counts);
    EXPECT_EQ(content_of(merged.path), alone);
  }
}

// A trajectory long enough to be taken by frames: straight chains, too cheap to matter.
std::string long_trajectory() {
  std::string frame = "100\nframe\n";
  for (int k = 0; k < 100; ++k) frame += "C " + std::to_string(k) + ".00000 0.0 0.0\n";
  std::string text;
  for (int k = 0; k < 650; ++k) text += frame;
  return text;
}

TEST_F(ScanTest, ALongTrajectoryIsSplitByFramesAndNoByteChanges) {
  const std::string whole = directory_.write("whole.xyz", long_trajectory());
  const std::string cut =
      directory_.write("cut.xyz", long_trajectory().substr(0, long_trajectory().size() - 700));
  ScanPlan split = plan("split");
  split.sources = {whole, support::data_file("proteins/1crn.pdb"), cut};
  split.options.piece = 100;
  split.options.trials = 1;
  split.options.read.models.step = 2;  // 325 frames, and 324 or one more of what is cut
  const std::string alone = undisturbed(split);
  EXPECT_EQ(merge_scan(split.directory).counts.members, 3u);
  EXPECT_EQ(merge_scan(split.directory).counts.failed, 1u);
  EXPECT_EQ(lines_in(alone), 2 + 325 + 1 + 325 + 1);
  EXPECT_TRUE(std::filesystem::exists(part("split", "000000/0000003.tsv")));
  EXPECT_TRUE(std::filesystem::exists(part("split", "000002/0000003.tsv")));

  split.directory = directory_.path("shared");
  for (const std::size_t shard : {3U, 1U, 2U}) {
    split.shard = {shard, 3};
    korvex::Run run;
    run.threads = 3;
    scan(split, run);
    split.resume = true;
  }
  EXPECT_EQ(content_of(merge_scan(split.directory).path), alone);

  const std::string kept = part("shared", "000000/0000000.tsv");
  const auto written = std::filesystem::last_write_time(kept);
  std::filesystem::remove(part("shared", "000000/0000001.tsv"));
  std::filesystem::remove(part("shared", "000002/0000003.tsv"));
  split.shard = {};
  const ScanOutcome outcome = scan(split);
  EXPECT_EQ(outcome.pieces, 9u);
  EXPECT_EQ(outcome.kept, 7u);
  EXPECT_EQ(std::filesystem::last_write_time(kept), written);
  EXPECT_EQ(content_of(merge_scan(split.directory).path), alone);
}

TEST_F(ScanTest, ResumingDoesWhatIsMissingAndNothingElse) {
  ScanPlan disturbed = plan("disturbed");
  const std::string alone = undisturbed(disturbed);
  std::filesystem::remove(part("disturbed", "000000/0000001.tsv"));
  // What a killed writer leaves, and a part that lost its end.
  std::ofstream(part("disturbed", "000000/0000001.tsv.AbCdEf")) << "half a li";
  const std::string second = part("disturbed", "000000/0000002.tsv");
  std::filesystem::resize_file(second, std::filesystem::file_size(second) - 1);
  const std::string unfinished = directory_.path("disturbed/results.tsv.AbCdEf");
  std::ofstream(unfinished) << "half a table";
  const std::string first = part("disturbed", "000000/0000000.tsv");
  const auto written = std::filesystem::last_write_time(first);

  disturbed.resume = true;
  const ScanOutcome outcome = scan(disturbed);
  EXPECT_EQ(outcome.pieces, 4U);
  EXPECT_EQ(outcome.kept, 2U);
  EXPECT_EQ(outcome.counts, (ScanCounts{9, 7, 2, 0, 3}));
  EXPECT_EQ(std::filesystem::last_write_time(first), written);
  EXPECT_FALSE(std::filesystem::exists(part("disturbed", "000000/0000001.tsv.AbCdEf")));
  EXPECT_EQ(content_of(merge_scan(disturbed.directory).path), alone);
  EXPECT_FALSE(std::filesystem::exists(unfinished));
}

TEST_F(ScanTest, AStoppedScanLeavesWholePiecesOnly) {
  ScanPlan stopped = plan("stopped");
  std::stop_source stop;
  stopped.progress = [&](const ScanProgress& now) {
    if (now.advance.members == 4) stop.request_stop();
  };
  korvex::Run run;
  run.stop = stop.get_token();
  EXPECT_THROW(scan(stopped, run), Error);
  const auto files = std::filesystem::recursive_directory_iterator(stopped.directory);
  for (const auto& entry : files) {
    const std::string ending = entry.path().extension().string();
    EXPECT_TRUE(entry.is_directory() || ending == ".tsv" || ending == ".json") << entry.path();
  }
  EXPECT_THROW(merge_scan(stopped.directory), Error);
  stopped.progress = {};
  stopped.resume = true;
  EXPECT_EQ(undisturbed(stopped), undisturbed(plan("alone")));
}

TEST_F(ScanTest, ADirectoryHoldsOneScan) {
  ScanPlan first = plan("first");
  scan(first);
  EXPECT_NE(refusal(first).find("holds a scan already"), std::string::npos);
  first.resume = true;
  first.options.trials = 21;
  EXPECT_NE(refusal(first).find("with other options"), std::string::npos);
  first.options.trials = 20;
  first.sources.pop_back();
  EXPECT_NE(refusal(first).find("of other sources"), std::string::npos);
}

TEST_F(ScanTest, MissingPiecesAreNamed) {
  ScanPlan half = plan("half");
  half.shard = {1, 2};
  scan(half);
  try {
    merge_scan(half.directory);
    ADD_FAILURE() << "nothing is missing";
  } catch (const Error& error) {
    EXPECT_NE(std::string(error.what()).find("2 pieces are missing, the first"), std::string::npos)
        << error.what();
  }
}

TEST_F(ScanTest, OptionsOutOfRangeAreRefused) {
  ScanPlan wrong = plan("wrong");
  wrong.shard = {3, 2};
  EXPECT_NE(refusal(wrong).find("no shard 3 of 2"), std::string::npos);
  wrong = plan("wrong");
  wrong.options.piece = 0;
  EXPECT_NE(refusal(wrong).find("at least one member"), std::string::npos);
  wrong = plan("wrong");
  wrong.options.format = ReportFormat::kSvg;
  EXPECT_NE(refusal(wrong).find("choose one of tsv, json"), std::string::npos);
  wrong = plan("wrong");
  wrong.sources.clear();
  EXPECT_NE(refusal(wrong).find("at least one source"), std::string::npos);
}

// Votes on the same chain under another name are others.
TEST_F(ScanTest, TheSeedOfAChainComesFromItsMember) {
  const std::string protein = content_of(support::data_file("proteins/1xd3_A_bound.pdb"));
  support::TarFiles copies;
  for (const char* name : {"a", "b", "c", "d", "e", "f"}) copies.emplace_back(name, protein);
  ScanPlan many = plan("copies");
  many.sources = {directory_.write("copies.tar", support::tar_of(copies))};
  std::istringstream table(undisturbed(many));
  std::vector<std::string> shares;
  for (std::string line; std::getline(table, line);)
    if (const auto at = line.find("\t-5_2\t"); at != std::string::npos)
      shares.push_back(line.substr(at, line.find('\t', at + 6) - at));
  ASSERT_EQ(shares.size(), 6U);
  EXPECT_NE(std::count(shares.begin(), shares.end(), shares.front()), 6);
}

}  // namespace
}  // namespace korvex

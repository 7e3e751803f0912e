#include "korvex/sources.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "korvex/error.hpp"
#include "support/tar.hpp"
#include "support/temporary_directory.hpp"

namespace korvex {
namespace {

// A straight chain of so many points, so that its length tells which it is.
std::string straight(std::size_t points) {
  std::string text;
  for (std::size_t k = 0; k < points; ++k) text += std::to_string(k) + " 0 0\n";
  return text;
}

// So many frames, each a chain of so many points.
std::string trajectory(std::size_t frames, std::size_t points) {
  std::string text;
  for (std::size_t frame = 0; frame < frames; ++frame) {
    text += std::to_string(points) + "\nframe\n";
    for (std::size_t k = 0; k < points; ++k)
      text += "C " + std::to_string(k) + ' ' + std::to_string(frame) + " 0\n";
  }
  return text;
}

// What is handed over: "title model:points" of each chain, "title!" where something failed and
// "title." at the end of a member.
std::vector<std::string> handed_over(const std::vector<Lot>& lots, unsigned threads,
                                     ChainWork work = {}, MemberCounts* counts = nullptr) {
  std::vector<std::string> log;
  work.answer = [&log](const Member& member, Chain&& chain, const korvex::Run&) -> Delivery {
    if (chain.points.size() == 13)
      throw Error(ErrorCode::kInvalidArgument, "no answer for this chain");
    std::string text = member.title() + ' ' + std::to_string(chain.model) + ':' +
                       std::to_string(chain.points.size());
    return [&log, text = std::move(text)] { log.push_back(text); };
  };
  work.failed = [&log](const Member& member, const std::string&) {
    log.push_back(member.title() + '!');
  };
  work.ended = [&log](const Member& member) { log.push_back(member.title() + '.'); };
  korvex::Run run;
  run.threads = threads;
  const MemberCounts members = for_each_chain(lots, {}, work, run);
  if (counts != nullptr) *counts = members;
  return log;
}

std::vector<std::string> paths_in(const std::vector<Lot>& lots) {
  std::vector<std::string> paths;
  for (const Lot& lot : lots) {
    if (!lot.archive.empty()) paths.push_back("[" + lot.archive + "]");
    for (const Member& file : lot.files) paths.push_back(file.title());
  }
  return paths;
}

std::string refusal(const std::vector<std::string>& names) {
  try {
    lots_of(names);
  } catch (const Error& error) {
    return error.what();
  }
  ADD_FAILURE() << "nothing is refused";
  return {};
}

TEST(Sources, AFolderIsAllFilesBelowItInOrder) {
  const TemporaryDirectory directory;
  std::filesystem::create_directories(directory.path("d/b"));
  for (const char* name : {"d/c.txt", "d/b/z.txt", "d/b/a.txt", "d/a.txt"})
    directory.write(name, "");
  const std::string folder = directory.path("d");
  EXPECT_EQ(paths_in(lots_of({folder})),
            (std::vector<std::string>{folder + "/a.txt", folder + "/b/a.txt", folder + "/b/z.txt",
                                      folder + "/c.txt"}));
  EXPECT_EQ(lots_of({folder + "/"}).front().files.front().name, "a.txt");
}

TEST(Sources, AnArchiveBetweenFilesIsALotOfItsOwn) {
  const std::vector<Lot> lots = lots_of({"a.pdb", "b.pdb", "c.tar.gz", "d.pdb"});
  ASSERT_EQ(lots.size(), 3U);
  EXPECT_EQ(paths_in(lots), (std::vector<std::string>{"a.pdb", "b.pdb", "[c.tar.gz]", "d.pdb"}));
  EXPECT_EQ(lots[2].files[0].at, (Place{2, 0}));
  EXPECT_EQ(lots[0].files[1].at, (Place{0, 1}));
}

TEST(Sources, ALongTrajectoryIsALotByFrames) {
  const TemporaryDirectory directory;
  const std::string big(std::size_t{1} << 20, '\n');
  const std::vector<Lot> lots =
      lots_of({directory.write("a.txt", ""), directory.write("long.xtc", big),
               directory.write("long.lammpstrj.gz", big),
               directory.write("short.xyz", "1\n\nC 0 0 0\n"), directory.write("long.txt", big)});
  ASSERT_EQ(lots.size(), 4u);
  EXPECT_FALSE(lots[0].by_frames);
  EXPECT_TRUE(lots[1].by_frames);
  EXPECT_TRUE(lots[2].by_frames);
  EXPECT_EQ(lots[2].files.front().at, (Place{2, 0}));
  EXPECT_FALSE(lots[3].by_frames);
  EXPECT_EQ(lots[3].files.size(), 2u);
}

TEST(Sources, AListNamesSourcesAndNoFurtherLists) {
  const TemporaryDirectory directory;
  const std::string list = directory.write("names.txt", "a.pdb\r\n\nb.tar\nc d.pdb");
  EXPECT_EQ(paths_in(lots_of({"@" + list})),
            (std::vector<std::string>{"a.pdb", "[b.tar]", "c d.pdb"}));
  const std::string nested = directory.write("nested.txt", "@names.txt\n");
  EXPECT_NE(refusal({"@" + nested}).find("a list stands in a list"), std::string::npos);
  EXPECT_NE(refusal({"@" + directory.path("none")}).find("cannot be read"), std::string::npos);
}

TEST(Sources, StandardInputIsReadOnce) {
  EXPECT_NE(refusal({"-", "-"}).find("more than once"), std::string::npos);
}

TEST(Sources, AnEmptyFolderFailsLikeAFile) {
  const TemporaryDirectory directory;
  std::filesystem::create_directories(directory.path("d"));
  const std::string folder = directory.path("d");
  EXPECT_EQ(handed_over(lots_of({folder}), 1),
            (std::vector<std::string>{folder + '!', folder + '.'}));
}

TEST(Sources, AnswersComeInOrderOnAnyNumberOfThreads) {
  const TemporaryDirectory directory;
  support::TarFiles files;
  for (std::size_t k = 1; k <= 60; ++k)
    files.emplace_back("m" + std::to_string(k), k % 7 == 0 ? trajectory(k, 5) : straight(k));
  const std::string archive = directory.write("many.tar", support::tar_of(files));
  const std::string file = directory.write("frames.xyz", trajectory(300, 3));
  const std::vector<Lot> lots = lots_of({archive, file, directory.path("missing.pdb")});
  const auto alone = handed_over(lots, 1);
  EXPECT_EQ(alone.front(), archive + "/m1 1:1");
  EXPECT_EQ(alone.back(), directory.path("missing.pdb") + '.');
  EXPECT_EQ(alone.size(), 52U + (7 + 14 + 21 + 28 + 35 + 42 + 49 + 56) + 60 + 300 + 1 + 2);
  for (const unsigned threads : {2U, 3U, 16U}) EXPECT_EQ(handed_over(lots, threads), alone);
}

TEST(Sources, AChainOrAMemberThatFailsCostsNoOther) {
  const TemporaryDirectory directory;
  const std::string archive =
      directory.write("a.tar", support::tar_of({{"good", straight(4)},
                                                {"words", "1 2 3\n4 5 six\n"},
                                                {"unlucky", straight(13)},
                                                {"empty", ""},
                                                {"frames", trajectory(2, 3) + "5\nframe\nC 1 2"},
                                                {"last", straight(5)}}));
  const std::vector<std::string> expected = {
      archive + "/good 1:4",   archive + "/good.",      archive + "/words!",  archive + "/words.",
      archive + "/unlucky!",   archive + "/unlucky.",   archive + "/empty!",  archive + "/empty.",
      archive + "/frames 1:3", archive + "/frames 2:3", archive + "/frames!", archive + "/frames.",
      archive + "/last 1:5",   archive + "/last."};
  for (const unsigned threads : {1U, 4U})
    EXPECT_EQ(handed_over(lots_of({archive}), threads), expected);
}

TEST(Sources, OnlyWantedMembersAreReadAndAllAreCounted) {
  const TemporaryDirectory directory;
  const std::string archive = directory.write(
      "a.tar", support::tar_of({{"a", straight(1)}, {"b", straight(2)}, {"c", straight(3)}}));
  const std::string file = directory.write("d", straight(4));
  ChainWork work;
  work.wanted = [](const Place& at) { return at.index == 1 || at.lot == 1; };
  MemberCounts counts;
  const auto log = handed_over(lots_of({archive, file}), 2, work, &counts);
  EXPECT_EQ(log, (std::vector<std::string>{archive + "/b 1:2", archive + "/b.", file + " 1:4",
                                           file + '.'}));
  EXPECT_EQ(counts, (MemberCounts{3, 1}));
}

TEST(Sources, AnArchiveCutAnywhereFailsAndWhatStoodBeforeIsAnswered) {
  const TemporaryDirectory directory;
  const std::string whole = support::tar_of({{"a", straight(2)}, {"b", straight(3)}});
  for (std::size_t size = 1; size < 4 * support::kTarBlock; size += 61) {
    const std::string path = directory.write("cut.tar", whole.substr(0, size));
    const auto log = handed_over(lots_of({path}), 2);
    ASSERT_FALSE(log.empty()) << size;
    const auto failures = std::count_if(log.begin(), log.end(),
                                        [](const std::string& text) { return text.back() == '!'; });
    // A cut between two members is an end like another.
    EXPECT_TRUE(failures > 0 || size >= 2 * support::kTarBlock) << size;
    if (size >= 2 * support::kTarBlock) {
      EXPECT_EQ(log.front(), path + "/a 1:2") << size;
    }
  }
}

TEST(Sources, WhatIsNoArchiveSaysSo) {
  const TemporaryDirectory directory;
  for (const std::string& bytes : {std::string("no archive at all\n"), std::string(2000, 'x')}) {
    const std::string path = directory.write("no.tar", bytes);
    EXPECT_EQ(handed_over(lots_of({path}), 1), (std::vector<std::string>{path + '!', path + '.'}));
  }
}

TEST(Sources, LinksInAnArchiveAreToldOf) {
  const TemporaryDirectory directory;
  const std::string archive =
      directory.write("a.tar", support::tar_head("link", 0, '2', "elsewhere") +
                                   support::tar_of({{"b", straight(2)}}));
  EXPECT_EQ(handed_over(lots_of({archive}), 2),
            (std::vector<std::string>{archive + "/link!", archive + "/link.", archive + "/b 1:2",
                                      archive + "/b."}));
}

TEST(Sources, WhatADeliveryThrowsReachesTheCaller) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("frames.xyz", trajectory(50, 3));
  for (const unsigned threads : {1U, 3U}) {
    ChainWork work;
    work.answer = [](const Member&, Chain&&, const korvex::Run&) -> Delivery {
      return [] { throw std::runtime_error("the disk is full"); };
    };
    work.failed = [](const Member&, const std::string&) { ADD_FAILURE() << "nothing failed"; };
    korvex::Run run;
    run.threads = threads;
    EXPECT_THROW(for_each_chain(lots_of({file}), {}, work, run), std::runtime_error);
  }
}

TEST(Sources, StopsWhenAskedTo) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("frames.xyz", trajectory(500, 3));
  for (const unsigned threads : {1U, 3U}) {
    std::stop_source stop;
    std::size_t answered = 0;
    ChainWork work;
    work.answer = [&](const Member&, Chain&&, const korvex::Run&) -> Delivery {
      return [&] {
        if (++answered == 10) stop.request_stop();
      };
    };
    work.failed = [](const Member&, const std::string&) { ADD_FAILURE() << "nothing failed"; };
    korvex::Run run;
    run.threads = threads;
    run.stop = stop.get_token();
    try {
      for_each_chain(lots_of({file}), {}, work, run);
      ADD_FAILURE() << "not stopped";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), ErrorCode::kCancelled);
    }
    EXPECT_LT(answered, 100U);
  }
}

// Without it, a chain by itself would have one thread.
TEST(Sources, TheLastChainHasAllThreads) {
  const TemporaryDirectory directory;
  const std::string file = directory.write("one.txt", straight(4));
  unsigned threads = 0;
  ChainWork work;
  work.answer = [&](const Member&, Chain&&, const korvex::Run& run) -> Delivery {
    threads = run.threads;
    return [] {};
  };
  korvex::Run run;
  run.threads = 8;
  for_each_chain(lots_of({file}), {}, work, run);
  EXPECT_EQ(threads, 8U);
}

}  // namespace
}  // namespace korvex

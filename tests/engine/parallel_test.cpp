#include "engine/run/parallel.hpp"

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <vector>

#include "korvex/each.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

TEST(ForEachPiece, DoesEveryPieceOnce) {
  for (const unsigned threads : {0u, 1u, 2u, 7u}) {
    std::vector<int> done(100, 0);
    for_each_piece({.threads = threads}, done.size(),
                   [&](std::size_t piece, unsigned) { ++done[piece]; });
    EXPECT_EQ(done, std::vector<int>(100, 1));
  }
}

TEST(ForEachIndex, CallsTheWorkOnceForEveryIndexAndTellsTheProgress) {
  for (const unsigned threads : {1u, 3u}) {
    std::vector<int> done(50, 0);
    double told = 0;
    for_each_index(done.size(), [&](std::size_t index) { ++done[index]; },
                   {.threads = threads, .progress = [&](double fraction) { told = fraction; }});
    EXPECT_EQ(done, std::vector<int>(50, 1));
    EXPECT_EQ(told, 1);
  }
}

TEST(ForEachPiece, OfNothingDoesNothing) {
  for_each_piece({.threads = 3}, 0, [](std::size_t, unsigned) { FAIL(); });
}

TEST(ForEachPiece, NeverSharesAWorker) {
  const korvex::Run run{.threads = 4};
  std::vector<std::atomic<int>> busy(worker_count(run, 1000));
  std::atomic<bool> shared = false;
  for_each_piece(run, 1000, [&](std::size_t, unsigned worker) {
    if (busy.at(worker).fetch_add(1) != 0) shared = true;
    busy[worker].fetch_sub(1);
  });
  EXPECT_FALSE(shared);
}

TEST(ForEachPiece, ReportsProgressThatRisesToOne) {
  for (const unsigned threads : {1u, 3u}) {
    std::vector<double> seen;
    korvex::Run run{.threads = threads};
    run.progress = [&](double fraction) { seen.push_back(fraction); };
    for_each_piece(run, 50, [](std::size_t, unsigned) {});
    ASSERT_EQ(seen.size(), 50u);
    for (std::size_t i = 1; i < seen.size(); ++i) EXPECT_LT(seen[i - 1], seen[i]);
    EXPECT_EQ(seen.back(), 1);
  }
}

TEST(ForEachPiece, HandsTheFirstExceptionToTheCaller) {
  for (const unsigned threads : {1u, 4u}) {
    try {
      for_each_piece({.threads = threads}, 100, [](std::size_t piece, unsigned) {
        if (piece == 3) throw std::runtime_error("piece 3");
      });
      FAIL() << "nothing was thrown";
    } catch (const std::runtime_error& error) {
      EXPECT_STREQ(error.what(), "piece 3");
    }
  }
}

TEST(ForEachPiece, HandsOnAnExceptionOfTheProgressReport) {
  korvex::Run run{.threads = 2};
  run.progress = [](double) { throw std::runtime_error("report"); };
  EXPECT_THROW(for_each_piece(run, 10, [](std::size_t, unsigned) {}), std::runtime_error);
}

TEST(ForEachPiece, StopsWhenAsked) {
  for (const unsigned threads : {1u, 4u}) {
    std::stop_source source;
    korvex::Run run{.threads = threads};
    run.stop = source.get_token();
    std::atomic<int> done = 0;
    try {
      for_each_piece(run, 1000, [&](std::size_t, unsigned) {
        if (++done == 5) source.request_stop();
      });
      FAIL() << "nothing was thrown";
    } catch (const Error& error) {
      EXPECT_EQ(error.code(), ErrorCode::kCancelled);
    }
    EXPECT_LT(done, 1000);
  }
}

TEST(PartOf, MapsItsProgressOntoAShareOfTheWhole) {
  double last = 0;
  korvex::Run run;
  run.progress = [&](double fraction) { last = fraction; };
  part_of(run, 0.5, 0.75).progress(1);
  EXPECT_EQ(last, 0.75);
  part_of(run, 0.5, 0.75).progress(0);
  EXPECT_EQ(last, 0.5);
}

}  // namespace
}  // namespace korvex

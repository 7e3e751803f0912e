#include "engine/run/parallel.hpp"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "korvex/error.hpp"

namespace korvex {
namespace {

// What the workers of one call share.
class Board {
 public:
  Board(const Run& run, std::size_t pieces) : run_(run), pieces_(pieces) {}

  void work(const std::function<void(std::size_t, unsigned)>& task, unsigned worker) {
    while (!failed_.load(std::memory_order_relaxed)) {
      const std::size_t piece = next_.fetch_add(1, std::memory_order_relaxed);
      if (piece >= pieces_) return;
      try {
        throw_if_cancelled(run_);
        task(piece, worker);
        report();
      } catch (...) {
        keep_failure(piece);
      }
    }
  }

  void rethrow() const {
    if (failure_) std::rethrow_exception(failure_);
  }

 private:
  void report() {
    if (!run_.progress) return;
    const std::lock_guard lock(mutex_);
    ++done_;
    run_.progress(static_cast<double>(done_) / static_cast<double>(pieces_));
  }

  void keep_failure(std::size_t piece) {
    const std::lock_guard lock(mutex_);
    if (!failure_ || piece < failed_piece_) {
      failure_ = std::current_exception();
      failed_piece_ = piece;
    }
    failed_.store(true, std::memory_order_relaxed);
  }

  const Run& run_;
  const std::size_t pieces_;
  std::atomic<std::size_t> next_ = 0;
  std::atomic<bool> failed_ = false;
  std::mutex mutex_;
  std::size_t done_ = 0;
  std::exception_ptr failure_;
  std::size_t failed_piece_ = 0;
};

}  // namespace

unsigned worker_count(const Run& run, std::size_t pieces) {
  unsigned wanted = run.threads;
  if (wanted == 0) wanted = std::max(1u, std::thread::hardware_concurrency());
  return static_cast<unsigned>(std::clamp<std::size_t>(pieces, 1, wanted));
}

void throw_if_cancelled(const Run& run) {
  if (run.stop.stop_requested()) throw Error(ErrorCode::kCancelled, "stopped on request");
}

Run part_of(const Run& run, double from, double to) {
  Run part = run;
  if (run.progress) {
    part.progress = [report = run.progress, from, to](double fraction) {
      report(from + fraction * (to - from));
    };
  }
  return part;
}

void for_each_piece(const Run& run, std::size_t pieces,
                    const std::function<void(std::size_t, unsigned)>& task) {
  throw_if_cancelled(run);
  Board board(run, pieces);
  {
    std::vector<std::jthread> helpers;
    const unsigned workers = worker_count(run, pieces);
    helpers.reserve(workers);
    try {
      for (unsigned worker = 1; worker < workers; ++worker)
        helpers.emplace_back([&board, &task, worker] { board.work(task, worker); });
    } catch (const std::system_error&) {
      // The system gives no more threads: those that there are do all the work.
    }
    board.work(task, 0);
  }
  board.rethrow();
}

}  // namespace korvex

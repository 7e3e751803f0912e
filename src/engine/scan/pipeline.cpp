#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <exception>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "engine/run/parallel.hpp"
#include "engine/scan/member_walk.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"
#include "korvex/sources.hpp"

namespace korvex {
namespace {

// Answers that wait for those before them, and points of their chains. While there are more, no
// further member is read.
constexpr std::size_t kMostWaiting = 4096;
constexpr std::size_t kMostPointsWaiting = std::size_t{1} << 20;
// Chains for each thread that are read and not yet worked on.
constexpr std::size_t kChainsAhead = 2;

struct KnownAnswer {
  std::size_t points = 0;  // of the chain
  std::optional<Delivery> delivery;
};

// A member on its way, with the answers of its chains as far as they are known.
struct OpenMember {
  Member member;
  std::deque<KnownAnswer> answers;  // that were not handed over
  std::size_t handed = 0;           // before those
  bool read = false;                // it has no more chains than were met
  Place end;                        // where its end is told
  bool wanted = true;               // whether it is
};

// Gives the frames of a lot by frames their places. What is no such lot is one place.
class FrameCount {
 public:
  FrameCount(const Member& member, bool by_frames, const ChainWork& work)
      : member_(member), by_frames_(by_frames), work_(work) {}

  // Whether the frame of this chain, the next one or that of the one before, is worked on.
  bool wants(const Chain& chain) {
    if (!by_frames_ || chain.model == model_) return wanted_;
    ++frames_;
    model_ = chain.model;
    return wanted_ = wants_last();
  }

  // Whether the last frame is; where there is none, whether the first were.
  bool wants_last() const { return !by_frames_ || !work_.wanted || work_.wanted(place()); }
  Place place() const {
    return by_frames_ ? Place{member_.at.lot, std::max<std::size_t>(frames_, 1) - 1} : member_.at;
  }
  std::size_t frames() const { return std::max<std::size_t>(frames_, 1); }

 private:
  const Member& member_;
  const bool by_frames_;
  const ChainWork& work_;
  std::size_t frames_ = 0;
  std::optional<std::int64_t> model_;
  bool wanted_ = true;
};

struct WaitingChain {
  std::shared_ptr<OpenMember> of;
  std::size_t index = 0;
  Place at;
  Chain chain;
};

// Every worker does what there is to do: hands over, works on a chain, reads the next member. Who
// reads a member with many chains hands them to the others, and works on some himself where they
// cannot keep up, so that little waits and nobody does.
class Pipeline {
 public:
  Pipeline(const std::vector<Lot>& lots, const ReadOptions& read, const ChainWork& work,
           const Run& run)
      : lots_(lots),
        walk_(lots),
        read_(read),
        work_(work),
        run_(run),
        workers_(worker_count(run, SIZE_MAX)) {
    for (const Lot& lot : lots) {
      known_ = known_ && lot.archive.empty();
      members_ += lot.files.size();
    }
  }

  MemberCounts go() {
    Run alone = run_;
    alone.progress = {};
    for_each_piece(alone, workers_, [this](std::size_t, unsigned) { work(); });
    if (failure_) std::rethrow_exception(failure_);
    MemberCounts counts = walk_.counts();
    for (const auto& [lot, frames] : frames_) counts[lot] = frames;
    return counts;
  }

 private:
  using Lock = std::unique_lock<std::mutex>;

  void work() {
    Lock lock(mutex_);
    try {
      while (step(lock)) continue;
    } catch (...) {
      if (!lock.owns_lock()) lock.lock();
      if (!failure_) failure_ = std::current_exception();
    }
    changed_.notify_all();
  }

  // Does something, or waits until there may be something to do. False when all is done.
  bool step(Lock& lock) {
    if (failure_) return false;
    throw_if_cancelled(run_);
    if (!chains_.empty())
      answer_first(lock);
    else if (!exhausted_ && !walking_ && (!crowded() || open_.empty()))
      read_next_member(lock);
    else if (exhausted_ && reading_ == 0 && answering_ == 0)
      return false;
    else
      changed_.wait(lock);
    return true;
  }

  bool crowded() const { return waiting_ >= kMostWaiting || points_waiting_ >= kMostPointsWaiting; }

  void answer_first(Lock& lock) {
    WaitingChain next = std::move(chains_.front());
    chains_.pop_front();
    ++answering_;
    Run run = run_;
    run.progress = {};
    // The last chains of all have the threads to themselves.
    const bool last = exhausted_ && reading_ == 0 && chains_.empty();
    run.threads = last ? std::max(1U, workers_ / answering_) : 1;
    lock.unlock();
    Member member = next.of->member;
    member.at = next.at;
    const std::string title = title_of(next.chain);
    Delivery delivery;
    try {
      delivery = work_.answer(member, std::move(next.chain), run);
    } catch (const Error& error) {
      if (error.code() == ErrorCode::kCancelled) throw;
      delivery = failure_of(member, title);
    } catch (...) {
      delivery = failure_of(member, title);
    }
    lock.lock();
    --answering_;
    KnownAnswer& answer = next.of->answers[next.index - next.of->handed];
    answer.delivery = std::move(delivery);
    ++waiting_;
    points_waiting_ += answer.points;
    hand_over(lock);
    changed_.notify_all();
  }

  // To be called where the failure was caught.
  Delivery failure_of(const Member& member, std::string title) const {
    return [this, member, title = std::move(title), error = std::current_exception()] {
      try {
        std::rethrow_exception(error);
      } catch (...) {
        work_.failed(member, title);
      }
    };
  }

  void read_next_member(Lock& lock) {
    walking_ = true;
    lock.unlock();
    std::optional<MetMember> met;
    try {
      met = walk_.next([this](const Place& at) {
        throw_if_cancelled(run_);
        return !work_.wanted || work_.wanted(at);
      });
    } catch (...) {
      lock.lock();
      walking_ = false;
      throw;
    }
    lock.lock();
    walking_ = false;
    fraction_ = walk_.fraction();
    if (!met || walk_.done()) exhausted_ = true;
    changed_.notify_all();
    if (!met) return;
    auto open = std::make_shared<OpenMember>();
    open->member = met->member;
    open->end = met->member.at;
    open_.push_back(open);
    ++reading_;
    lock.unlock();
    read_chains_of(*std::move(met), open, lock);
    if (!lock.owns_lock()) lock.lock();
    --reading_;
    open->read = true;
    hand_over(lock);
    changed_.notify_all();
  }

  // A chain is handed on when the next one is met: whoever works on the last one of all then knows
  // that it is the last.
  void read_chains_of(MetMember&& met, const std::shared_ptr<OpenMember>& open, Lock& lock) {
    const bool by_frames = lots_[open->member.at.lot].by_frames;
    FrameCount frames(open->member, by_frames, work_);
    std::optional<WaitingChain> held;
    Delivery failure;
    const auto failed = [&] {
      Member member = open->member;
      member.at = frames.place();
      if (frames.wants_last()) failure = failure_of(member, {});
    };
    try {
      if (met.failure) std::rethrow_exception(met.failure);
      visit_chains(source_of(std::move(met)), read_, [&](Chain&& chain) {
        if (!frames.wants(chain)) {
          throw_if_cancelled(run_);
          return true;
        }
        if (held) {
          lock.lock();
          put(*std::move(held), lock);
          lock.unlock();
        }
        held = WaitingChain{open, 0, frames.place(), std::move(chain)};
        return true;
      });
    } catch (const Error& error) {
      if (error.code() == ErrorCode::kCancelled) throw;
      failed();
    } catch (...) {
      failed();
    }
    const bool wanted = frames.wants_last();
    if (!lock.owns_lock()) lock.lock();
    if (held) enqueue(*std::move(held));
    if (failure) {
      open->answers.push_back({0, std::move(failure)});
      ++waiting_;
    }
    if (by_frames) {
      open->end = frames.place();
      open->wanted = wanted;
      frames_.emplace_back(open->end.lot, frames.frames());
    }
  }

  // Leaves no more chains waiting than the others will soon take, and where many answers wait for
  // members before this one, waits for these.
  void put(WaitingChain&& chain, Lock& lock) {
    while (!failure_) {
      throw_if_cancelled(run_);
      const bool ahead = open_.front() != chain.of && crowded();
      if (!ahead && chains_.size() < kChainsAhead * (workers_ - 1)) break;
      if (!chains_.empty())
        answer_first(lock);
      else if (ahead)
        changed_.wait(lock);
      else
        break;
    }
    if (failure_) throw Error(ErrorCode::kCancelled, "stopped, since other work failed");
    enqueue(std::move(chain));
    if (workers_ == 1) answer_first(lock);
  }

  void enqueue(WaitingChain&& chain) {
    OpenMember& of = *chain.of;
    chain.index = of.handed + of.answers.size();
    of.answers.push_back({chain.chain.points.size(), {}});
    chains_.push_back(std::move(chain));
    changed_.notify_all();
  }

  // Hands over what is at the front, unless another thread is about it, which will see this too.
  void hand_over(Lock& lock) {
    if (delivering_) return;
    delivering_ = true;
    try {
      while (!open_.empty() && !failure_ && hand_over_first(lock)) continue;
    } catch (...) {
      // Not to be taken for a failure of the member that this thread is reading.
      if (!failure_) failure_ = std::current_exception();
    }
    delivering_ = false;
  }

  // False where the first is not known yet.
  bool hand_over_first(Lock& lock) {
    const std::shared_ptr<OpenMember> first = open_.front();
    if (!first->answers.empty() && first->answers.front().delivery) {
      const Delivery delivery = *std::move(first->answers.front().delivery);
      points_waiting_ -= first->answers.front().points;
      first->answers.pop_front();
      ++first->handed;
      --waiting_;
      ++done_.chains;
      without(lock, delivery);
    } else if (first->answers.empty() && first->read) {
      open_.pop_front();
      ++done_.members;
      Member member = first->member;
      member.at = first->end;
      if (work_.ended && first->wanted) without(lock, [&] { work_.ended(member); });
    } else {
      return false;
    }
    advance(lock);
    return true;
  }

  void advance(Lock& lock) {
    if (!work_.advanced) return;
    Advance now = done_;
    now.fraction = fraction_;
    now.known = known_ ? members_ : 0;
    without(lock, [&] { work_.advanced(now); });
  }

  // Does something while other threads may go on.
  template <typename Task>
  static void without(Lock& lock, const Task& task) {
    lock.unlock();
    try {
      task();
    } catch (...) {
      lock.lock();
      throw;
    }
    lock.lock();
  }

  const std::vector<Lot>& lots_;
  MemberWalk walk_;
  const ReadOptions& read_;
  const ChainWork& work_;
  const Run& run_;
  const unsigned workers_;
  std::size_t members_ = 0;
  bool known_ = true;

  std::mutex mutex_;  // guards what follows
  std::condition_variable changed_;
  std::deque<std::shared_ptr<OpenMember>> open_;  // in order
  std::deque<WaitingChain> chains_;
  std::size_t waiting_ = 0;  // answers that were not handed over
  std::size_t points_waiting_ = 0;
  unsigned reading_ = 0;    // members that are being read
  unsigned answering_ = 0;  // chains that are being worked on
  bool walking_ = false;
  bool exhausted_ = false;
  bool delivering_ = false;
  double fraction_ = 0;
  Advance done_;
  std::vector<std::pair<std::size_t, std::size_t>> frames_;  // lots by frames, and how many
  std::exception_ptr failure_;
};

}  // namespace

MemberCounts for_each_chain(const std::vector<Lot>& lots, const ReadOptions& read,
                            const ChainWork& work, const Run& run) {
  return Pipeline(lots, read, work, run).go();
}

}  // namespace korvex

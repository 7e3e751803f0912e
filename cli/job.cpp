#include "job.hpp"

#include <fmt/format.h>

#include <exception>
#include <new>
#include <utility>

#include "chains.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"

namespace korvex::cli {

Job::Job(const std::vector<std::string>& sources, const ReadOptions& read, const Run& run,
         bool as_rings)
    : lots_(lots_of(sources)),
      read_(read),
      run_(run),
      as_rings_(as_rings),
      notes_(read, as_rings),
      of_one_file_(lots_.size() == 1 && lots_.front().files.size() == 1) {}

Exit Job::answer_each(const std::function<Delivery(const Chain&, const Run&)>& answer) {
  ChainWork work;
  work.answer = [&](const Member&, Chain&& chain, const Run& run) -> Delivery {
    const auto kept = std::make_shared<const Chain>(std::move(chain));
    Delivery delivery;
    try {
      delivery = answer(*kept, run);
    } catch (...) {
      delivery = [error = std::current_exception()] { std::rethrow_exception(error); };
    }
    return [this, kept, delivery = std::move(delivery)] { deliver(*kept, delivery); };
  };
  work.failed = [this](const Member& member, const std::string&) {
    const std::lock_guard lock(terminal_);
    progress_.erase();
    complain_of(member.title());
  };
  work.ended = [this](const Member&) { end_member(); };
  work.advanced = [this](const Advance& now) { show(now); };
  for_each_chain(lots_, read_, work, run_);
  progress_.erase();
  return exit_;
}

void Job::deliver(const Chain& chain, const Delivery& delivery) {
  const std::lock_guard lock(terminal_);
  progress_.erase();
  several_ = true;
  notes_.add(chain);
  try {
    delivery();
  } catch (...) {
    complain_of(title_of(chain));
  }
}

// Called within a catch block. Without memory there is no going on.
void Job::complain_of(const std::string& title) {
  try {
    throw;
  } catch (const korvex::Error&) {
    exit_ = told_failure(title);
  } catch (const std::bad_alloc&) {
    throw no_memory_for(title);
  }
}

void Job::end_member() {
  const std::lock_guard lock(terminal_);
  progress_.erase();
  notes_.tell();
  notes_ = ReadNotes(read_, as_rings_);
}

void Job::show(const Advance& now) {
  const std::lock_guard lock(terminal_);
  if (of_one_file_) {
    progress_.show_count(lots_.front().files.front().title(), now.chains, "chains");
    return;
  }
  const std::string what = now.known == 0 ? fmt::format("{} files", now.members)
                                          : fmt::format("file {} of {}", now.members, now.known);
  const double fraction = now.known == 0
                              ? now.fraction
                              : static_cast<double>(now.members) / static_cast<double>(now.known);
  progress_.show_job(what, fraction, now.chains, "chains");
}

ShowFraction Job::show_of(const Chain& chain) {
  return [this, title = title_of(chain)](double fraction, double total, const char* unit) {
    if (!of_one_file_) return;
    const std::lock_guard lock(terminal_);
    if (several_ || (!shown_.empty() && shown_ != title)) return;
    shown_ = title;
    progress_.show_bar(title, fraction, total, unit);
  };
}

}  // namespace korvex::cli

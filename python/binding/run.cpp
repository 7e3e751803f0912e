#include "run.hpp"

#include <signal.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <memory>

namespace korvex::python {
namespace {

using Clock = std::chrono::steady_clock;
constexpr auto kPause = std::chrono::milliseconds(20);

std::atomic<InterruptWatch*> innermost_watch = nullptr;
struct sigaction interpreters_action {};

void on_interrupt(int number, siginfo_t* info, void* context) {
  InterruptWatch::interrupt_all();
  if ((interpreters_action.sa_flags & SA_SIGINFO) != 0)
    interpreters_action.sa_sigaction(number, info, context);
  else
    interpreters_action.sa_handler(number);
}

bool leaves_it_to_the_system(const struct sigaction& action) {
  return (action.sa_flags & SA_SIGINFO) == 0 &&
         (action.sa_handler == SIG_DFL || action.sa_handler == SIG_IGN);
}

}  // namespace

InterruptWatch::InterruptWatch(std::stop_source& stop) : stop_(stop) {
  if (gettid() != getpid()) return;
  outer_ = innermost_watch.load();
  if (outer_ == nullptr) {
    sigaction(SIGINT, nullptr, &interpreters_action);
    if (leaves_it_to_the_system(interpreters_action)) return;
  }
  watches_ = true;
  innermost_watch.store(this);
  if (outer_ != nullptr) return;
  struct sigaction action {};
  action.sa_sigaction = on_interrupt;
  action.sa_flags = SA_SIGINFO | (interpreters_action.sa_flags & SA_ONSTACK);
  sigemptyset(&action.sa_mask);
  sigaction(SIGINT, &action, nullptr);
}

InterruptWatch::~InterruptWatch() {
  if (!watches_) return;
  if (outer_ == nullptr) sigaction(SIGINT, &interpreters_action, nullptr);
  innermost_watch.store(outer_);
}

// Called by the handler of a signal. A request takes no lock where no callback waits for it, and
// the engine registers none.
void InterruptWatch::interrupt_all() {
  for (InterruptWatch* watch = innermost_watch.load(); watch != nullptr; watch = watch->outer_)
    watch->stop_.request_stop();
}

Run RunArguments::run(std::stop_token stop) const {
  Run run{.threads = threads, .seed = seed, .stop = std::move(stop)};
  if (progress.is_none()) return run;
  // The copies of the function own nothing of Python's: they come and go without its lock.
  run.progress = [callable = progress.ptr(),
                  told = std::make_shared<Clock::time_point>()](double done) {
    const Clock::time_point now = Clock::now();
    if (done < 1 && now - *told < kPause) return;
    *told = now;
    const py::gil_scoped_acquire locked;
    const py::handle function(callable);
    function(done);
  };
  return run;
}

}  // namespace korvex::python

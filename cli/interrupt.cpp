#include "interrupt.hpp"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>
#include <tuple>

#include "command.hpp"

namespace korvex::cli {
namespace {

char partial_file[PATH_MAX];
volatile sig_atomic_t partial_file_exists = 0;

volatile sig_atomic_t terminal_line_shown = 0;

void leave(int signal_number) {
  if (terminal_line_shown != 0) std::ignore = write(STDERR_FILENO, "\r\033[K", 4);
  remove_partial_file_now();
  if (signal_number == SIGINT) _exit(static_cast<int>(Exit::kInterrupted));
  signal(signal_number, SIG_DFL);
  raise(signal_number);
}

// An interrupt and what else ends a program from outside: requests, a reader that went away,
// limits.
constexpr std::array kLeavingSignals = {SIGINT,  SIGTERM, SIGHUP, SIGQUIT,
                                        SIGPIPE, SIGXCPU, SIGXFSZ};

sigset_t leaving_signals() {
  sigset_t set;
  sigemptyset(&set);
  for (const int number : kLeavingSignals) sigaddset(&set, number);
  return set;
}

}  // namespace

void remove_partial_file_now() {
  if (partial_file_exists != 0) unlink(partial_file);
}

void leave_cleanly_when_interrupted() {
  struct sigaction action {};
  action.sa_handler = leave;
  action.sa_mask = leaving_signals();
  for (const int number : kLeavingSignals) {
    struct sigaction previous {};
    sigaction(number, nullptr, &previous);
    if (previous.sa_handler != SIG_IGN) sigaction(number, &action, nullptr);
  }
}

LeavingPutOff::LeavingPutOff() {
  const sigset_t set = leaving_signals();
  sigprocmask(SIG_BLOCK, &set, &before_);
}

LeavingPutOff::~LeavingPutOff() {
  const int error = errno;
  sigprocmask(SIG_SETMASK, &before_, nullptr);
  errno = error;
}

int create_partial_file(std::string& pattern) {
  if (pattern.size() >= sizeof partial_file) {
    errno = ENAMETOOLONG;
    return -1;
  }
  // No signal may fall between the making of the file and the note of its name.
  const LeavingPutOff guard;
  const int descriptor = mkostemp(pattern.data(), O_CLOEXEC);
  if (descriptor >= 0) {
    std::memcpy(partial_file, pattern.c_str(), pattern.size() + 1);
    partial_file_exists = 1;
  }
  return descriptor;
}

namespace {

sigset_t stopping_signals() {
  sigset_t set;
  sigemptyset(&set);
  sigaddset(&set, SIGINT);
  sigaddset(&set, SIGTERM);
  return set;
}

}  // namespace

// The signals are blocked in all threads that are made from now on, so that they wait for the
// watcher.
StopWhenInterrupted::StopWhenInterrupted() {
  const sigset_t set = stopping_signals();
  pthread_sigmask(SIG_BLOCK, &set, nullptr);
  watcher_ = std::jthread([this] { watch(); });
}

StopWhenInterrupted::~StopWhenInterrupted() {
  over_ = true;
  pthread_kill(watcher_.native_handle(), SIGTERM);
  watcher_.join();
  const sigset_t set = stopping_signals();
  pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
}

void StopWhenInterrupted::watch() {
  const sigset_t set = stopping_signals();
  int number = 0;
  if (sigwait(&set, &number) != 0 || over_) return;
  stop_.request_stop();
  if (sigwait(&set, &number) == 0 && !over_) leave(number);
}

void note_terminal_line(bool shown) { terminal_line_shown = shown ? 1 : 0; }

void release_partial_file() { partial_file_exists = 0; }

}  // namespace korvex::cli

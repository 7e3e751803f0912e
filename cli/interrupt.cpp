#include "interrupt.hpp"

#include <signal.h>
#include <stdlib.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <climits>
#include <cstring>

#include "command.hpp"

namespace korvex::cli {
namespace {

char partial_file[PATH_MAX];
volatile sig_atomic_t partial_file_exists = 0;

volatile sig_atomic_t terminal_line_shown = 0;

void leave(int signal_number) {
  if (terminal_line_shown != 0) {
    [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, "\r\033[K", 4);
  }
  if (partial_file_exists != 0) unlink(partial_file);
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

std::string create_partial_file(std::string pattern) {
  if (pattern.size() >= sizeof partial_file) {
    errno = ENAMETOOLONG;
    return {};
  }
  // No signal may fall between the making of the file and the note of its name.
  const sigset_t set = leaving_signals();
  sigset_t before;
  sigprocmask(SIG_BLOCK, &set, &before);
  const int descriptor = mkstemp(pattern.data());
  const int error = errno;
  if (descriptor >= 0) {
    close(descriptor);
    std::memcpy(partial_file, pattern.c_str(), pattern.size() + 1);
    partial_file_exists = 1;
  }
  sigprocmask(SIG_SETMASK, &before, nullptr);
  errno = error;
  return descriptor >= 0 ? pattern : std::string();
}

void note_terminal_line(bool shown) { terminal_line_shown = shown ? 1 : 0; }

void release_partial_file() { partial_file_exists = 0; }

}  // namespace korvex::cli

// What the subcommands share: how a run ends.
#pragma once

#include <functional>
#include <stdexcept>
#include <string>

namespace korvex::cli {

enum class Exit {
  kDone = 0,
  kSomeInputsFailed = 1,
  kUsage = 2,
  kInternal = 3,
  kInterrupted = 130,
};

// Ends the work on an input, or the whole run, with one line for the user: what, where, what to do.
class Failure : public std::runtime_error {
 public:
  Failure(Exit status, const std::string& message) : std::runtime_error(message), status_(status) {}
  [[nodiscard]] Exit status() const { return status_; }

 private:
  Exit status_;
};

// The work that the command line asks for.
using Work = std::function<Exit()>;

// Writes `korvex: message` and a line end to standard error.
void complain(const std::string& message);

// Sends on what was written to standard output. Throws Failure when it cannot be written.
void flush_output();

}  // namespace korvex::cli

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

// Ends the run: memory ran out while `input` was worked on.
Failure no_memory_for(const std::string& input);

// The work that the command line asks for.
using Work = std::function<Exit()>;

// Writes `korvex: message` and a line end to standard error.
void complain(const std::string& message);

// To be called where an exception has been caught: writes the one line about it, and gives the exit
// status that it has wherever it happens:
//   kUsage             the command line cannot be meant so, or what it wants to write to cannot be
//                      written to, as is found out before anything is read
//   kSomeInputsFailed  an input cannot be read or answered, or the output cannot be written
//   kInternal          memory ran out, or the program is wrong
// `input` stands in the line where the exception does not tell what it is about.
Exit told_failure(const std::string& input = {}) noexcept;

// Sends on what was written to standard output. Throws Failure when it cannot be written.
void flush_output();

}  // namespace korvex::cli

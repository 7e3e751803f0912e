#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "command.hpp"
#include "interrupt.hpp"
#include "korvex/error.hpp"
#include "korvex/quoting.hpp"

namespace korvex::cli {

void complain(const std::string& message) {
  std::cerr << "korvex: " + quoted_for_terminal(message) + "\n";
}

Failure no_memory_for(const std::string& input) {
  return {Exit::kInternal, input + ": there is not enough memory for this"};
}

void flush_output() {
  std::cout.flush();
  if (!std::cout)
    throw Failure(Exit::kSomeInputsFailed,
                  std::string("cannot write to standard output: ") + std::strerror(errno));
}

namespace {

// Needs no memory.
void complain_plainly(const char* message) noexcept {
  [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, message, std::strlen(message));
}

// Where an exception cannot be caught: before main, or while the exception itself is made.
[[noreturn]] void leave_uncaught() noexcept {
  bool no_memory = true;
  try {
    if (const std::exception_ptr exception = std::current_exception())
      std::rethrow_exception(exception);
  } catch (const std::bad_alloc&) {
  } catch (...) {
    no_memory = false;
  }
  complain_plainly(no_memory ? "korvex: out of memory\n" : "korvex: internal error\n");
  remove_partial_file_now();
  _exit(static_cast<int>(Exit::kInternal));
}

// Before all else of this program, which has objects that take memory.
struct LeavesUncaught {
  LeavesUncaught() { std::set_terminate(leave_uncaught); }
};
[[gnu::init_priority(101)]] const LeavesUncaught leaves_uncaught;

Exit told(const std::string& input, const std::string& message, Exit status) {
  complain(input.empty() ? message : input + ": " + message);
  return status;
}

Exit told_any(const std::string& input) {
  try {
    throw;
  } catch (const Failure& failure) {
    return told({}, failure.what(), failure.status());
  } catch (const Error& error) {
    // Where it is about no input, it is about the options.
    const bool is_usage = input.empty() && error.code() == ErrorCode::kInvalidArgument;
    return told(error.file().empty() ? input : "", error.what(),
                is_usage ? Exit::kUsage : Exit::kSomeInputsFailed);
  } catch (const std::bad_alloc&) {
    return told(input, "out of memory", Exit::kInternal);
  } catch (const std::exception& error) {
    return told(input, std::string("internal error: ") + error.what(), Exit::kInternal);
  }
}

}  // namespace

Exit told_failure(const std::string& input) noexcept {
  try {
    return told_any(input);
  } catch (const std::bad_alloc&) {
    complain_plainly("korvex: out of memory\n");
  } catch (...) {
    complain_plainly("korvex: internal error\n");
  }
  return Exit::kInternal;
}

}  // namespace korvex::cli

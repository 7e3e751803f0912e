#include <algorithm>
#include <cerrno>
#include <cstring>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <string_view>

#include "command.hpp"
#include "commands.hpp"
#include "interrupt.hpp"
#include "korvex/error.hpp"
#include "korvex/quoting.hpp"

namespace korvex::cli {

void complain(const std::string& message) {
  std::cerr << "korvex: " + quoted_for_terminal(message) + "\n";
}

void flush_output() {
  std::cout.flush();
  if (!std::cout)
    throw Failure(Exit::kSomeInputsFailed,
                  std::string("cannot write to standard output: ") + std::strerror(errno));
}

namespace {

std::vector<Command> commands_for(int argc, char** argv) {
  const bool is_classic = std::any_of(argv, argv + argc, [](const char* argument) {
    return std::string_view(argument) == "--classic";
  });
  return {is_classic ? classic::knot_command() : knot_command(),
          is_classic ? classic::fingerprint_command() : fingerprint_command(), locate_command(),
          map_command(), table_command()};
}

Exit guarded(const Work& work) {
  try {
    const Exit exit = work();
    flush_output();
    return exit;
  } catch (const Failure& failure) {
    complain(failure.what());
    return failure.status();
  } catch (const korvex::Error& error) {
    complain(error.what());
    return error.code() == ErrorCode::kInvalidArgument ? Exit::kUsage : Exit::kSomeInputsFailed;
  } catch (const std::bad_alloc&) {
    complain("out of memory");
  } catch (const std::exception& error) {
    complain(std::string("internal error: ") + error.what());
  }
  return Exit::kInternal;
}

}  // namespace
}  // namespace korvex::cli

int main(int argc, char** argv) {
  using namespace korvex::cli;
  leave_cleanly_when_interrupted();
  try {
    const std::vector<Command> commands = commands_for(argc, argv);
    return static_cast<int>(guarded(work_asked_for(commands, argc, argv)));
  } catch (...) {
    return static_cast<int>(Exit::kInternal);
  }
}

#include <malloc.h>

#include <algorithm>
#include <string_view>
#include <vector>

#include "command.hpp"
#include "commands.hpp"
#include "descriptors.hpp"
#include "interrupt.hpp"

namespace korvex::cli {
namespace {

std::vector<Command> commands_for(int argc, char** argv) {
  const bool is_classic = std::any_of(argv, argv + argc, [](const char* argument) {
    return std::string_view(argument) == "--classic";
  });
  return {is_classic ? classic::knot_command() : knot_command(),
          is_classic ? classic::fingerprint_command() : fingerprint_command(),
          locate_command(),
          map_command(),
          scan_command(),
          merge_command(),
          table_command(),
          draw_command()};
}

Exit run(int argc, char** argv) noexcept {
  try {
    const std::vector<Command> commands = commands_for(argc, argv);
    const Exit exit = work_asked_for(commands, argc, argv)();
    flush_output();
    return exit;
  } catch (...) {
    return told_failure();
  }
}

// Memory that one input leaves serves the next: to give it back to the system and to ask for it
// again would take as long as reading the input.
void keep_memory() {
  constexpr int kMost = 64 << 20;
  mallopt(M_MMAP_THRESHOLD, kMost / 2);
  mallopt(M_TRIM_THRESHOLD, kMost);
}

}  // namespace
}  // namespace korvex::cli

int main(int argc, char** argv) {
  using namespace korvex::cli;
  if (!hold_standard_descriptors()) return static_cast<int>(Exit::kInternal);
  leave_cleanly_when_interrupted();
  keep_memory();
  return static_cast<int>(run(argc, argv));
}

#include "descriptors.hpp"

#include <fcntl.h>
#include <unistd.h>

namespace korvex::cli {

bool hold_standard_descriptors() noexcept {
  for (int descriptor = STDIN_FILENO; descriptor <= STDERR_FILENO; ++descriptor) {
    if (fcntl(descriptor, F_GETFD) >= 0) continue;
    // The lowest number that is free, which is this one.
    if (open("/", O_PATH | O_CLOEXEC) != descriptor) return false;
  }
  return true;
}

}  // namespace korvex::cli

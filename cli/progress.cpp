#include "progress.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <iostream>

namespace korvex::cli {
namespace {

constexpr const char* kEraseLine = "\r\033[K";
constexpr std::chrono::milliseconds kInterval(100);

}  // namespace

Progress::Progress()
    : on_terminal_(isatty(STDERR_FILENO) == 1), next_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (shown_) std::cerr << kEraseLine << std::flush;
}

void Progress::show(const std::string& what, long long done, long long total, const char* unit) {
  const auto now = std::chrono::steady_clock::now();
  if (!on_terminal_ || now < next_) return;
  next_ = now + kInterval;
  shown_ = true;
  std::cerr << fmt::format("{}{}: {} of {} {} ({} %)", kEraseLine, what, done, total, unit,
                           total > 0 ? 100 * done / total : 100)
            << std::flush;
}

}  // namespace korvex::cli

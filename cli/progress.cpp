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

void Progress::show_bar(const std::string& what, double fraction, double total, const char* unit) {
  constexpr int kWidth = 24;
  const auto now = std::chrono::steady_clock::now();
  if (!on_terminal_) return;
  if (bar_of_ != what) {
    bar_of_ = what;
    bar_start_ = now;
  }
  if (now < next_) return;
  next_ = now + kInterval;
  shown_ = true;
  const double seconds = std::chrono::duration<double>(now - bar_start_).count();
  const auto filled = static_cast<int>(fraction * kWidth);
  std::string rate = "";
  if (seconds > 0 && fraction > 0)
    rate = fmt::format(" {:.3g} {}/s, {:.0f} s left", fraction * total / seconds, unit,
                       seconds * (1 - fraction) / fraction);
  std::cerr << fmt::format("{}{} [{:#>{}}{:>{}}] {:3.0f} %{}", kEraseLine, what, "", filled, "",
                           kWidth - filled, 100 * fraction, rate)
            << std::flush;
}

}  // namespace korvex::cli

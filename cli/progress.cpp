#include "progress.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>

#include "interrupt.hpp"

namespace korvex::cli {
namespace {

constexpr const char* kEraseLine = "\r\033[K";
constexpr std::chrono::milliseconds kInterval(100);

// Three digits, or all before the point.
std::string number_text(double number) {
  constexpr double kThreeDigits = 100;
  return number < kThreeDigits ? fmt::format("{:.3g}", number) : fmt::format("{:.0f}", number);
}

std::string duration_text(double seconds) {
  constexpr double kLongestInSeconds = 100;
  if (seconds < kLongestInSeconds) return fmt::format("{:.0f} s", seconds);
  const auto minutes = static_cast<long long>(std::min(seconds / 60, 1e9));
  if (minutes >= 60) return fmt::format("{} h {} min", minutes / 60, minutes % 60);
  return fmt::format("{} min {} s", minutes, static_cast<long long>(seconds) % 60);
}

}  // namespace

Progress::Progress()
    : on_terminal_(isatty(STDERR_FILENO) == 1), next_(std::chrono::steady_clock::now()) {}

Progress::~Progress() {
  if (!shown_) return;
  std::cerr << kEraseLine << std::flush;
  note_terminal_line(false);
}

void Progress::show(const std::string& what, long long done, long long total, const char* unit) {
  const auto now = std::chrono::steady_clock::now();
  if (!on_terminal_ || now < next_) return;
  next_ = now + kInterval;
  shown_ = true;
  note_terminal_line(true);
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
  if (now < next_ && fraction < 1) return;
  next_ = now + kInterval;
  shown_ = true;
  note_terminal_line(true);
  const double seconds = std::chrono::duration<double>(now - bar_start_).count();
  const auto filled = static_cast<int>(fraction * kWidth);
  std::string rate = "";
  if (seconds > 0 && fraction > 0)
    rate = fmt::format(" {} {}/s, {} left", number_text(fraction * total / seconds), unit,
                       duration_text(seconds * (1 - fraction) / fraction));
  std::cerr << fmt::format("{}{} [{:#>{}}{:>{}}] {:3.0f} %{}", kEraseLine, what, "", filled, "",
                           kWidth - filled, 100 * fraction, rate)
            << std::flush;
}

}  // namespace korvex::cli

#include "progress.hpp"

#include <fmt/format.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <iostream>
#include <string_view>
#include <utility>

#include "interrupt.hpp"

namespace korvex::cli {
namespace {

constexpr const char* kEraseLine = "\r\033[K";
constexpr std::chrono::milliseconds kInterval(100);
constexpr std::size_t kWideBar = 24;
constexpr std::size_t kNarrowBar = 10;

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

// Columns that a line may fill without running on into the next one, which \r would not take back.
std::size_t columns_of_terminal() {
  constexpr std::size_t kUsual = 80;
  winsize size{};
  const bool told = ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 1;
  return (told ? size.ws_col : kUsual) - 1;
}

// The end of `text`, marked as such, where all of it does not fit: of a path and a chain the end
// tells most.
std::string fitted(std::string_view text, std::size_t columns) {
  constexpr std::string_view kMark = "...";
  if (text.size() <= columns) return std::string(text);
  if (columns <= kMark.size()) return {};
  text.remove_prefix(text.size() - (columns - kMark.size()));
  const auto continues = [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U; };
  while (!text.empty() && continues(text.front())) text.remove_prefix(1);
  return std::string(kMark).append(text);
}

// `what` and `state` in one line of the terminal.
std::string line_of(const std::string& what, const std::string& state) {
  const std::size_t columns = columns_of_terminal();
  const std::string shown = state.substr(0, columns);
  return kEraseLine + fitted(what, columns - shown.size()) + shown;
}

std::string bar_text(double fraction, std::size_t width) {
  const auto filled = static_cast<std::size_t>(fraction * static_cast<double>(width));
  return " [" + std::string(filled, '#') + std::string(width - filled, ' ') + "]";
}

}  // namespace

Progress::Progress()
    : on_terminal_(isatty(STDERR_FILENO) == 1), next_(std::chrono::steady_clock::now()) {}

Progress::~Progress() { erase(); }

void Progress::erase() {
  if (!std::exchange(shown_, false)) return;
  std::cerr << kEraseLine << std::flush;
  note_terminal_line(false);
}

bool Progress::due(bool at_any_time) {
  const auto now = std::chrono::steady_clock::now();
  if (!on_terminal_ || (now < next_ && !at_any_time)) return false;
  next_ = now + kInterval;
  shown_ = true;
  note_terminal_line(true);
  return true;
}

double Progress::seconds() const {
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - bar_start_).count();
}

void Progress::show(const std::string& what, long long done, long long total, const char* unit) {
  if (!due()) return;
  std::cerr << line_of(what, fmt::format(": {} of {} {} ({} %)", done, total, unit,
                                         total > 0 ? 100 * done / total : 100))
            << std::flush;
}

void Progress::show_bar(const std::string& what, double fraction, double total, const char* unit) {
  if (!on_terminal_) return;
  if (bar_of_ != what) {
    bar_of_ = what;
    bar_start_ = std::chrono::steady_clock::now();
  }
  if (due(fraction >= 1)) show_line(what, fraction, fraction * total, unit);
}

void Progress::show_job(const std::string& what, double fraction, std::size_t done,
                        const char* unit) {
  if (!std::exchange(job_begun_, true)) bar_start_ = std::chrono::steady_clock::now();
  if (due()) show_line(what, fraction, static_cast<double>(done), unit);
}

void Progress::show_count(const std::string& what, std::size_t done, const char* unit) {
  if (!std::exchange(job_begun_, true)) bar_start_ = std::chrono::steady_clock::now();
  if (!due()) return;
  std::string state = fmt::format(": {} {}", done, unit);
  if (const double time = seconds(); time > 0)
    state += fmt::format(", {}/s", number_text(static_cast<double>(done) / time));
  std::cerr << line_of(what, state) << std::flush;
}

void Progress::show_line(const std::string& what, double fraction, double done, const char* unit) {
  const double time = seconds();
  std::string state = fmt::format(" {:3.0f} %", 100 * fraction);
  if (time > 0 && fraction > 0)
    state += fmt::format(" {} {}/s, {} left", number_text(done / time), unit,
                         duration_text(time * (1 - fraction) / fraction));
  const bool wide = what.size() + kWideBar + state.size() + 3 <= columns_of_terminal();
  std::cerr << line_of(what, bar_text(fraction, wide ? kWideBar : kNarrowBar) + state)
            << std::flush;
}

}  // namespace korvex::cli

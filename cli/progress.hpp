// One line on the terminal that tells how far the work is.
#pragma once

#include <chrono>
#include <string>

namespace korvex::cli {

// Silent when standard error is not a terminal. The line never runs on into a second one: of a long
// `what` the end is shown. Whoever writes to the terminal destroys the progress first.
class Progress {
 public:
  Progress();

  // Erases the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows "`what`: `done` of `total` `unit` (percentage)", at most ten times a second.
  void show(const std::string& what, long long done, long long total, const char* unit);

  // Shows a bar for the fraction done, the rate in `unit` a second (of `total` in all) and the time
  // left, at most ten times a second and at the end. Time counts from the first call for `what`.
  void show_bar(const std::string& what, double fraction, double total, const char* unit);

 private:
  bool on_terminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point next_;
  std::string bar_of_;
  std::chrono::steady_clock::time_point bar_start_;
};

}  // namespace korvex::cli

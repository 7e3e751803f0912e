// One line on the terminal that tells how far the work is.
#pragma once

#include <chrono>
#include <string>

namespace korvex::cli {

// Silent when standard error is not a terminal.
class Progress {
 public:
  Progress();

  // Erases the line.
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Shows "`what`: `done` of `total` `unit` (percentage)", at most ten times a second.
  void show(const std::string& what, long long done, long long total, const char* unit);

 private:
  bool on_terminal_;
  bool shown_ = false;
  std::chrono::steady_clock::time_point next_;
};

}  // namespace korvex::cli

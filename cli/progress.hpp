// One line on the terminal that tells how far the work is.
#pragma once

#include <chrono>
#include <cstddef>
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

  // Shows "`what`: `done` `unit`" and the rate, where it is not known how many there are in all.
  void show_count(const std::string& what, std::size_t done, const char* unit);

  // Erases the line, so that something else can be written there.
  void erase();

  // The same for a job of many chains: `what` changes as it goes, and so may what is left of it.
  void show_job(const std::string& what, double fraction, std::size_t done, const char* unit);

 private:
  // Whether the next line is due; it counts as shown then.
  bool due(bool at_any_time = false);
  double seconds() const;
  void show_line(const std::string& what, double fraction, double done, const char* unit);

  bool on_terminal_;
  bool shown_ = false;  // and not erased
  bool job_begun_ = false;
  std::chrono::steady_clock::time_point next_;
  std::string bar_of_;
  std::chrono::steady_clock::time_point bar_start_ = {};
};

}  // namespace korvex::cli

// What the libraries report on the log stream while they compute, line by line.
#pragma once

#include <functional>
#include <streambuf>
#include <string>

namespace korvex::cli::classic {

// As long as it lives, every line written to `std::clog` goes to `listener` (without its end) and
// nowhere else.
class LibraryLog : private std::streambuf {
 public:
  explicit LibraryLog(std::function<void(const std::string& line)> listener);
  ~LibraryLog() override;
  LibraryLog(const LibraryLog&) = delete;
  LibraryLog& operator=(const LibraryLog&) = delete;

 private:
  int_type overflow(int_type character) override;

  std::function<void(const std::string&)> listener_;
  std::streambuf* previous_;
  std::string line_;
};

// A listener that shows the lines on standard error when `verbose`, and otherwise drops them.
std::function<void(const std::string&)> shown_if(bool verbose);

}  // namespace korvex::cli::classic

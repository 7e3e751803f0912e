#include "classic/library_log.hpp"

#include <iostream>
#include <utility>

namespace korvex::cli::classic {

LibraryLog::LibraryLog(std::function<void(const std::string& line)> listener)
    : listener_(std::move(listener)), previous_(std::clog.rdbuf(this)) {}

LibraryLog::~LibraryLog() { std::clog.rdbuf(previous_); }

LibraryLog::int_type LibraryLog::overflow(int_type character) {
  if (traits_type::eq_int_type(character, traits_type::eof())) return 0;
  if (traits_type::to_char_type(character) != '\n') {
    line_ += traits_type::to_char_type(character);
    return character;
  }
  listener_(line_);
  line_.clear();
  return character;
}

std::function<void(const std::string&)> shown_if(bool verbose) {
  if (!verbose) return [](const std::string&) {};
  return [](const std::string& line) { std::cerr << line + "\n"; };
}

}  // namespace korvex::cli::classic

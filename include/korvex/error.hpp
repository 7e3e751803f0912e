// korvex::Error: what the engine throws for something its caller can mend.
#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "korvex/export.hpp"

namespace korvex {

enum class ErrorCode {
  kInvalidArgument,  // an option or a value outside its stated range
  kBadInput,         // a file or a chain that cannot be understood
  kCannotRead,       // a file that cannot be opened or read
  kCancelled,        // the caller asked to stop
};

// The message says what is wrong, where, and what to do about it; `file` and `line` repeat the
// place for programs that show it themselves.
class KORVEX_API Error : public std::runtime_error {
 public:
  Error(ErrorCode code, const std::string& message, std::string file = {}, std::size_t line = 0)
      : std::runtime_error(message), code_(code), file_(std::move(file)), line_(line) {}

  ErrorCode code() const noexcept { return code_; }
  // Path of the input the error is about; empty when it is about none.
  const std::string& file() const noexcept { return file_; }
  // Line in that file, 1-based; 0 when it is about no line.
  std::size_t line() const noexcept { return line_; }

 private:
  ErrorCode code_;
  std::string file_;
  std::size_t line_;
};

}  // namespace korvex

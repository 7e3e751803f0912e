// What a standard stream is sent while this lives.
#pragma once

#include <ostream>
#include <sstream>
#include <string>

namespace support {

class CapturedStream {
 public:
  explicit CapturedStream(std::ostream& stream)
      : stream_(stream), own_(stream.rdbuf(text_.rdbuf())) {}
  ~CapturedStream() { stream_.rdbuf(own_); }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  std::string text() const { return text_.str(); }

 private:
  std::ostringstream text_;
  std::ostream& stream_;
  std::streambuf* own_;
};

}  // namespace support

// What calls write to the standard streams, byte for byte, and how often they flush them.
#pragma once

#include <iostream>
#include <sstream>
#include <streambuf>
#include <string>

namespace support {

// Keeps what is written and counts flushes.
class CountingBuffer : public std::stringbuf {
 public:
  CountingBuffer() : std::stringbuf(std::ios::out) {}
  int flushes() const { return flushes_; }

 protected:
  int sync() override {
    ++flushes_;
    return std::stringbuf::sync();
  }

 private:
  int flushes_ = 0;
};

// Diverts one stream for as long as it lives.
class CapturedStream {
 public:
  explicit CapturedStream(std::ios& stream) : stream_(stream), before_(stream.rdbuf(&buffer_)) {}
  ~CapturedStream() { stream_.rdbuf(before_); }
  CapturedStream(const CapturedStream&) = delete;
  CapturedStream& operator=(const CapturedStream&) = delete;

  std::string text() const { return buffer_.str(); }
  int flushes() const { return buffer_.flushes(); }

 private:
  CountingBuffer buffer_;
  std::ios& stream_;
  std::streambuf* before_;
};

// Diverts the three standard output streams at once.
struct CapturedStreams {
  CapturedStream out{std::cout};
  CapturedStream err{std::cerr};
  CapturedStream log{std::clog};
};

}  // namespace support

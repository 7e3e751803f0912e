// A whole input, from its bytes on: short ones are read at once, long ones piece by piece.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "read/byte_stream.hpp"
#include "read/bytes.hpp"
#include "read/parsers.hpp"
#include "read/text_feed.hpp"

namespace korvex::read {

class Input {
 public:
  using Opener = std::function<std::unique_ptr<ByteSource>()>;

  // Reads the beginning of what `open` gives, to which `name` stands in messages. Throws Error.
  Input(const Opener& open, std::string name);
  Input(const Input&) = delete;
  Input& operator=(const Input&) = delete;

  const std::string& name() const { return name_; }
  // Throws Error where it is not known.
  Format format() const { return format_; }

  // All of it, unpacked; text without byte order mark and with lines ended by LF, and without the
  // zeros that tapes and fixed blocks are filled up with. Throws Error where it is longer than
  // kMaxBytes.
  std::string_view whole();
  // True where the input is long, or has no end that is known, so that it should not be read at
  // once.
  bool is_long() const { return source_ != nullptr; }
  // What is_long(), unpacked; once, and not after whole().
  std::unique_ptr<ByteSource> take();
  // The same again from the beginning; null where it can be read only once.
  std::unique_ptr<ByteSource> again() const;

 private:
  void detect();
  void settle(std::string bytes);

  Opener open_;
  std::string name_;
  std::string stored_;                  // the beginning, or all
  std::unique_ptr<ByteSource> source_;  // of the rest; null where that was all
  std::string whole_;
  bool is_whole_ = false;
  bool is_packed_ = false;
  Format format_ = Format::kPlain;
};

}  // namespace korvex::read

// Text from front to back, as parsers want it, of which a window is in memory.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "read/bytes.hpp"

namespace korvex::read {

// Ends every line by LF: CR alone ends one as well, and any number of CR before LF belongs to it.
void settle_line_ends(std::string& text);

// Lines end in LF whatever they end in; there is no byte order mark, and zeros at the end are left
// out.
class TextFeed {
 public:
  // `name` stands for the source in messages.
  TextFeed(std::unique_ptr<ByteSource> source, const std::string& name)
      : source_(std::move(source)), name_(name) {}

  // `unread`, which is the end of what this gave last, and more text behind it; as much as before
  // at the end alone. What was given before is not valid any more. Throws Error where the bytes are
  // no text, or where `unread` is longer than a line of any format.
  std::string_view more(std::string_view unread);

 private:
  bool append_block();
  void check_is_text(std::size_t from);

  std::unique_ptr<ByteSource> source_;
  std::string name_;
  std::string window_;
  std::string held_;       // CR at the end of a block, which belong to what follows
  std::size_t lines_ = 0;  // line ends that have left the window
  bool started_ = false;
  bool at_end_ = false;
};

}  // namespace korvex::read

#include "read/text_feed.hpp"

#include <algorithm>

#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {

void settle_line_ends(std::string& text) {
  if (text.find('\r') == std::string::npos) return;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      text[kept++] = text[i];
      continue;
    }
    const std::size_t next = std::min(text.find_first_not_of('\r', i), text.size());
    if (next < text.size() && text[next] == '\n')
      i = next - 1;
    else
      text[kept++] = '\n';
  }
  text.resize(kept);
}

std::string_view TextFeed::more(std::string_view unread) {
  constexpr std::size_t kLongest = std::size_t{16} << 20;
  if (unread.size() > kLongest)
    fail_at(name_, lines_ + 1, "is longer than any line of a text may be; it may be damaged");
  const std::size_t read = window_.size() - unread.size();
  const auto end = window_.begin() + static_cast<std::ptrdiff_t>(read);
  lines_ += static_cast<std::size_t>(std::count(window_.begin(), end, '\n'));
  window_.erase(0, read);
  const std::size_t had = window_.size();
  while (window_.size() == had && append_block()) continue;
  return window_;
}

// False where nothing is left.
bool TextFeed::append_block() {
  constexpr std::size_t kAtOnce = std::size_t{1} << 18;
  if (at_end_) return false;
  std::string block = std::move(held_);
  held_.clear();
  at_end_ = !read_more(*source_, block, block.size() + kAtOnce);
  if (!started_ && block.starts_with("\xef\xbb\xbf")) block.erase(0, 3);
  started_ = true;
  if (!at_end_) {
    const std::size_t kept = block.find_last_not_of('\r') + 1;
    held_ = block.substr(kept);
    block.resize(kept);
  }
  settle_line_ends(block);
  const std::size_t from = window_.size();
  window_ += block;
  check_is_text(from);
  return true;
}

// Zeros are let pass at the end of the bytes alone.
void TextFeed::check_is_text(std::size_t from) {
  const std::size_t zero = window_.find('\0', from);
  if (zero == std::string::npos) return;
  const auto end = window_.begin() + static_cast<std::ptrdiff_t>(zero);
  const auto line = lines_ + static_cast<std::size_t>(std::count(window_.begin(), end, '\n')) + 1;
  std::string rest = window_.substr(zero) + held_;
  window_.resize(zero);
  held_.clear();
  for (;;) {
    if (rest.find_first_not_of('\0') != std::string::npos) fail_not_text(name_, line);
    if (at_end_) return;
    rest.clear();
    constexpr std::size_t kAtOnce = std::size_t{1} << 16;
    at_end_ = !read_more(*source_, rest, kAtOnce);
  }
}

}  // namespace korvex::read

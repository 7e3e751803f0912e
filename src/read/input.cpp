#include "read/input.hpp"

#include <algorithm>

#include "read/text.hpp"

namespace korvex::read {
namespace {

// Inputs of up to so many bytes, as they are stored, are read at once.
constexpr std::size_t kShort = std::size_t{1} << 20;
// So many bytes tell the format of longer ones.
constexpr std::size_t kTelling = std::size_t{1} << 18;

// Bytes that have been read, then the source that they came from.
class Resumed : public ByteSource {
 public:
  Resumed(std::string first, std::unique_ptr<ByteSource> rest)
      : first_(std::move(first)), rest_(std::move(rest)) {}

  std::size_t read(char* to, std::size_t room) override {
    const std::size_t some = std::min(room, first_.size() - place_);
    if (some == 0) return rest_->read(to, room);
    std::copy_n(first_.data() + place_, some, to);
    place_ += some;
    return some;
  }

 private:
  std::string first_;
  std::size_t place_ = 0;
  std::unique_ptr<ByteSource> rest_;
};

}  // namespace

Input::Input(const Opener& open, std::string name) : open_(open), name_(std::move(name)) {
  source_ = open_();
  if (!read_more(*source_, stored_, kShort + 1)) source_.reset();
  if (stored_.empty()) fail_at(name_, 0, "is empty; give a chain's coordinates");
  is_packed_ = is_gzip(stored_);
  detect();
}

void Input::detect() {
  if (!is_long()) {
    format_ = detect_format(whole(), name_);
    return;
  }
  std::string telling;
  if (is_packed_)
    read_more(*gunzipped(open_memory(stored_), name_), telling, kTelling);
  else
    telling = stored_.substr(0, kTelling);
  if (is_gzip(telling)) fail_at(name_, 0, "is compressed with gzip twice; unpack it once");
  if (telling.starts_with("\xef\xbb\xbf")) telling.erase(0, 3);
  if (!is_binary(telling)) settle_line_ends(telling);
  format_ = detect_format(telling, name_);
}

std::string_view Input::whole() {
  if (is_whole_) return whole_;
  if (is_long()) {
    read_all(*source_, name_, stored_);
    source_.reset();
  }
  settle(is_packed_ ? gunzip(stored_, name_) : std::move(stored_));
  stored_ = {};
  is_whole_ = true;
  return whole_;
}

void Input::settle(std::string bytes) {
  whole_ = std::move(bytes);
  if (is_gzip(whole_)) fail_at(name_, 0, "is compressed with gzip twice; unpack it once");
  if (whole_.starts_with("\xef\xbb\xbf")) whole_.erase(0, 3);
  if (is_binary(whole_)) return;
  whole_.resize(whole_.find_last_not_of('\0') + 1);
  settle_line_ends(whole_);
}

std::unique_ptr<ByteSource> Input::take() {
  std::unique_ptr<ByteSource> all =
      std::make_unique<Resumed>(std::move(stored_), std::move(source_));
  return is_packed_ ? gunzipped(std::move(all), name_) : std::move(all);
}

std::unique_ptr<ByteSource> Input::again() const {
  if (source_ == nullptr || source_->is_pipe()) return nullptr;
  std::unique_ptr<ByteSource> all = open_();
  return is_packed_ ? gunzipped(std::move(all), name_) : std::move(all);
}

}  // namespace korvex::read

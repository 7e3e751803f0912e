#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <vector>

#include "korvex/error.hpp"
#include "read/bytes.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

constexpr std::size_t kUnpackedBlock = std::size_t{1} << 18;

// One inflating z_stream, released with its owner.
class Inflater {
 public:
  explicit Inflater(const std::string& name) : name_(name) {
    constexpr int kGzipOnly = MAX_WBITS + 16;
    if (inflateInit2(&stream_, kGzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  void begin_member() { inflateReset(&stream_); }

  // Unpacks from the front of `bytes`, which is taken off, and gives the number of bytes written.
  // `is_last`: nothing follows `bytes`. `ended`: that was the last of the member.
  std::size_t unpack(std::string_view& bytes, bool is_last, char* to, std::size_t room,
                     bool& ended) {
    constexpr std::size_t kMost = std::numeric_limits<uInt>::max() / 2;
    const std::size_t some = std::min(bytes.size(), kMost);
    const std::size_t wanted = std::min(room, kMost);
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
    stream_.avail_in = static_cast<uInt>(some);
    stream_.next_out = reinterpret_cast<Bytef*>(to);
    stream_.avail_out = static_cast<uInt>(wanted);
    const int status = inflate(&stream_, Z_NO_FLUSH);
    bytes.remove_prefix(some - stream_.avail_in);
    ended = status == Z_STREAM_END;
    const bool starved = bytes.empty() && is_last && stream_.avail_out != 0;
    if (!ended && starved && (status == Z_OK || status == Z_BUF_ERROR))
      fail_at(name_, 0, "the gzip data is cut short; copy or download the file again");
    if (!ended && status != Z_OK && status != Z_BUF_ERROR)
      fail_at(name_, 0, "the gzip data is damaged; copy or download the file again");
    return wanted - stream_.avail_out;
  }

 private:
  z_stream stream_{};
  std::string name_;
};

// The members of a gzip file, one after another.
class GunzippedSource : public ByteSource {
 public:
  GunzippedSource(std::unique_ptr<ByteSource> packed, const std::string& name)
      : packed_(std::move(packed)), name_(name), inflater_(name), buffer_(kUnpackedBlock) {}

  std::size_t read(char* to, std::size_t room) override {
    while (!done_) {
      if (rest_.empty()) fill();
      bool ended = false;
      const std::size_t got = inflater_.unpack(rest_, at_end_, to, room, ended);
      if (ended) begin_next();
      if (got != 0) return got;
    }
    return 0;
  }

  bool is_pipe() const override { return packed_->is_pipe(); }

 private:
  // Puts more bytes behind those that are left.
  void fill() {
    std::copy(rest_.begin(), rest_.end(), buffer_.begin());
    const std::size_t had = rest_.size();
    const std::size_t got = packed_->read(buffer_.data() + had, buffer_.size() - had);
    at_end_ = got == 0;
    rest_ = {buffer_.data(), had + got};
  }

  void begin_next() {
    while (rest_.size() < 2 && !at_end_) fill();
    if (is_gzip(rest_)) return inflater_.begin_member();
    done_ = true;
    // Tapes and block devices pad with zeros; anything else was not written by gzip.
    for (;;) {
      if (rest_.find_first_not_of('\0') != std::string_view::npos)
        fail_at(name_, 0, "bytes follow the end of the gzip data; copy or download the file again");
      rest_ = {};
      if (at_end_) return;
      fill();
    }
  }

  std::unique_ptr<ByteSource> packed_;
  std::string name_;
  Inflater inflater_;
  std::vector<char> buffer_;
  std::string_view rest_;  // of the buffer
  bool at_end_ = false;
  bool done_ = false;
};

// The content of a file of one whole member, whose last bytes tell its length. Nothing where it is
// not so: the inflater above tells why.
std::optional<std::string> gunzip_at_once(std::string_view bytes, std::size_t limit) {
  constexpr std::size_t kMostSqueezed = 1032;  // no byte can stand for more
  constexpr std::size_t kEnd = 4;
  if (bytes.size() < kEnd) return {};
  std::size_t length = 0;
  for (std::size_t i = 0; i < kEnd; ++i) {
    const auto byte = static_cast<unsigned char>(bytes[bytes.size() - kEnd + i]);
    length |= std::size_t{byte} << (8 * i);
  }
  if (length > std::min(limit, kMostSqueezed * bytes.size())) return {};
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> inflater(
      libdeflate_alloc_decompressor(), &libdeflate_free_decompressor);
  if (!inflater) throw std::bad_alloc();
  std::string out(length, '\0');
  std::size_t read = 0;
  std::size_t written = 0;
  const libdeflate_result result = libdeflate_gzip_decompress_ex(
      inflater.get(), bytes.data(), bytes.size(), out.data(), out.size(), &read, &written);
  if (result != LIBDEFLATE_SUCCESS || read != bytes.size() || written != length) return {};
  return out;
}

}  // namespace

bool is_gzip(std::string_view bytes) { return bytes.substr(0, 2) == "\x1f\x8b"; }

std::unique_ptr<ByteSource> gunzipped(std::unique_ptr<ByteSource> packed, const std::string& name) {
  return std::make_unique<GunzippedSource>(std::move(packed), name);
}

std::string gunzip(std::string_view bytes, const std::string& name, std::size_t limit) {
  if (std::optional<std::string> whole = gunzip_at_once(bytes, limit)) return std::move(*whole);
  std::string out;
  read_all(*gunzipped(open_memory(bytes), name), name, out, limit);
  return out;
}

}  // namespace korvex::read

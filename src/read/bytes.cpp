#include "read/bytes.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <algorithm>
#include <cerrno>
#include <istream>
#include <limits>
#include <system_error>

#include "korvex/error.hpp"

namespace korvex::read {
namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

[[noreturn]] void fail(ErrorCode code, const std::string& name, const std::string& what) {
  throw Error(code, name + ": " + what, name);
}

[[noreturn]] void fail_errno(const std::string& name, const std::string& what) {
  fail(ErrorCode::kCannotRead, name, what + std::generic_category().message(errno));
}

[[noreturn]] void fail_too_long(const std::string& name, std::size_t limit) {
  fail(ErrorCode::kCannotRead, name,
       "holds more than " + std::to_string(limit >> 20) +
           " MiB; split it into smaller files (fewer models or frames)");
}

class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  ~Descriptor() {
    if (number_ >= 0) ::close(number_);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  int number() const { return number_; }

 private:
  int number_;
};

// Waits until the pipe has something to say: bytes, or its end. False when it has not within the
// patience.
bool wait_for_pipe(int descriptor, int patience_ms) {
  pollfd wanted{descriptor, POLLIN, 0};
  for (;;) {
    const int ready = ::poll(&wanted, 1, patience_ms);
    if (ready >= 0 || errno != EINTR) return ready != 0;
  }
}

void check_kind(const struct stat& status, const std::string& path) {
  if (S_ISDIR(status.st_mode)) {
    fail(ErrorCode::kCannotRead, path, "is a directory; name a file in it");
  }
  if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode)) {
    fail(ErrorCode::kCannotRead, path, "is a device or a socket; name a file");
  }
}

}  // namespace

std::string load_file(const std::string& path, std::size_t limit, int patience_ms) {
  // Without O_NONBLOCK, opening a pipe that nobody writes to would never return.
  const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
  if (file.number() < 0) fail_errno(path, "cannot be opened: ");
  struct stat status {};
  if (::fstat(file.number(), &status) != 0) fail_errno(path, "cannot be examined: ");
  check_kind(status, path);
  const bool pipe = S_ISFIFO(status.st_mode);
  if (pipe && !wait_for_pipe(file.number(), patience_ms)) {
    fail(ErrorCode::kCannotRead, path, "is a pipe that nothing writes to; start its writer first");
  }

  std::string bytes;
  // One byte more than the file holds lets the first read see its end.
  if (!pipe && status.st_size > 0) {
    bytes.reserve(std::min(static_cast<std::size_t>(status.st_size), limit) + 1);
  }
  for (;;) {
    const std::size_t had = bytes.size();
    bytes.resize(had + std::clamp(bytes.capacity() - had, std::size_t{1}, kBlock));
    const ssize_t got = ::read(file.number(), bytes.data() + had, bytes.size() - had);
    bytes.resize(had + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
    if (got == 0) return bytes;
    if (got < 0 && errno == EAGAIN) {
      wait_for_pipe(file.number(), -1);
    } else if (got < 0 && errno != EINTR) {
      fail_errno(path, "cannot be read: ");
    }
    if (bytes.size() > limit) fail_too_long(path, limit);
    if (bytes.size() == bytes.capacity()) bytes.reserve(std::max(2 * bytes.size(), kBlock));
  }
}

std::string load_stream(std::istream& stream, const std::string& name, std::size_t limit) {
  std::string bytes;
  while (stream) {
    const std::size_t had = bytes.size();
    bytes.resize(had + kBlock);
    stream.read(bytes.data() + had, static_cast<std::streamsize>(kBlock));
    bytes.resize(had + static_cast<std::size_t>(stream.gcount()));
    if (bytes.size() > limit) fail_too_long(name, limit);
  }
  if (stream.bad()) fail(ErrorCode::kCannotRead, name, "cannot be read");
  return bytes;
}

bool is_gzip(std::string_view bytes) { return bytes.substr(0, 2) == "\x1f\x8b"; }

namespace {

// One inflating z_stream over a buffer, released with its owner.
class Inflater {
 public:
  Inflater(std::string_view bytes, const std::string& name) : rest_(bytes), name_(name) {
    constexpr int kGzipOnly = MAX_WBITS + 16;
    if (inflateInit2(&stream_, kGzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  // Unpacks one member to the end of `out`.
  void member(std::string& out, std::size_t limit) {
    inflateReset(&stream_);
    int status = Z_OK;
    while (status != Z_STREAM_END) {
      feed();
      const std::size_t had = out.size();
      out.resize(had + kBlock);
      stream_.next_out = reinterpret_cast<Bytef*>(out.data() + had);
      stream_.avail_out = static_cast<uInt>(kBlock);
      status = inflate(&stream_, Z_NO_FLUSH);
      out.resize(out.size() - stream_.avail_out);
      if (out.size() > limit) fail_too_long(name_, limit);
      const bool starved = stream_.avail_in == 0 && rest_.empty() && stream_.avail_out != 0;
      if (status == Z_BUF_ERROR || (status == Z_OK && starved)) {
        fail(ErrorCode::kBadInput, name_,
             "the gzip data is cut short; copy or download the file again");
      }
      if (status != Z_OK && status != Z_STREAM_END) {
        fail(ErrorCode::kBadInput, name_,
             "the gzip data is damaged; copy or download the file again");
      }
    }
  }

  // What follows the members unpacked so far.
  std::string_view rest() const {
    const std::size_t pending = stream_.avail_in;
    return {rest_.data() - pending, rest_.size() + pending};
  }

 private:
  void feed() {
    if (stream_.avail_in != 0) return;
    const std::size_t some =
        std::min<std::size_t>(rest_.size(), std::numeric_limits<uInt>::max() / 2);
    stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(rest_.data()));
    stream_.avail_in = static_cast<uInt>(some);
    rest_.remove_prefix(some);
  }

  z_stream stream_{};
  std::string_view rest_;
  const std::string& name_;
};

}  // namespace

std::string gunzip(std::string_view bytes, const std::string& name, std::size_t limit) {
  std::string out;
  Inflater inflater(bytes, name);
  do {
    inflater.member(out, limit);
  } while (is_gzip(inflater.rest()));
  // Tapes and block devices pad with zeros; anything else was not written by gzip.
  if (inflater.rest().find_first_not_of('\0') != std::string_view::npos) {
    fail(ErrorCode::kBadInput, name,
         "bytes follow the end of the gzip data; copy or download the file again");
  }
  return out;
}

}  // namespace korvex::read

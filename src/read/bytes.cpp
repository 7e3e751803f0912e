#include "read/bytes.hpp"

#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <istream>
#include <memory>
#include <system_error>

#include "korvex/error.hpp"

namespace korvex::read {

void fail_too_long(const std::string& name, std::size_t limit) {
  throw Error(ErrorCode::kCannotRead,
              name + ": holds more than " + std::to_string(limit >> 20) +
                  " MiB; split it into smaller files (fewer models or frames)",
              name);
}

namespace {

constexpr std::size_t kBlock = std::size_t{1} << 18;

[[noreturn]] void fail(ErrorCode code, const std::string& name, const std::string& what) {
  throw Error(code, name + ": " + what, name);
}

[[noreturn]] void fail_errno(const std::string& name, const std::string& what) {
  fail(ErrorCode::kCannotRead, name, what + std::generic_category().message(errno));
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
  if (S_ISDIR(status.st_mode))
    fail(ErrorCode::kCannotRead, path, "is a directory; name a file in it");
  if (!S_ISREG(status.st_mode) && !S_ISFIFO(status.st_mode))
    fail(ErrorCode::kCannotRead, path, "is a device or a socket; name a file");
}

// What the descriptor gives, waiting where it is a pipe.
class FileSource : public ByteSource {
 public:
  FileSource(const std::string& path, int patience_ms)
      // Without O_NONBLOCK, opening a pipe that nobody writes to would never return.
      : file_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)), path_(path) {
    if (file_.number() < 0) fail_errno(path, "cannot be opened: ");
    struct stat status {};
    if (::fstat(file_.number(), &status) != 0) fail_errno(path, "cannot be examined: ");
    check_kind(status, path);
    is_pipe_ = S_ISFIFO(status.st_mode);
    // Reading a silent pipe tells: without a writer it ends at once, with one it is put off.
    is_silent_ = is_pipe_ && !wait_for_pipe(file_.number(), patience_ms);
    if (!is_pipe_ && status.st_size > 0) size_ = static_cast<std::size_t>(status.st_size);
  }

  std::size_t read(char* to, std::size_t room) override {
    for (;;) {
      const ssize_t got = ::read(file_.number(), to, room);
      if (got == 0 && is_silent_) {
        fail(ErrorCode::kCannotRead, path_,
             "is a pipe that nothing writes to; start its writer first");
      }
      if (got >= 0) return static_cast<std::size_t>(got);
      if (errno == EAGAIN) {
        is_silent_ = false;
        wait_for_pipe(file_.number(), -1);
      } else if (errno != EINTR) {
        fail_errno(path_, "cannot be read: ");
      }
    }
  }

  std::size_t size() const override { return size_; }
  bool is_pipe() const override { return is_pipe_; }

 private:
  Descriptor file_;
  std::string path_;
  std::size_t size_ = 0;
  bool is_pipe_ = false;
  bool is_silent_ = false;
};

class StreamSource : public ByteSource {
 public:
  StreamSource(std::istream& stream, std::string name) : stream_(stream), name_(std::move(name)) {}

  std::size_t read(char* to, std::size_t room) override {
    if (!stream_) return 0;
    stream_.read(to, static_cast<std::streamsize>(room));
    if (stream_.bad()) fail(ErrorCode::kCannotRead, name_, "cannot be read");
    return static_cast<std::size_t>(stream_.gcount());
  }

  bool is_pipe() const override { return true; }

 private:
  std::istream& stream_;
  std::string name_;
};

class MemorySource : public ByteSource {
 public:
  explicit MemorySource(std::string_view bytes) : rest_(bytes) {}

  std::size_t read(char* to, std::size_t room) override {
    const std::size_t some = std::min(room, rest_.size());
    std::copy_n(rest_.data(), some, to);
    rest_.remove_prefix(some);
    return some;
  }

  std::size_t size() const override { return rest_.size(); }

 private:
  std::string_view rest_;
};

}  // namespace

std::unique_ptr<ByteSource> open_file(const std::string& path, int patience_ms) {
  return std::make_unique<FileSource>(path, patience_ms);
}

std::unique_ptr<ByteSource> open_stream(std::istream& stream, const std::string& name) {
  return std::make_unique<StreamSource>(stream, name);
}

std::unique_ptr<ByteSource> open_memory(std::string_view bytes) {
  return std::make_unique<MemorySource>(bytes);
}

bool read_more(ByteSource& source, std::string& bytes, std::size_t most) {
  // One byte more than the source holds lets the first read see its end.
  if (bytes.empty() && source.size() > 0) bytes.reserve(std::min(source.size(), most) + 1);
  while (bytes.size() < most) {
    const std::size_t had = bytes.size();
    const std::size_t room = std::clamp(bytes.capacity() - had, std::size_t{1}, kBlock);
    bytes.resize(had + std::min(room, most - had));
    const std::size_t got = source.read(bytes.data() + had, bytes.size() - had);
    bytes.resize(had + got);
    if (got == 0) return false;
    if (bytes.size() == bytes.capacity()) bytes.reserve(std::max(2 * bytes.size(), kBlock));
  }
  return true;
}

void read_all(ByteSource& source, const std::string& name, std::string& bytes, std::size_t limit) {
  if (read_more(source, bytes, limit + 1)) fail_too_long(name, limit);
}

std::string load_file(const std::string& path, std::size_t limit, int patience_ms) {
  std::string bytes;
  read_all(*open_file(path, patience_ms), path, bytes, limit);
  return bytes;
}

std::string load_stream(std::istream& stream, const std::string& name, std::size_t limit) {
  std::string bytes;
  read_all(*open_stream(stream, name), name, bytes, limit);
  return bytes;
}

}  // namespace korvex::read

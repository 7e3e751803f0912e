// Bytes, whatever they are kept in: a file, a pipe, a stream, a buffer; plain or gzip-compressed.
// Nothing here knows a file format.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <string>
#include <string_view>

namespace korvex::read {

// The most bytes, after decompression, that are taken into memory: 4 GiB.
inline constexpr std::size_t kMaxBytes = std::size_t{4} << 30;

// How long a named pipe that nobody writes to is waited for.
inline constexpr int kPipePatienceMs = 5000;

// Bytes from front to back.
class ByteSource {
 public:
  ByteSource() = default;
  virtual ~ByteSource() = default;
  ByteSource(const ByteSource&) = delete;
  ByteSource& operator=(const ByteSource&) = delete;

  // Writes the next bytes, up to `room` of them, and tells how many; 0 at the end alone. Throws
  // Error.
  virtual std::size_t read(char* to, std::size_t room) = 0;
  // How many bytes there are, as far as that is known; else 0.
  virtual std::size_t size() const { return 0; }
  // True where the bytes can be read only once.
  virtual bool is_pipe() const { return false; }
};

// The file or pipe at `path`, as it is stored. Throws Error where it is missing, a directory or a
// device, or a pipe without a writer for `patience_ms` milliseconds.
std::unique_ptr<ByteSource> open_file(const std::string& path, int patience_ms = kPipePatienceMs);
// The rest of a stream, which must outlive the source.
std::unique_ptr<ByteSource> open_stream(std::istream& stream, const std::string& name);
// Bytes that outlive the source.
std::unique_ptr<ByteSource> open_memory(std::string_view bytes);
// The content of a gzip file (RFC 1952), all its members one after another. Reading throws Error
// where it is cut short or damaged.
std::unique_ptr<ByteSource> gunzipped(std::unique_ptr<ByteSource> packed, const std::string& name);

// Appends bytes of the source until there are `most`; false where its end comes first.
bool read_more(ByteSource& source, std::string& bytes, std::size_t most);
// Appends all bytes of the source. Throws Error where there are more than `limit` then.
void read_all(ByteSource& source, const std::string& name, std::string& bytes,
              std::size_t limit = kMaxBytes);

// Throws Error: `name` holds more than so many bytes.
[[noreturn]] void fail_too_long(const std::string& name, std::size_t limit);

// The content of the file or pipe at `path`, as it is stored. Throws Error as open_file does, or
// where it is longer than `limit`.
std::string load_file(const std::string& path, std::size_t limit = kMaxBytes,
                      int patience_ms = kPipePatienceMs);

// The rest of a stream. `name` stands for it in messages.
std::string load_stream(std::istream& stream, const std::string& name,
                        std::size_t limit = kMaxBytes);

// True when the bytes begin as a gzip file does.
bool is_gzip(std::string_view bytes);

// The content of a gzip file (RFC 1952), all its members one after another. Throws Error where it
// is cut short, damaged, or longer than `limit` when unpacked.
std::string gunzip(std::string_view bytes, const std::string& name, std::size_t limit = kMaxBytes);

}  // namespace korvex::read

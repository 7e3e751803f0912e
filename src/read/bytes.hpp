// Bytes, whatever they are kept in: a file, a pipe, a stream, a buffer; plain or gzip-compressed.
// Nothing here knows a file format.
#pragma once

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

namespace korvex::read {

// The most bytes, after decompression, that are taken into memory: 4 GiB.
inline constexpr std::size_t kMaxBytes = std::size_t{4} << 30;

// How long a named pipe that nobody writes to is waited for.
inline constexpr int kPipePatienceMs = 5000;

// The content of the file or pipe at `path`, as it is stored. Throws Error where it is missing, a
// directory or a device, cannot be read, is longer than `limit`, or is a pipe without a writer for
// `patience_ms` milliseconds.
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

#include "engine/report/zip_archive.hpp"

#include <zlib.h>

#include <limits>
#include <new>
#include <ostream>

#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::uint16_t kVersion = 20;
constexpr std::uint16_t kDeflated = 8;
constexpr std::uint16_t kMidnight = 0;
constexpr std::uint16_t kFirstOf1980 = (1 << 5) | 1;

void put(std::string& bytes, std::uint32_t value, int size) {
  for (int k = 0; k < size; ++k) bytes.push_back(static_cast<char>(value >> (8 * k) & 0xff));
}

std::uint32_t checked_size(std::uint64_t size) {
  if (size >= std::numeric_limits<std::uint32_t>::max())
    throw Error(ErrorCode::kInvalidArgument,
                "a NumPy archive of so many sub-chains would be larger than the 4 GiB that its "
                "format holds: choose a larger step, or TSV");
  return static_cast<std::uint32_t>(size);
}

std::string deflated(std::string_view content) {
  z_stream stream{};
  constexpr int kRawWindow = -15;
  constexpr int kMemoryLevel = 8;
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kRawWindow, kMemoryLevel,
                   Z_DEFAULT_STRATEGY) != Z_OK)
    throw std::bad_alloc();
  std::string packed(deflateBound(&stream, static_cast<uLong>(content.size())), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data()));
  stream.avail_in = static_cast<uInt>(content.size());
  stream.next_out = reinterpret_cast<Bytef*>(packed.data());
  stream.avail_out = static_cast<uInt>(packed.size());
  deflate(&stream, Z_FINISH);
  packed.resize(stream.total_out);
  deflateEnd(&stream);
  return packed;
}

}  // namespace

void ZipArchive::append(std::string_view bytes) {
  out_.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  written_ += bytes.size();
}

void ZipArchive::add(std::string_view name, std::string_view content) {
  const std::uint32_t size = checked_size(content.size());
  const std::string packed = deflated(content);
  const auto checksum = static_cast<std::uint32_t>(
      crc32_z(0, reinterpret_cast<const Bytef*>(content.data()), content.size()));
  members_.push_back(
      {std::string(name), checksum, checked_size(packed.size()), size, checked_size(written_)});
  std::string head;
  put(head, 0x04034b50, 4);
  put(head, kVersion, 2);
  put(head, 0, 2);
  put(head, kDeflated, 2);
  put(head, kMidnight, 2);
  put(head, kFirstOf1980, 2);
  put(head, checksum, 4);
  put(head, static_cast<std::uint32_t>(packed.size()), 4);
  put(head, size, 4);
  put(head, static_cast<std::uint32_t>(name.size()), 2);
  put(head, 0, 2);
  append(head);
  append(name);
  append(packed);
}

void ZipArchive::finish() {
  const std::uint32_t begin = checked_size(written_);
  std::string directory;
  for (const Member& member : members_) {
    put(directory, 0x02014b50, 4);
    put(directory, kVersion, 2);
    put(directory, kVersion, 2);
    put(directory, 0, 2);
    put(directory, kDeflated, 2);
    put(directory, kMidnight, 2);
    put(directory, kFirstOf1980, 2);
    put(directory, member.checksum, 4);
    put(directory, member.packed_size, 4);
    put(directory, member.size, 4);
    put(directory, static_cast<std::uint32_t>(member.name.size()), 2);
    for (const int size : {2, 2, 2, 2, 4}) put(directory, 0, size);
    put(directory, member.offset, 4);
    directory += member.name;
  }
  const auto count = static_cast<std::uint32_t>(members_.size());
  const auto length = static_cast<std::uint32_t>(directory.size());
  put(directory, 0x06054b50, 4);
  put(directory, 0, 2);
  put(directory, 0, 2);
  put(directory, count, 2);
  put(directory, count, 2);
  put(directory, length, 4);
  put(directory, begin, 4);
  put(directory, 0, 2);
  append(directory);
}

}  // namespace korvex

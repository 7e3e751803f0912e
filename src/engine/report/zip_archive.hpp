// Writing a zip archive of deflated members.
#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace korvex {

// Members are written as they are added, with the date 1980-01-01, so that the same members make
// the same bytes. Source of the format: PKWARE, APPNOTE.TXT, version 6.3.
class ZipArchive {
 public:
  // `out` must outlive the archive.
  explicit ZipArchive(std::ostream& out) : out_(out) {}

  // Throws Error(kInvalidArgument) for 4 GiB and more, which the format cannot hold.
  void add(std::string_view name, std::string_view content);
  // Writes the directory; to be called once, at the end.
  void finish();

 private:
  struct Member {
    std::string name;
    std::uint32_t checksum;
    std::uint32_t packed_size;
    std::uint32_t size;
    std::uint32_t offset;
  };

  void append(std::string_view bytes);

  std::ostream& out_;
  std::uint64_t written_ = 0;
  std::vector<Member> members_;
};

}  // namespace korvex

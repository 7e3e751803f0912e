// Archives (tar, zip, compressed or not), member by member.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

struct archive;

namespace korvex {

// Whether the end of a name is that of an archive.
bool is_archive_name(std::string_view name);

// One pass over an archive. Members that are not asked for are passed over; in a plain tar file
// without reading them.
class Archive {
 public:
  // Throws Error(kCannotRead).
  explicit Archive(const std::string& path);

  // Goes to the next file in it and tells its name; false behind the last. Throws Error (kBadInput)
  // where the archive is damaged; nothing more can be read from it then.
  bool next(std::string& name);
  // The content of that file. Throws Error (kBadInput).
  std::string content(std::size_t limit);
  // Bytes of the archive that were passed.
  std::size_t passed() const;

 private:
  struct Close {
    void operator()(archive* reader) const;
  };

  [[noreturn]] void fail(const std::string& what, const std::string& advice) const;

  std::string path_;
  std::string name_;  // of the member
  std::string link_;  // what the member links to
  std::unique_ptr<archive, Close> reader_;
};

}  // namespace korvex

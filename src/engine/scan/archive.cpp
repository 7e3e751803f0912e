#include "engine/scan/archive.hpp"

#include <archive.h>
#include <archive_entry.h>

#include <algorithm>
#include <array>
#include <new>

#include "korvex/error.hpp"

namespace korvex {
namespace {

constexpr std::array<std::string_view, 7> kArchiveEnds = {".tar",    ".tar.gz",  ".tgz", ".tar.bz2",
                                                          ".tar.xz", ".tar.zst", ".zip"};
constexpr std::size_t kArchiveBlock = std::size_t{1} << 18;
// Smaller than members are, so that passing over one skips most of it.
constexpr std::size_t kFileBlock = std::size_t{1} << 14;

// Names are bytes here; where an archive has them as text, in UTF-8.
std::string path_of(archive_entry* entry) {
  if (const char* text = archive_entry_pathname_utf8(entry)) return text;
  if (const char* bytes = archive_entry_pathname(entry)) return bytes;
  return "?";
}

std::string link_of(archive_entry* entry) {
  if (const char* target = archive_entry_hardlink(entry)) return target;
  if (const char* target = archive_entry_symlink(entry)) return target;
  return {};
}

}  // namespace

bool is_archive_name(std::string_view name) {
  return std::any_of(kArchiveEnds.begin(), kArchiveEnds.end(), [name](std::string_view end) {
    return name.size() > end.size() && name.ends_with(end);
  });
}

void Archive::Close::operator()(archive* reader) const { archive_read_free(reader); }

Archive::Archive(const std::string& path) : path_(path), reader_(archive_read_new()) {
  if (!reader_) throw std::bad_alloc();
  archive_read_support_filter_all(reader_.get());
  archive_read_support_format_tar(reader_.get());
  archive_read_support_format_zip(reader_.get());
  archive_read_support_format_empty(reader_.get());
  if (archive_read_open_filename(reader_.get(), path.c_str(), kFileBlock) == ARCHIVE_OK) return;
  const char* why = archive_error_string(reader_.get());
  throw Error(ErrorCode::kCannotRead,
              path + ": cannot be opened: " + (why != nullptr ? why : "unknown reason"), path);
}

bool Archive::next(std::string& name) {
  for (;;) {
    archive_entry* entry = nullptr;
    const int status = archive_read_next_header(reader_.get(), &entry);
    if (status == ARCHIVE_EOF) return false;
    if (status == ARCHIVE_RETRY) continue;
    if (status == ARCHIVE_FATAL || status == ARCHIVE_FAILED)
      fail(name_.empty() ? "is no archive that can be read" : "is damaged behind " + name_,
           "copy or download the archive again");
    link_ = link_of(entry);
    if (archive_entry_filetype(entry) != AE_IFREG && link_.empty()) continue;
    name = name_ = path_of(entry);
    return true;
  }
}

std::string Archive::content(std::size_t limit) {
  if (!link_.empty())
    throw Error(ErrorCode::kBadInput,
                path_ + '/' + name_ + ": is a link to " + link_ + "; put the file itself there",
                path_ + '/' + name_);
  std::string bytes;
  for (;;) {
    const std::size_t had = bytes.size();
    bytes.resize(had + kArchiveBlock);
    const la_ssize_t got = archive_read_data(reader_.get(), bytes.data() + had, kArchiveBlock);
    bytes.resize(had + static_cast<std::size_t>(std::max<la_ssize_t>(got, 0)));
    if (got == 0) return bytes;
    if (got == ARCHIVE_RETRY) continue;
    if (got < 0) fail("cannot read " + name_, "copy or download the archive again");
    if (bytes.size() > limit)
      fail(name_ + " holds more than " + std::to_string(limit >> 20) + " MiB",
           "take it out of the archive");
  }
}

std::size_t Archive::passed() const {
  return static_cast<std::size_t>(std::max<la_int64_t>(archive_filter_bytes(reader_.get(), -1), 0));
}

void Archive::fail(const std::string& what, const std::string& advice) const {
  const char* why = archive_error_string(reader_.get());
  throw Error(
      ErrorCode::kBadInput,
      path_ + ": " + what + (why != nullptr ? std::string(" (") + why + ")" : "") + "; " + advice,
      path_);
}

}  // namespace korvex

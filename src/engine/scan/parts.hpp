// The files of a scan's directory.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "korvex/scan.hpp"

namespace korvex {

// A number of a piece: of its lot, and its own in it.
struct PieceNumber {
  std::size_t lot = 0;
  std::size_t piece = 0;

  friend bool operator==(const PieceNumber&, const PieceNumber&) = default;
};

// A file that appears under its name whole, or not at all. Whoever writes the same one at the same
// time does not get in its way: the last one stays.
class WholeFile {
 public:
  // Throws Error(kCannotRead), as the others do.
  explicit WholeFile(std::string path);
  ~WholeFile();
  WholeFile(const WholeFile&) = delete;
  WholeFile& operator=(const WholeFile&) = delete;

  void write(std::string_view text);
  // Puts it in its place, and on the disk.
  void publish();

 private:
  void flush();
  [[noreturn]] void fail() const;

  std::string path_;
  std::string partial_;
  std::string buffer_;
  int descriptor_ = -1;
};

// Which files there are, and what is in them.
class ScanDirectory {
 public:
  ScanDirectory(std::string path, ReportFormat format);

  std::string manifest() const { return path_ + "/scan.json"; }
  std::string pieces() const { return path_ + "/pieces.json"; }
  std::string results() const;
  std::string part(const PieceNumber& number) const;

  // The counts of a part that is whole; nothing where there is none of that scan.
  std::optional<ScanCounts> counts_of(const PieceNumber& number, const std::string& digest) const;
  // What earlier writers of parts of a lot left unfinished: the part, and the file.
  std::multimap<std::string, std::string> remains(std::size_t lot) const;

  // Removes what those who were killed left of the files that are no parts.
  void clear_top() const;

 private:
  std::string part_folder(std::size_t lot) const;

  std::string path_;
  std::string ending_;
};

// The last line of a part: it is whole, of which scan it is, and what it counts.
std::string last_line(const ScanCounts& counts, const std::string& digest);

// The text of a file; nothing where there is none. Throws Error(kCannotRead).
std::optional<std::string> text_of_file(const std::string& path);

// Takes a file away, if it is there.
void remove_file(const std::string& path);

// The answers of a part, without its last line.
std::string_view lines_of_part(std::string_view text);

}  // namespace korvex

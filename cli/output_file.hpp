// A file that appears under its name whole, or not at all.
#pragma once

#include <fstream>
#include <string>

namespace korvex::cli {

// Throws Failure when `output` is the very file that `input`, a name or "-" for standard input, is
// read from.
void refuse_to_replace(const std::string& input, const std::string& output);

// Collects the output in a file without a name, of which nothing is left however the program ends,
// and gives it the destination's name at the end; where the system has no such files, in one called
// .korvex-XXXXXX beside the destination. What replaces a file has its permissions, but sets no user
// or group, and its owner where the system allows that. Symbolic links are followed. A destination
// that is no ordinary file (a device, a pipe; "-" for standard output) cannot be replaced: it is
// sent the whole text at the end instead.
class OutputFile {
 public:
  // Throws Failure when nothing can be written to `name`: its directory is missing or not writable,
  // it is a directory, or it is there and write-protected.
  explicit OutputFile(std::string name);

  // Removes what was collected, unless it was published.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::fstream& stream() { return stream_; }

  // Puts the output in its place. Throws Failure when some of it could not be written; the
  // destination is then as it was.
  void publish();

 private:
  void choose_destination();
  void open_collector();
  void open_named_collector();
  void remove_partial_file();
  void replace_destination();
  void keep_owner_and_permissions() const;
  bool name_as_destination();
  void send_to_destination();
  [[noreturn]] void fail() const;

  std::string name_;         // as the user gave it
  std::string destination_;  // with symbolic links followed
  std::string directory_;    // where the output is collected
  bool replaceable_ = true;  // an ordinary file, or none yet
  int descriptor_ = -1;      // of the file that collects the output
  std::string partial_;      // its path; empty while it has no name, and once it is published
  std::fstream stream_;
};

}  // namespace korvex::cli

// A file that appears under its name whole, or not at all.
#pragma once

#include <fstream>
#include <string>

namespace korvex::cli {

// Throws Failure when `output` is the very file that `input` is read from.
void refuse_to_replace(const std::string& input, const std::string& output);

// Collects the output in a partial file beside its destination and gives it the destination's name
// at the end. A destination that is no ordinary file (a device, a pipe; "-" for standard output)
// cannot be replaced: it is sent the whole text at the end instead.
class OutputFile {
 public:
  // Throws Failure when nothing can be written to `name`: its directory is missing or not writable,
  // it is a directory, or it is there and write-protected.
  explicit OutputFile(std::string name);

  // Removes the partial file, unless it was published.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  std::fstream& stream() { return stream_; }

  // Puts the output in its place. Throws Failure when some of it could not be written; the
  // destination is then as it was.
  void publish();

 private:
  void choose_destination();
  void open_partial_file();
  void remove_partial_file();
  void replace_destination();
  void send_to_destination();

  std::string name_;         // as the user gave it
  std::string destination_;  // with symbolic links followed
  bool replaceable_ = true;  // an ordinary file, or none yet
  std::string partial_;      // path of the partial file, empty once it is gone
  std::fstream stream_;
};

}  // namespace korvex::cli

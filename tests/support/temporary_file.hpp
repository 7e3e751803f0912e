// A file that lives as long as the test does.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace support {

class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& content = "") {
    const int file = mkstemp(path_.data());
    if (file == -1) throw std::runtime_error("no temporary file: " + path_);
    close(file);
    std::ofstream(path_, std::ios::binary) << content;
  }
  ~TemporaryFile() { std::remove(path_.c_str()); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  const std::string& path() const { return path_; }
  char* name() { return path_.data(); }  // as the exported functions take it

  std::string content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::string path_ = "/tmp/korvex_test_XXXXXX";
};

}  // namespace support

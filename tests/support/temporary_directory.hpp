// A directory of a test's own, removed with everything in it.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>

class TemporaryDirectory {
 public:
  TemporaryDirectory() {
    std::string name = (std::filesystem::temp_directory_path() / "korvex-test-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary directory");
    path_ = name;
  }
  ~TemporaryDirectory() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;

  std::string path(std::string_view name) const { return (path_ / name).string(); }

  // Writes a file of this content; its path.
  std::string write(std::string_view name, std::string_view content) const {
    std::ofstream file(path(name), std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    if (!file.flush()) throw std::runtime_error("cannot write " + path(name));
    return path(name);
  }

 private:
  std::filesystem::path path_;
};

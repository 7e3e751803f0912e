#include "output_file.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <system_error>
#include <utility>

#include "command.hpp"
#include "interrupt.hpp"

namespace korvex::cli {
namespace {

namespace fs = std::filesystem;

std::string reason() { return std::strerror(errno); }

// The permissions that a newly created file gets, or those of the file that is replaced.
mode_t permissions_for(const std::string& destination) {
  struct stat existing {};
  if (stat(destination.c_str(), &existing) == 0) return existing.st_mode & 07777U;
  const mode_t mask = umask(0);
  umask(mask);
  return 0666U & ~mask;
}

bool reached_the_disk(const std::string& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) return false;
  const bool done = fsync(descriptor) == 0;
  return close(descriptor) == 0 && done;
}

}  // namespace

void refuse_to_replace(const std::string& input, const std::string& output) {
  std::error_code missing;
  if (fs::is_regular_file(output, missing) && fs::equivalent(input, output, missing)) {
    throw Failure(Exit::kUsage,
                  "cannot write '" + output + "': the chain is read from it; name another file");
  }
}

OutputFile::OutputFile(std::string name) : name_(std::move(name)) {
  choose_destination();
  open_partial_file();
}

OutputFile::~OutputFile() {
  if (partial_.empty()) return;
  stream_.close();
  remove_partial_file();
}

void OutputFile::choose_destination() {
  if (name_.empty()) throw Failure(Exit::kUsage, "cannot write to a file without a name");
  if (name_ == "-") {
    replaceable_ = false;
    return;
  }
  std::error_code unresolved;
  destination_ = fs::canonical(name_, unresolved).string();
  if (unresolved) destination_ = name_;
  const fs::file_status status = fs::status(destination_, unresolved);
  if (fs::is_directory(status) || name_.back() == '/') {
    throw Failure(Exit::kUsage, "cannot write '" + name_ + "': it is a directory; name a file");
  }
  if (fs::exists(status) && access(destination_.c_str(), W_OK) != 0) {
    throw Failure(Exit::kUsage, "cannot write '" + name_ + "': " + reason());
  }
  replaceable_ = !fs::exists(status) || fs::is_regular_file(status);
}

// The partial file lies beside the destination, so that renaming it is one step.
void OutputFile::open_partial_file() {
  std::error_code no_directory;
  fs::path directory =
      replaceable_ ? fs::path(destination_).parent_path() : fs::temp_directory_path(no_directory);
  if (directory.empty()) directory = ".";
  partial_ = create_partial_file((directory / ".korvex-XXXXXX").string());
  if (partial_.empty()) {
    throw Failure(Exit::kUsage, "cannot write '" + name_ + "' in the directory '" +
                                    directory.string() + "': " + reason());
  }
  stream_.open(partial_, std::ios::in | std::ios::out | std::ios::trunc);
  if (!replaceable_)
    remove_partial_file();  // nothing needs its name: however this ends, it is gone
}

void OutputFile::remove_partial_file() {
  unlink(partial_.c_str());
  partial_.clear();
  release_partial_file();
}

void OutputFile::publish() {
  stream_.flush();
  if (!stream_) throw Failure(Exit::kSomeInputsFailed, "cannot write '" + name_ + "': " + reason());
  replaceable_ ? replace_destination() : send_to_destination();
}

void OutputFile::replace_destination() {
  stream_.close();
  if (chmod(partial_.c_str(), permissions_for(destination_)) != 0 || !reached_the_disk(partial_) ||
      rename(partial_.c_str(), destination_.c_str()) != 0) {
    throw Failure(Exit::kSomeInputsFailed, "cannot write '" + name_ + "': " + reason());
  }
  partial_.clear();
  release_partial_file();
}

void OutputFile::send_to_destination() {
  stream_.seekg(0);
  std::ofstream file;
  if (name_ != "-") file.open(destination_);
  std::ostream& destination = name_ == "-" ? std::cout : file;
  destination << stream_.rdbuf() << std::flush;
  if (!destination) {
    throw Failure(Exit::kSomeInputsFailed, "cannot write '" + name_ + "': " + reason());
  }
}

}  // namespace korvex::cli

#include "output_file.hpp"

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <string_view>
#include <system_error>
#include <utility>

#include "command.hpp"
#include "interrupt.hpp"

namespace korvex::cli {
namespace {

namespace fs = std::filesystem;

std::string reason() { return std::strerror(errno); }

// Where the name leads by symbolic links, also where nothing is there yet.
fs::path target_of(const std::string& name) {
  constexpr int kMostLinks = 40;
  fs::path path = name;
  std::error_code error;
  for (int link = 0; fs::is_symlink(fs::symlink_status(path, error)); ++link) {
    if (link == kMostLinks) errno = ELOOP;
    const fs::path next = link < kMostLinks ? fs::read_symlink(path, error) : fs::path();
    if (next.empty())
      throw Failure(Exit::kUsage,
                    "cannot write '" + name + "': its symbolic link cannot be followed");
    path = next.is_absolute() ? next : path.parent_path() / next;
  }
  return path;
}

mode_t permissions_of_new_files() {
  const mode_t mask = umask(0);
  umask(mask);
  return 0666U & ~mask;
}

// Nobody can tell it beforehand, and put a file of their own in its place.
std::string unforeseeable_name() {
  constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyz012345";
  std::array<std::uint8_t, 16> random{};
  if (getrandom(random.data(), random.size(), 0) != static_cast<ssize_t>(random.size())) return {};
  std::string name = ".korvex-";
  for (const std::uint8_t byte : random) name += kLetters[byte % kLetters.size()];
  return name;
}

std::string path_of(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

bool link_to(int descriptor, const std::string& path) {
  return linkat(AT_FDCWD, path_of(descriptor).c_str(), AT_FDCWD, path.c_str(), AT_SYMLINK_FOLLOW) ==
         0;
}

bool is_standard_input(const std::string& output) {
  struct stat read {};
  struct stat written {};
  return fstat(STDIN_FILENO, &read) == 0 && stat(output.c_str(), &written) == 0 &&
         read.st_dev == written.st_dev && read.st_ino == written.st_ino;
}

}  // namespace

void refuse_to_replace(const std::string& input, const std::string& output) {
  std::error_code missing;
  if (output == "-" || !fs::is_regular_file(output, missing)) return;
  if (input == "-" ? is_standard_input(output) : fs::equivalent(input, output, missing)) {
    throw Failure(Exit::kUsage,
                  "cannot write '" + output + "': the chain is read from it; name another file");
  }
}

OutputFile::OutputFile(std::string name) : name_(std::move(name)) {
  choose_destination();
  open_collector();
}

OutputFile::~OutputFile() {
  if (descriptor_ >= 0) close(descriptor_);
  if (!partial_.empty()) remove_partial_file();
}

void OutputFile::fail() const {
  throw Failure(Exit::kSomeInputsFailed, "cannot write '" + name_ + "': " + reason());
}

void OutputFile::choose_destination() {
  if (name_.empty()) throw Failure(Exit::kUsage, "cannot write to a file without a name");
  if (name_ == "-") {
    replaceable_ = false;
    return;
  }
  destination_ = target_of(name_).string();
  std::error_code error;
  const fs::file_status status = fs::status(destination_, error);
  if (fs::is_directory(status) || destination_.back() == '/')
    throw Failure(Exit::kUsage, "cannot write '" + name_ + "': it is a directory; name a file");
  if (fs::exists(status) && access(destination_.c_str(), W_OK) != 0)
    throw Failure(Exit::kUsage, "cannot write '" + name_ + "': " + reason());
  replaceable_ = !fs::exists(status) || fs::is_regular_file(status);
}

void OutputFile::open_collector() {
  std::error_code no_directory;
  // Beside the destination, so that it takes one step to put it in its place.
  directory_ =
      (replaceable_ ? fs::path(destination_).parent_path() : fs::temp_directory_path(no_directory))
          .string();
  if (directory_.empty()) directory_ = ".";
  constexpr auto kReadAndWrite = std::ios::in | std::ios::out | std::ios::trunc;
  descriptor_ = open(directory_.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600);
  if (descriptor_ >= 0) stream_.open(path_of(descriptor_), kReadAndWrite);
  if (stream_.is_open()) return;
  if (descriptor_ >= 0) close(descriptor_);
  open_named_collector();
  stream_.open(partial_, kReadAndWrite);
  if (!replaceable_) remove_partial_file();
  if (!stream_.is_open()) fail();
}

void OutputFile::open_named_collector() {
  std::string pattern = directory_ + "/.korvex-XXXXXX";
  descriptor_ = create_partial_file(pattern);
  if (descriptor_ < 0) {
    throw Failure(Exit::kUsage, "cannot write '" + name_ + "' in the directory '" + directory_ +
                                    "': " + reason());
  }
  partial_ = std::move(pattern);
}

void OutputFile::remove_partial_file() {
  unlink(partial_.c_str());
  partial_.clear();
  release_partial_file();
}

void OutputFile::publish() {
  stream_.flush();
  if (!stream_) fail();
  replaceable_ ? replace_destination() : send_to_destination();
}

void OutputFile::replace_destination() {
  stream_.close();
  if (!stream_) fail();
  keep_owner_and_permissions();
  if (fsync(descriptor_) != 0) fail();
  const LeavingPutOff guard;
  if (partial_.empty() ? !name_as_destination()
                       : rename(partial_.c_str(), destination_.c_str()) != 0)
    fail();
  partial_.clear();
  release_partial_file();
}

void OutputFile::keep_owner_and_permissions() const {
  struct stat replaced {};
  struct stat mine {};
  if (stat(destination_.c_str(), &replaced) != 0) {
    if (fchmod(descriptor_, permissions_of_new_files()) != 0) fail();
    return;
  }
  if (fstat(descriptor_, &mine) != 0) fail();
  const bool other = mine.st_uid != replaced.st_uid || mine.st_gid != replaced.st_gid;
  if (other && fchown(descriptor_, replaced.st_uid, replaced.st_gid) != 0)
    complain("warning: '" + name_ + "' changes its owner or group: " + reason());
  constexpr mode_t kReadWriteExecute = 0777;
  if (fchmod(descriptor_, replaced.st_mode & kReadWriteExecute) != 0) fail();
}

// A link never replaces a file, so that one that is there is replaced by a second step.
bool OutputFile::name_as_destination() {
  if (link_to(descriptor_, destination_)) return true;
  if (errno != EEXIST) return false;
  const std::string beside = directory_ + "/" + unforeseeable_name();
  if (!link_to(descriptor_, beside)) return false;
  if (rename(beside.c_str(), destination_.c_str()) == 0) return true;
  const int error = errno;
  unlink(beside.c_str());
  errno = error;
  return false;
}

void OutputFile::send_to_destination() {
  stream_.seekg(0);
  std::ofstream file;
  if (name_ != "-") file.open(destination_);
  std::ostream& destination = name_ == "-" ? std::cout : file;
  destination << stream_.rdbuf() << std::flush;
  if (!destination) fail();
}

}  // namespace korvex::cli

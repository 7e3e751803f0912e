#include "engine/scan/parts.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>
#include <system_error>
#include <utility>

#include "korvex/error.hpp"

namespace korvex {
namespace {

namespace fs = std::filesystem;

constexpr std::size_t kWriteBlock = std::size_t{1} << 20;
// Room for a part's last line.
constexpr std::size_t kLastLine = 1024;

std::string padded(std::size_t number, std::size_t digits) {
  std::string text = std::to_string(number);
  return text.size() < digits ? std::string(digits - text.size(), '0') + text : text;
}

void make_folder(const fs::path& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  if (error)
    throw Error(ErrorCode::kCannotRead, folder.string() + ": cannot be made: " + error.message(),
                folder.string());
}

// The end of a file, as much as a last line may have.
std::string end_of_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary | std::ios::ate);
  if (!file) return {};
  const auto size = static_cast<std::size_t>(file.tellg());
  std::string end(std::min(size, kLastLine), '\0');
  file.seekg(-static_cast<std::streamoff>(end.size()), std::ios::end);
  file.read(end.data(), static_cast<std::streamsize>(end.size()));
  return file ? end : std::string();
}

// Where the last line begins; npos where the text does not end in a line.
std::size_t begin_of_last_line(std::string_view text) {
  if (text.empty() || text.back() != '\n') return std::string_view::npos;
  const std::size_t before =
      text.size() < 2 ? std::string_view::npos : text.rfind('\n', text.size() - 2);
  return before == std::string_view::npos ? 0 : before + 1;
}

}  // namespace

WholeFile::WholeFile(std::string path) : path_(std::move(path)), partial_(path_ + ".XXXXXX") {
  const fs::path folder = fs::path(path_).parent_path();
  if (!folder.empty()) make_folder(folder);
  descriptor_ = ::mkostemp(partial_.data(), O_CLOEXEC);
  if (descriptor_ < 0) fail();
}

WholeFile::~WholeFile() {
  if (descriptor_ >= 0) ::close(descriptor_);
  if (!partial_.empty()) ::unlink(partial_.c_str());
}

void WholeFile::write(std::string_view text) {
  buffer_ += text;
  if (buffer_.size() >= kWriteBlock) flush();
}

void WholeFile::flush() {
  std::string_view rest = buffer_;
  while (!rest.empty()) {
    const ssize_t written = ::write(descriptor_, rest.data(), rest.size());
    if (written < 0 && errno != EINTR) fail();
    rest.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
  }
  buffer_.clear();
}

void WholeFile::publish() {
  flush();
  const mode_t mask = ::umask(0);
  ::umask(mask);
  if (::fchmod(descriptor_, 0666U & ~mask) != 0 || ::fsync(descriptor_) != 0) fail();
  if (::close(std::exchange(descriptor_, -1)) != 0) fail();
  if (::rename(partial_.c_str(), path_.c_str()) != 0) {
    // Another process took the same piece over, removed this file and finished.
    if (errno != ENOENT || ::access(path_.c_str(), F_OK) != 0) fail();
  }
  partial_.clear();
}

void WholeFile::fail() const {
  throw Error(ErrorCode::kCannotRead,
              path_ + ": cannot be written: " + std::generic_category().message(errno), path_);
}

ScanDirectory::ScanDirectory(std::string path, ReportFormat format)
    : path_(std::move(path)), ending_(format == ReportFormat::kJson ? ".jsonl" : ".tsv") {}

std::string ScanDirectory::results() const { return path_ + "/results" + ending_; }

std::string ScanDirectory::part_folder(std::size_t lot) const {
  return path_ + "/parts/" + padded(lot, 6);
}

std::string ScanDirectory::part(const PieceNumber& number) const {
  return part_folder(number.lot) + '/' + padded(number.piece, 7) + ending_;
}

std::optional<ScanCounts> ScanDirectory::counts_of(const PieceNumber& number,
                                                   const std::string& digest) const {
  const std::string end = end_of_file(part(number));
  const std::size_t begin = begin_of_last_line(end);
  if (begin == std::string::npos) return std::nullopt;
  const auto json = nlohmann::json::parse(end.begin() + static_cast<std::ptrdiff_t>(begin),
                                          end.end(), nullptr, false);
  if (!json.is_object() || json.value("scan", "") != digest) return std::nullopt;
  const auto count = [&](const char* name) { return json.value(name, std::size_t{0}); };
  return ScanCounts{count("members"), count("chains"), count("knotted"), count("slipknots"),
                    count("failed")};
}

std::multimap<std::string, std::string> ScanDirectory::remains(std::size_t lot) const {
  std::multimap<std::string, std::string> found;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(part_folder(lot), none)) {
    const std::string path = entry.path().string();
    const std::size_t end = path.rfind(ending_ + '.');
    if (end != std::string::npos) found.emplace(path.substr(0, end + ending_.size()), path);
  }
  return found;
}

void ScanDirectory::clear_top() const {
  constexpr std::string_view kRandom = ".XXXXXX";
  std::vector<std::string> remains;
  std::error_code none;
  for (const auto& entry : fs::directory_iterator(path_, none)) {
    const std::string path = entry.path().string();
    const std::string whole = path.substr(0, path.size() - std::min(path.size(), kRandom.size()));
    if (whole == manifest() || whole == pieces() || whole == results()) remains.push_back(path);
  }
  for (const std::string& path : remains) remove_file(path);
}

std::string last_line(const ScanCounts& counts, const std::string& digest) {
  const nlohmann::ordered_json json{{"scan", digest},
                                    {"members", counts.members},
                                    {"chains", counts.chains},
                                    {"knotted", counts.knotted},
                                    {"slipknots", counts.slipknots},
                                    {"failed", counts.failed}};
  return json.dump() + '\n';
}

std::optional<std::string> text_of_file(const std::string& path) {
  std::error_code error;
  if (!fs::exists(path, error)) return std::nullopt;
  std::ifstream file(path, std::ios::binary);
  std::ostringstream text;
  text << file.rdbuf();
  if (!file) throw Error(ErrorCode::kCannotRead, path + ": cannot be read", path);
  return std::move(text).str();
}

void remove_file(const std::string& path) {
  std::error_code ignored;
  fs::remove(path, ignored);
}

std::string_view lines_of_part(std::string_view text) {
  const std::size_t begin = begin_of_last_line(text);
  return begin == std::string_view::npos ? std::string_view() : text.substr(0, begin);
}

}  // namespace korvex

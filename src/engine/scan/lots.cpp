#include <algorithm>
#include <filesystem>
#include <fstream>
#include <system_error>
#include <utility>

#include "engine/scan/archive.hpp"
#include "korvex/error.hpp"
#include "korvex/sources.hpp"

namespace korvex {
namespace {

namespace fs = std::filesystem;

// What a file is taken to have, for the share of the work that is done.
constexpr std::size_t kGuessedBytes = 100'000;

class Lots {
 public:
  void add(const std::string& name, bool listed) {
    std::error_code unknown;
    if (name.size() > 1 && name.front() == '@') {
      if (listed)
        throw Error(ErrorCode::kInvalidArgument,
                    name + ": a list stands in a list; name its entries there", name);
      add_list(name.substr(1));
    } else if (name == "-") {
      if (std::exchange(standard_input_, true))
        throw Error(ErrorCode::kInvalidArgument,
                    "standard input is named more than once; name - once", name);
      add_file({.source = name, .name = {}});
    } else if (fs::is_directory(name, unknown)) {
      add_folder(name);
    } else {
      add_file_or_archive({.source = name, .name = {}}, name);
    }
  }

  std::vector<Lot> take() { return std::move(lots_); }

 private:
  void add_list(const std::string& path) {
    std::ifstream list(path);
    std::string name;
    while (std::getline(list, name)) {
      if (!name.empty() && name.back() == '\r') name.pop_back();
      if (!name.empty()) add(name, true);
    }
    if (!list.eof()) throw Error(ErrorCode::kCannotRead, path + ": the list cannot be read", path);
  }

  void add_folder(const std::string& folder) {
    std::vector<std::string> paths;
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, error);
    for (; !error && entry != fs::end(entry); entry.increment(error))
      if (std::error_code unknown; entry->is_regular_file(unknown))
        paths.push_back(entry->path().lexically_relative(folder).string());
    if (error)
      throw Error(ErrorCode::kCannotRead, folder + ": cannot be read: " + error.message(), folder);
    // Whoever reads it will say that it is a folder.
    if (paths.empty()) return add_file({.source = folder, .name = {}});
    std::sort(paths.begin(), paths.end());
    for (std::string& path : paths) {
      const std::string whole = (fs::path(folder) / path).string();
      add_file_or_archive({.source = folder, .name = std::move(path)}, whole);
    }
  }

  void add_file_or_archive(Member member, const std::string& path) {
    if (!is_archive_name(path)) return add_file(std::move(member));
    std::error_code missing;
    const auto size = fs::file_size(path, missing);
    lots_.push_back({path, {}, missing ? 0 : static_cast<std::size_t>(size)});
  }

  void add_file(Member member) {
    if (lots_.empty() || !lots_.back().archive.empty()) lots_.emplace_back();
    member.at = {lots_.size() - 1, lots_.back().files.size()};
    lots_.back().files.push_back(std::move(member));
    lots_.back().bytes += kGuessedBytes;
  }

  std::vector<Lot> lots_;
  bool standard_input_ = false;
};

}  // namespace

std::string Member::title() const {
  if (name.empty()) return source;
  return source + (source.ends_with('/') ? "" : "/") + name;
}

std::vector<Lot> lots_of(const std::vector<std::string>& names) {
  Lots lots;
  for (const std::string& name : names) lots.add(name, false);
  return lots.take();
}

}  // namespace korvex

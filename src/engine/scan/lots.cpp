#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string_view>
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

// Trajectories of so many bytes, and other files that are named themselves, are taken by frames.
constexpr std::uintmax_t kLongTrajectory = std::uintmax_t{1} << 20;
constexpr std::uintmax_t kLongFile = std::uintmax_t{64} << 20;

constexpr std::array<std::string_view, 6> kTrajectoryEnds = {".xtc",       ".trr", ".dcd",
                                                             ".lammpstrj", ".xyz", ".gro"};

bool is_trajectory_name(std::string_view name) {
  if (name.ends_with(".gz")) name.remove_suffix(3);
  return std::any_of(kTrajectoryEnds.begin(), kTrajectoryEnds.end(),
                     [name](std::string_view end) { return name.ends_with(end); });
}

// Of a regular file; else 0.
std::uintmax_t size_of_file(const std::string& path) {
  std::error_code missing;
  const std::uintmax_t size = fs::file_size(path, missing);
  return missing ? 0 : size;
}

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
      add_path({.source = name, .name = {}}, name, listed ? kNeverLong : kLongFile);
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
      add_path({.source = folder, .name = std::move(path)}, whole, kNeverLong);
    }
  }

  // Files from `long_file` bytes on are taken by frames whatever their names.
  void add_path(Member member, const std::string& path, std::uintmax_t long_file) {
    if (is_archive_name(path)) {
      lots_.push_back({path, {}, static_cast<std::size_t>(size_of_file(path)), false});
      return;
    }
    const bool is_trajectory = is_trajectory_name(path);
    if (is_trajectory || long_file != kNeverLong) {
      const std::uintmax_t size = size_of_file(path);
      if (size >= (is_trajectory ? kLongTrajectory : long_file)) {
        member.at = {lots_.size(), 0};
        lots_.push_back({{}, {std::move(member)}, static_cast<std::size_t>(size), true});
        return;
      }
    }
    add_file(std::move(member));
  }

  void add_file(Member member) {
    if (lots_.empty() || !lots_.back().archive.empty() || lots_.back().by_frames)
      lots_.emplace_back();
    member.at = {lots_.size() - 1, lots_.back().files.size()};
    lots_.back().files.push_back(std::move(member));
    lots_.back().bytes += kGuessedBytes;
  }

  static constexpr std::uintmax_t kNeverLong = std::numeric_limits<std::uintmax_t>::max();

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

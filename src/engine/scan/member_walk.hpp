// One pass over the members of all lots.
#pragma once

#include <exception>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "engine/scan/archive.hpp"
#include "korvex/sources.hpp"

namespace korvex {

struct MetMember {
  Member member;
  std::optional<std::string> bytes;  // of a member of an archive
  std::exception_ptr failure;        // why it cannot be read
};

class MemberWalk {
 public:
  // A member of an archive may have so many bytes.
  static constexpr std::size_t kMostBytes = std::size_t{1} << 30;

  explicit MemberWalk(const std::vector<Lot>& lots, std::size_t most_bytes = kMostBytes);

  // The next member that is wanted, or is a lot by frames; nothing behind the last.
  std::optional<MetMember> next(const std::function<bool(const Place&)>& wanted);

  // Whether next() is known to have nothing more to give.
  bool done() const;
  const MemberCounts& counts() const { return counts_; }
  // Of the bytes of all lots, those before the member that was met last.
  double fraction() const;

 private:
  // The next member, wanted or not; of an archive without its bytes.
  std::optional<MetMember> step();
  std::optional<MetMember> step_in_archive(const Lot& lot);
  MetMember failed_here(const Lot& lot);
  void next_lot();

  const std::vector<Lot>& lots_;
  const std::size_t most_bytes_;
  Place at_;
  std::optional<Archive> archive_;
  MemberCounts counts_;
  double all_bytes_ = 0;
  double bytes_before_ = 0;  // of the lots before this one
};

// What is read of a member: its bytes in an archive, standard input, or its file.
Source source_of(MetMember&& member);

}  // namespace korvex

// Many inputs at once: files, folders, archives and lists, their chains answered on all cores and
// handed over in order.
//
// What a name stands for:
// - a folder: every file below it, in the order of their paths' bytes, links to folders not
//   followed;
// - an archive, told by the end of its name (.tar, .tar.gz, .tgz, .tar.bz2, .tar.xz, .tar.zst,
//   .zip): every member, read in its place and never unpacked to disk; a folder may hold some;
// - "@LIST": every name in the file LIST, one a line, which may be a file, a folder or an archive;
// - "-": standard input, once;
// - any other name: a file. One of 1 MiB and more whose name is that of a trajectory (.xtc, .trr,
//   .dcd, .lammpstrj, .xyz, .gro, also with .gz), and any of 64 MiB and more that is named itself,
//   is taken frame by frame: see Lot::by_frames.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

#include "korvex/chain.hpp"
#include "korvex/export.hpp"
#include "korvex/read.hpp"
#include "korvex/run.hpp"

namespace korvex {

// Where a member stands: the number of its lot and its own in it, 0-based. In a lot by frames,
// where a frame stands: its number among those with chains that are selected.
struct Place {
  std::size_t lot = 0;
  std::size_t index = 0;

  friend bool operator==(const Place&, const Place&) = default;
};

// One input: a file, a member of an archive, or standard input.
struct KORVEX_API Member {
  std::string source;  // the file, the folder or the archive
  std::string name;    // path within the folder or the archive; empty for a file by itself
  Place at = {};

  // "SOURCE" or "SOURCE/NAME": what its chains and messages have as their source.
  std::string title() const;
  // What its random numbers depend on: its name, so that archives may be moved; else the source.
  const std::string& identity() const { return name.empty() ? source : name; }
};

// Inputs of one kind that follow one another: files, or the members of one archive.
struct Lot {
  std::string archive = {};        // its path; empty for files
  std::vector<Member> files = {};  // none of an archive, whose members are met on the way
  std::size_t bytes = 0;           // size of an archive or a trajectory; of other files a guess
  // A single file, a long trajectory, of which frames take the place of members: every one has a
  // place and may be wanted or not. All are read in any case, so that who wants some of them sees
  // the same damage, and stops at the same frame, as who wants others.
  bool by_frames = false;
};

// What stands behind `names`. Throws Error (kCannotRead) for a list or a folder that cannot be read
// and for a folder without files, (kInvalidArgument) for "-" more than once and for a list within a
// list. Any other name is taken for a file and not looked at. O(files).
KORVEX_API std::vector<Lot> lots_of(const std::vector<std::string>& names);

// As much of the work as is done.
struct Advance {
  std::size_t members = 0;  // whose last answer was handed over
  std::size_t chains = 0;   // that were answered, well or not
  double fraction = 0;      // of the bytes, or of the files, that were begun
  std::size_t known = 0;    // members in all; 0 where archives do not tell before their end
};

// Hands over one answer.
using Delivery = std::function<void()>;

// What becomes of the chains. All but `wanted` and `answer` are called by one thread at a time, in
// the order of members and of chains in them, and so are the deliveries.
struct ChainWork {
  // Which members are read, and which frames of a lot by frames are worked on, whose numbers rise;
  // none wants all. May be called by two threads at once, for places of different lots.
  std::function<bool(const Place&)> wanted = {};
  // Finds out about a chain, on any thread and many at once. `run` has the threads that are to
  // spare and the caller's seed and stop. What it throws goes to `failed`.
  std::function<Delivery(const Member&, Chain&&, const Run& run)> answer;
  // An answer was not to be had: of the chain `title`, or where that is empty, of the member, or
  // of the rest of it. Called within a catch block.
  std::function<void(const Member&, const std::string& title)> failed;
  // Nothing of this member is left. Of a lot by frames with the place of the last frame, and as
  // `failed`, only where that is wanted.
  std::function<void(const Member&)> ended = {};
  std::function<void(const Advance&)> advanced = {};
};

// Members by lot, or frames, at least one, as far as they were met: the numbers of all, when it
// returns.
using MemberCounts = std::vector<std::size_t>;

// Reads every wanted member of `lots` and works on its chains. The order of what is handed over
// does not depend on run.threads. Chains and answers that wait for their turn are limited in
// number, so that memory does not grow with the input: a few members as they are stored, unpacked
// and parsed for each thread. Members of more than a GiB in an archive fail.
//
// Throws Error(kCancelled) when stopped, and whatever a delivery, `failed` or `ended` throws.
KORVEX_API MemberCounts for_each_chain(const std::vector<Lot>& lots, const ReadOptions& read,
                                       const ChainWork& work, const Run& run = {});

}  // namespace korvex

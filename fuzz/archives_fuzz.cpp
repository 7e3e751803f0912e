// Members of archives: any bytes give members, as many as are counted, each with bytes that the
// readers take or refuse, or korvex::Error.
#include <sys/mman.h>
#include <unistd.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "engine/scan/member_walk.hpp"
#include "korvex/error.hpp"
#include "korvex/read.hpp"

namespace {

// What expands further is a bomb; that it is refused is all that is of interest.
constexpr std::size_t kMostOfMember = std::size_t{1} << 16;

void require(bool holds) {
  if (!holds) std::abort();
}

// A file without a place on the disk.
class MemoryFile {
 public:
  MemoryFile(const std::uint8_t* data, std::size_t size) : descriptor_(memfd_create("archive", 0)) {
    require(descriptor_ >= 0);
    require(write(descriptor_, data, size) == static_cast<ssize_t>(size));
  }
  ~MemoryFile() { close(descriptor_); }
  MemoryFile(const MemoryFile&) = delete;
  MemoryFile& operator=(const MemoryFile&) = delete;

  std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  int descriptor_;
};

void read(korvex::MetMember&& met) {
  require(met.failure != nullptr || met.bytes.has_value());
  require(!met.bytes || met.bytes->size() <= kMostOfMember);
  try {
    if (met.failure) std::rethrow_exception(met.failure);
    for (const korvex::Chain& chain : read_chains(source_of(std::move(met))))
      for (const korvex::Point& point : chain.points)
        require(std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z));
  } catch (const korvex::Error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const MemoryFile file(data, size);
  std::vector<korvex::Lot> lots(1);
  lots[0].archive = file.path();
  lots[0].bytes = size;
  korvex::MemberWalk walk(lots, kMostOfMember);
  std::size_t members = 0;
  while (auto met = walk.next({})) {
    require(met->member.at == korvex::Place{0, members++});
    require(walk.fraction() >= 0 && walk.fraction() <= 1);
    read(*std::move(met));
  }
  require(walk.done() && walk.counts() == korvex::MemberCounts{members});
  // The first is met as well where no other is wanted.
  korvex::MemberWalk first(lots, kMostOfMember);
  if (const auto met = first.next([](const korvex::Place& at) { return at.index == 0; }))
    require(members > 0 && met->member.at.index == 0);
  return 0;
}

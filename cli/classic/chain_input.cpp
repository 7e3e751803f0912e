#include "classic/chain_input.hpp"

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <new>

#include "command.hpp"
#include "korvex/error.hpp"
#include "korvex/read.hpp"

namespace korvex::cli::classic {
namespace {

[[noreturn]] void fail(const std::string& reason) {
  throw Failure(Exit::kSomeInputsFailed, reason);
}

// Standard input, whole, in memory that has a path. Kept until the program ends.
class StandardInput {
 public:
  StandardInput() : descriptor_(memfd_create("stdin", MFD_CLOEXEC)) {
    if (descriptor_ < 0) fail("-: " + std::string(std::strerror(errno)));
    std::array<char, 1 << 16> block{};
    ssize_t size = 0;
    while ((size = read_block(block)) > 0) append(block.data(), static_cast<std::size_t>(size));
    if (size < 0) fail("-: " + std::string(std::strerror(errno)));
  }
  ~StandardInput() { close(descriptor_); }
  StandardInput(const StandardInput&) = delete;
  StandardInput& operator=(const StandardInput&) = delete;

  [[nodiscard]] std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

 private:
  static ssize_t read_block(std::array<char, 1 << 16>& block) {
    ssize_t size = 0;
    do {
      size = read(STDIN_FILENO, block.data(), block.size());
    } while (size < 0 && errno == EINTR);
    return size;
  }

  void append(const char* bytes, std::size_t count) const {
    while (count > 0) {
      const ssize_t written = write(descriptor_, bytes, count);
      if (written < 0) fail("-: " + std::string(std::strerror(errno)));
      bytes += written;
      count -= static_cast<std::size_t>(written);
    }
  }

  int descriptor_;
};

std::string path_of(const std::string& name) {
  if (name != "-") return name;
  static const StandardInput input;
  return input.path();
}

// What is wrong with the file at `path`, called `name`: the system's reason, or the place where the
// engine's reader gets stuck.
std::string why_unreadable(const std::string& path, const std::string& name) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return name + ": " + std::strerror(errno);
  if (S_ISDIR(status.st_mode)) return name + ": it is a directory; name a file";
  if (access(path.c_str(), R_OK) != 0) return name + ": " + std::strerror(errno);
  if (S_ISREG(status.st_mode) && status.st_size == 0) return name + ": it is empty";
  if (S_ISFIFO(status.st_mode))
    return name + ": the pipe gives no chain; save its bytes to a file to learn why";
  try {
    std::ifstream file(path, std::ios::binary);
    // What the engine reads, ChainRead has given up for want of memory alone.
    if (!read_chains(Source::stream(file, name)).empty()) throw std::bad_alloc();
  } catch (const Error& error) {
    return error.what();
  }
  return name +
         ": no chain in it: expected PDB, mmCIF, GRO, XYZ, a LAMMPS text dump or lines 'x y z' or "
         "'id x y z'";
}

}  // namespace

std::vector<ChainAtom> read_chain(const std::string& name) {
  std::string path = path_of(name);
  bool error = false;
  std::vector<ChainAtom> chain = ChainRead(path.data(), error);
  if (error || chain.empty()) fail(why_unreadable(path, name));
  return chain;
}

}  // namespace korvex::cli::classic

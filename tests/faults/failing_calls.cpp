// A library to be loaded before others: it lets calls fail that otherwise hardly ever do.
//
//   KORVEX_FAIL_EACH=FILE      at every allocation of memory the program is forked, and there it
//                              fails; what became of each fork is a line of FILE: number of the
//                              allocation, status as of wait(), bytes of standard output, and the
//                              standard error with its line ends as '|'
//   KORVEX_FAIL_ALL_AFTER=1    and all allocations after it fail, too
//   KORVEX_FAIL_STRIDE=N       at every Nth allocation alone, after the first 1000
//   KORVEX_NO_UNNAMED_FILES=1  there are no files without a name
//
// A fork has one thread: the program has to run with one.
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>

extern "C" {
void* __libc_malloc(std::size_t);
void* __libc_calloc(std::size_t, std::size_t);
void* __libc_realloc(void*, std::size_t);
void* __libc_memalign(std::size_t, std::size_t);
}

namespace {

constexpr unsigned kLongestRunInSeconds = 30;
constexpr long long kAllOfTheFirst = 1000;

enum class State { kNotAsked, kParent, kFailsNow, kHasFailed };

State state = State::kNotAsked;
bool asked = false;
bool all_after = false;
long long stride = 1;
long long allocations = 0;
int record = -1;

void ask() {
  asked = true;
  const char* const path = std::getenv("KORVEX_FAIL_EACH");
  if (path == nullptr) return;
  record = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  all_after = std::getenv("KORVEX_FAIL_ALL_AFTER") != nullptr;
  if (const char* const text = std::getenv("KORVEX_FAIL_STRIDE")) stride = std::atoll(text);
  state = record < 0 ? State::kNotAsked : State::kParent;
}

void note(int status, int out, int err) {
  char text[600];
  const long long size = lseek(out, 0, SEEK_END);
  int length = std::snprintf(text, 80, "%lld %d %lld ", allocations, status, size);
  lseek(err, 0, SEEK_SET);
  const ssize_t shown = read(err, text + length, 500);
  for (ssize_t i = 0; i < shown; ++i, ++length)
    if (text[length] == '\n') text[length] = '|';
  text[length++] = '\n';
  if (write(record, text, static_cast<std::size_t>(length)) != length) std::abort();
}

// True in the fork.
bool forked() {
  const int out = memfd_create("out", MFD_CLOEXEC);
  const int err = memfd_create("err", MFD_CLOEXEC);
  const pid_t child = fork();
  if (child == 0) {
    alarm(kLongestRunInSeconds);
    dup2(out, STDOUT_FILENO);
    dup2(err, STDERR_FILENO);
    state = State::kHasFailed;
    return true;
  }
  int status = -1;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  note(status, out, err);
  close(out);
  close(err);
  return false;
}

bool has_to_fail() {
  if (!asked) ask();
  if (state == State::kNotAsked) return false;
  bool fails = state == State::kHasFailed && all_after;
  if (state == State::kParent) {
    ++allocations;
    if (allocations <= kAllOfTheFirst || allocations % stride == 0) fails = forked();
  }
  if (fails) errno = ENOMEM;
  return fails;
}

}  // namespace

#define KORVEX_IN_PLACE extern "C" __attribute__((visibility("default")))

KORVEX_IN_PLACE void* malloc(std::size_t size) {
  return has_to_fail() ? nullptr : __libc_malloc(size);
}

KORVEX_IN_PLACE void* calloc(std::size_t many, std::size_t size) {
  return has_to_fail() ? nullptr : __libc_calloc(many, size);
}

KORVEX_IN_PLACE void* realloc(void* old, std::size_t size) {
  return has_to_fail() ? nullptr : __libc_realloc(old, size);
}

KORVEX_IN_PLACE void* aligned_alloc(std::size_t alignment, std::size_t size) {
  return has_to_fail() ? nullptr : __libc_memalign(alignment, size);
}

KORVEX_IN_PLACE int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
  if (has_to_fail()) return ENOMEM;
  *result = __libc_memalign(alignment, size);
  return *result == nullptr ? ENOMEM : 0;
}

KORVEX_IN_PLACE int open(const char* path, int flags, ...) {
  using Open = int (*)(const char*, int, ...);
  static const Open next = reinterpret_cast<Open>(dlsym(RTLD_NEXT, "open"));
  static const bool no_unnamed_files = std::getenv("KORVEX_NO_UNNAMED_FILES") != nullptr;
  if ((flags & O_TMPFILE) == O_TMPFILE && no_unnamed_files) {
    errno = EOPNOTSUPP;
    return -1;
  }
  std::va_list rest;
  va_start(rest, flags);
  const mode_t mode = va_arg(rest, mode_t);
  va_end(rest);
  return next(path, flags, mode);
}

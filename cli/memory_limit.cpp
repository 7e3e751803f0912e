#include "memory_limit.hpp"

#include <sys/resource.h>

#include <algorithm>
#include <thread>

namespace korvex::cli {
namespace {

// A sanitizer needs memory of its own, by far more than the program.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool kIsSanitized = true;
#else
constexpr bool kIsSanitized = false;
#endif

// The system counts the whole of a thread's stack from its start on.
rlim_t stacks_of(unsigned threads) {
  constexpr rlim_t kUsual = 8 << 20;
  constexpr rlim_t kReadersAndMain = 3;
  const unsigned workers = threads != 0 ? threads : std::thread::hardware_concurrency();
  rlimit stack{};
  const bool known = getrlimit(RLIMIT_STACK, &stack) == 0 && stack.rlim_cur != RLIM_INFINITY;
  return (workers + kReadersAndMain) * (known ? stack.rlim_cur : kUsual);
}

}  // namespace

void limit_memory(std::size_t most, unsigned threads) {
  rlimit data{};
  if (kIsSanitized || getrlimit(RLIMIT_DATA, &data) != 0) return;
  const rlim_t wanted = std::max(most, kLeastMemory) + stacks_of(threads);
  data.rlim_cur = std::min(data.rlim_cur, wanted);
  setrlimit(RLIMIT_DATA, &data);
}

}  // namespace korvex::cli

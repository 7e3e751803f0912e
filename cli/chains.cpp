#include "chains.hpp"

#include <iostream>
#include <new>

#include "korvex/error.hpp"

namespace korvex::cli {

// Sub-chains of a ring would need ends that a ring has not.
void require_open(const Chain& chain) {
  if (!chain.closed) return;
  throw korvex::Error(
      ErrorCode::kInvalidArgument,
      "it is a ring (its last point repeats its first), and sub-chains are those of "
      "an open chain: korvex knot names the ring's knot; to have it cut open there, "
      "leave the last point out");
}

Source source_named(const std::string& name) {
  if (name != "-") return name;
  static bool is_read = false;
  if (is_read)
    throw korvex::Error(ErrorCode::kCannotRead, "standard input has been read already; name - once",
                        name);
  is_read = true;
  return Source::stream(std::cin, "standard input");
}

std::string title_of(const Chain& chain) {
  std::string title = chain.source;
  if (chain.model != 1) title += " model " + std::to_string(chain.model);
  if (!chain.name.empty()) title += " chain " + chain.name;
  return title;
}

Exit for_each_chain(const std::vector<std::string>& files, const ReadOptions& read,
                    const std::function<void(const Chain&)>& work) {
  Exit exit = Exit::kDone;
  for (const std::string& file : files) {
    std::string title = file;
    try {
      visit_chains(source_named(file), read, [&](Chain&& chain) {
        title = title_of(chain);
        for (const std::string& warning : chain.warnings) complain("warning: " + warning);
        work(chain);
        title = file;
        return true;
      });
    } catch (const korvex::Error& error) {
      complain(error.file().empty() ? title + ": " + error.what() : error.what());
      exit = Exit::kSomeInputsFailed;
    } catch (const std::bad_alloc&) {
      complain(title + ": there is not enough memory for this chain");
      exit = Exit::kSomeInputsFailed;
    }
  }
  return exit;
}

}  // namespace korvex::cli

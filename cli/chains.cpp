#include "chains.hpp"

#include <iostream>

#include "command.hpp"
#include "korvex/error.hpp"

namespace korvex::cli {

// Sub-chains of a ring would need ends that a ring has not.
void require_open(const Chain& chain) {
  if (!chain.closed) return;
  const bool repeated = chain.ends == ChainEnds::kRepeated;
  throw korvex::Error(
      ErrorCode::kInvalidArgument,
      std::string("it is a ring (") +
          (repeated ? "its last point repeats its first" : "a bond joins its ends") +
          "), and sub-chains are those of an open chain: korvex knot names the ring's knot; to "
          "have "
          "it cut open there, leave the " +
          (repeated ? "last point" : "bond") + " out");
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

Chain only_chain(const std::string& file, const ReadOptions& read) {
  std::vector<Chain> chains = read_chains(source_named(file), read);
  if (chains.size() == 1) return std::move(chains.front());
  std::string names;
  for (const Chain& chain : chains) {
    const std::string name = "model " + std::to_string(chain.model) +
                             (chain.name.empty() ? "" : " chain " + chain.name) +
                             (chain.part == 0 ? "" : " part #" + std::to_string(chain.part));
    if (names.size() > 200) {
      names += ", ...";
      break;
    }
    names += (names.empty() ? "" : ", ") + name;
  }
  throw Failure(Exit::kSomeInputsFailed,
                file + ": choose one of its chains by --model, --chain and --residues: " + names);
}

}  // namespace korvex::cli

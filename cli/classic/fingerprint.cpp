#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "classic/chain_input.hpp"
#include "classic/classic.hpp"
#include "classic/fingerprint_progress.hpp"
#include "classic/library_log.hpp"
#include "classic/shared_options.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "options.hpp"
#include "output_file.hpp"

namespace korvex::cli::classic {
namespace {

enum class Mode { kMatrix, kDict };

const Choices<Mode> kModes = {{"matrix", Mode::kMatrix}, {"dict", Mode::kDict}};

struct FingerprintArguments {
  std::string file;
  std::string output;
  ClosureCode closure = ClosureCode::kTwoPoints;
  int trials = 100;
  std::optional<unsigned> seed;
  int step = 10;
  int threshold = 30;
  Mode mode = Mode::kMatrix;
  unsigned long long memory = 768000000;
  bool verbose = false;
};

// One line about what was written, where it does not mix with the fingerprint.
void report(const FingerprintArguments& options, std::size_t atoms, unsigned seed) {
  std::ostream& out = options.output == "-" ? std::cerr : std::cout;
  out << "# " << options.file << ": " << atoms << " atoms, closure "
      << name_of(options.closure, kClosures) << ", " << options.trials
      << (options.trials == 1 ? " trial" : " trials") << ", step " << options.step << ", threshold "
      << options.threshold << " %, seed " << seed << "\n";
}

Exit run_fingerprint(const FingerprintArguments& options) {
  refuse_to_replace(options.file, options.output);
  OutputFile output(options.output);
  const unsigned seed = choose_seed(options.seed);
  const std::vector<ChainAtom> chain = read_chain(options.file);
  {
    FingerprintProgress progress(options.trials);
    const LibraryLog log(options.verbose ? shown_if(true)
                                         : [&](const std::string& line) { progress.follow(line); });
    write_fingerprint(options.file, chain, output.stream(),
                      {options.closure, options.trials, options.step, options.threshold,
                       options.mode == Mode::kMatrix, options.memory},
                      seed);
  }
  output.publish();
  report(options, chain.size(), seed);
  return Exit::kDone;
}

}  // namespace

Command fingerprint_command() {
  auto options = std::make_shared<FingerprintArguments>();
  Command command{
      "fingerprint", "Write the knots of a chain's sub-chains to a file", {}, [options] {
        return run_fingerprint(*options);
      }};
  command.add(classic_flag());
  command.add(file(options->file));
  command.add(output(options->output, "fingerprint"));
  command.add(choice("--closure", options->closure, kFingerprintClosures,
                     "How the ends of every sub-chain are joined;\n"
                     "see korvex knot --help"));
  command.add(trials_option(options->trials, "Closures of every sub-chain to vote over"));
  command.add(seed_option(options->seed));
  command.add(number("--step", options->step, "ATOMS",
                     "Spacing of the net of sub-chains that is examined\n"
                     "first",
                     within(1, std::numeric_limits<int>::max())));
  command.add(number("--threshold", options->threshold, "PERCENT",
                     "Sub-chains of the net whose knot has more than\n"
                     "this share of the votes have all sub-chains\n"
                     "around them examined too",
                     within(0, 100)));
  command.add(choice("--mode", options->mode, kModes,
                     "matrix, a line for every knotted sub-chain with\n"
                     "the names of its knots; dict, a dictionary of\n"
                     "Alexander polynomials"));
  command.add(memory(options->memory,
                     "Most memory for one batch of closed sub-chains, in\n"
                     "bytes or with K, M or G (powers of 1024); has no\n"
                     "effect on the answer",
                     std::to_string(options->memory)));
  command.add(verbose_flag(options->verbose));
  return command;
}

}  // namespace korvex::cli::classic

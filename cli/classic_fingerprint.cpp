#include <iostream>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "chain_input.hpp"
#include "classic.hpp"
#include "command.hpp"
#include "fingerprint_progress.hpp"
#include "library_log.hpp"
#include "options.hpp"
#include "output_file.hpp"

namespace korvex::cli {
namespace {

enum class Mode { kMatrix, kDict };

const Choices<Mode> kModes = {{"matrix", Mode::kMatrix}, {"dict", Mode::kDict}};

struct FingerprintOptions {
  std::string file;
  std::string output;
  Closure closure = Closure::kTwoPoints;
  int trials = 100;
  std::optional<unsigned> seed;
  int step = 10;
  int threshold = 30;
  Mode mode = Mode::kMatrix;
  unsigned long long memory = 768000000;
  bool verbose = false;
};

// One line about what was written, where it does not mix with the fingerprint.
void report(const FingerprintOptions& options, std::size_t atoms, unsigned seed) {
  std::ostream& out = options.output == "-" ? std::cerr : std::cout;
  out << "# " << options.file << ": " << atoms << " atoms, closure "
      << name_of(options.closure, kClosures) << ", " << options.trials
      << (options.trials == 1 ? " trial" : " trials") << ", step " << options.step << ", threshold "
      << options.threshold << " %, seed " << seed << "\n";
}

Exit run_fingerprint(const FingerprintOptions& options) {
  refuse_to_replace(options.file, options.output);
  OutputFile output(options.output);
  const unsigned seed = classic::choose_seed(options.seed);
  const std::vector<ChainAtom> chain = read_chain(options.file);
  {
    FingerprintProgress progress(options.trials);
    const LibraryLog log(options.verbose ? shown_if(true)
                                         : [&](const std::string& line) { progress.follow(line); });
    classic::write_fingerprint(options.file, chain, output.stream(),
                               {options.closure, options.trials, options.step, options.threshold,
                                options.mode == Mode::kMatrix, options.memory},
                               seed);
  }
  output.publish();
  report(options, chain.size(), seed);
  return Exit::kDone;
}

}  // namespace

void add_classic_fingerprint(CLI::App& app, Work& work) {
  auto options = std::make_shared<FingerprintOptions>();
  CLI::App* command =
      app.add_subcommand("fingerprint", "Write the knots of a chain's sub-chains to a file");
  add_classic_flag(*command);
  command->add_option("FILE", options->file, kFormatsRead)->required()->type_name("");
  command
      ->add_option("-o,--output", options->output,
                   "File for the fingerprint, replaced when it is\n"
                   "there; - is standard output")
      ->required()
      ->type_name("OUT");
  add_choice(*command, "--closure", options->closure, kFingerprintClosures,
             "How the ends of every sub-chain are joined;\n"
             "see korvex knot --help");
  add_trials(*command, options->trials, "Closures of every sub-chain to vote over");
  add_seed(*command, options->seed);
  command
      ->add_option("--step", options->step,
                   "Spacing of the net of sub-chains that is examined\n"
                   "first")
      ->check(within(1, std::numeric_limits<int>::max()))
      ->type_name("ATOMS")
      ->capture_default_str();
  command
      ->add_option("--threshold", options->threshold,
                   "Sub-chains of the net whose knot has more than\n"
                   "this share of the votes have all sub-chains\n"
                   "around them examined too")
      ->check(within(0, 100))
      ->type_name("PERCENT")
      ->capture_default_str();
  add_choice(*command, "--mode", options->mode, kModes,
             "matrix, a line for every knotted sub-chain with\n"
             "the names of its knots; dict, a dictionary of\n"
             "Alexander polynomials");
  add_memory(*command, options->memory,
             "Most memory for one batch of closed sub-chains, in\n"
             "bytes or with K, M or G (powers of 1024); has no\n"
             "effect on the answer",
             std::to_string(options->memory));
  add_verbose(*command, options->verbose);
  command->callback([&work, options] { work = [options] { return run_fingerprint(*options); }; });
}

}  // namespace korvex::cli

#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "classic/chain_input.hpp"
#include "classic/classic.hpp"
#include "classic/knot_report.hpp"
#include "classic/library_log.hpp"
#include "classic/shared_options.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli::classic {
namespace {

const Choices<ReportFormat> kVotesFormats = choices_of(vote_formats());

struct KnotArguments {
  std::vector<std::string> files;
  ClosureCode closure = ClosureCode::kDirection;
  int trials = 100;
  std::optional<unsigned> seed;
  bool check = false;
  ReportFormat format = ReportFormat::kText;
  bool verbose = false;
};

KnotResult answer_one(const std::string& file, const KnotArguments& options, unsigned seed) {
  KnotResult result;
  result.file = file;
  const std::vector<ChainAtom> chain = read_chain(file);
  result.atoms = chain.size();
  if (options.check) {
    result.distances = CheckDistancesBetweenAtoms(chain);
    if (*result.distances != "OK") complain(file + ": warning: " + *result.distances);
  }
  Progress progress;
  result.answer =
      determine(file, chain, options.closure, options.trials, seed,
                [&](int done, int total) { progress.show(file, done, total, "trials"); });
  return result;
}

Exit run_knot(const KnotArguments& options) {
  const LibraryLog log(shown_if(options.verbose));
  const unsigned seed = choose_seed(options.seed);
  KnotReport report(
      std::cout, options.format,
      {name_of(options.closure, kClosures), determinations(options.closure, options.trials), seed});
  flush_output();
  Exit exit = Exit::kDone;
  for (const std::string& file : options.files) {
    try {
      report.add(answer_one(file, options, seed));
    } catch (const Failure& failure) {
      if (failure.status() == Exit::kInternal) throw;
      exit = told_failure();
    } catch (const std::bad_alloc&) {
      throw no_memory_for(file);
    }
    flush_output();
  }
  report.finish();
  return exit;
}

}  // namespace

Command knot_command() {
  auto options = std::make_shared<KnotArguments>();
  Command command{"knot", "Name the knot that each file's chain forms", {}, [options] {
                    return run_knot(*options);
                  }};
  command.add(classic_flag());
  command.add(files(options->files));
  command.add(choice("--closure", options->closure, kClosures,
                     "How the chain's ends are joined: out, carried\n"
                     "outwards and around the chain; two-points, each\n"
                     "to its own random far point; one-point, both to\n"
                     "one; direction, both in one random direction;\n"
                     "none, to each other (a ring)"));
  command.add(trials_option(options->trials,
                            "Closures to vote over; out and none are the same\n"
                            "every time and made once"));
  command.add(seed_option(options->seed));
  command.add({"--check",
               "Warn of repeated atoms and gaps: consecutive\n"
               "atoms at a distance of zero, below half or\n"
               "beyond 1.5 times the chain's median",
               &options->check});
  command.add(choice("--format", options->format, kVotesFormats,
                     "text, the ranked list with percentages; tsv and\n"
                     "json, the votes and share of every knot type too"));
  command.add(verbose_flag(options->verbose));
  return command;
}

}  // namespace korvex::cli::classic

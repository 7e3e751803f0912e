#include <iostream>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "chain_input.hpp"
#include "classic.hpp"
#include "command.hpp"
#include "knot_report.hpp"
#include "library_log.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

struct KnotOptions {
  std::vector<std::string> files;
  Closure closure = Closure::kDirection;
  int trials = 100;
  std::optional<unsigned> seed;
  bool check = false;
  ReportFormat format = ReportFormat::kText;
  bool verbose = false;
};

KnotResult answer_one(const std::string& file, const KnotOptions& options, unsigned seed) {
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
      classic::determine(file, chain, options.closure, options.trials, seed,
                         [&](int done, int total) { progress.show(file, done, total, "trials"); });
  return result;
}

Exit run_knot(const KnotOptions& options) {
  const LibraryLog log(shown_if(options.verbose));
  const unsigned seed = classic::choose_seed(options.seed);
  KnotReport report(std::cout, options.format,
                    {name_of(options.closure, kClosures),
                     classic::determinations(options.closure, options.trials), seed});
  Exit exit = Exit::kDone;
  for (const std::string& file : options.files) {
    try {
      report.add(answer_one(file, options, seed));
    } catch (const Failure& failure) {
      complain(failure.what());
      exit = failure.status();
    } catch (const std::bad_alloc&) {
      complain(file + ": there is not enough memory for this chain");
      exit = Exit::kSomeInputsFailed;
    }
  }
  report.finish();
  return exit;
}

}  // namespace

void add_classic_knot(CLI::App& app, Work& work) {
  auto options = std::make_shared<KnotOptions>();
  CLI::App* command = app.add_subcommand("knot", "Name the knot that each file's chain forms");
  add_classic_flag(*command);
  command->add_option("FILE", options->files, kFormatsRead)->required()->type_name("");
  add_choice(*command, "--closure", options->closure, kClosures,
             "How the chain's ends are joined: out, carried\n"
             "outwards and around the chain; two-points, each\n"
             "to its own random far point; one-point, both to\n"
             "one; direction, both in one random direction;\n"
             "none, to each other (a ring)");
  add_trials(*command, options->trials,
             "Closures to vote over; out and none are the same\n"
             "every time and made once");
  add_seed(*command, options->seed);
  command->add_flag("--check", options->check,
                    "Warn of repeated atoms and gaps: consecutive\n"
                    "atoms at a distance of zero, below half or\n"
                    "beyond 1.5 times the chain's median");
  add_choice(*command, "--format", options->format, kReportFormats,
             "text, the ranked list with percentages; tsv and\n"
             "json, the votes and share of every knot type too");
  add_verbose(*command, options->verbose);
  command->callback([&work, options] { work = [options] { return run_knot(*options); }; });
}

}  // namespace korvex::cli

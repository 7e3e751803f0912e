#include "korvex/locate.hpp"

#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "job.hpp"
#include "korvex/report.hpp"
#include "memory_limit.hpp"
#include "options.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kLocateFormats = choices_of(location_formats());

// Up to so many stations exact shares take no longer than people wait for.
constexpr std::size_t kMostExact = 100;

struct LocateArguments {
  std::vector<std::string> files;
  ReadOptions read;
  FingerprintChoice fingerprint;
  LocateOptions locate;
  Run run;
  ReportFormat format = ReportFormat::kText;
};

Exit run_locate(const LocateArguments& options) {
  limit_memory(options.fingerprint.options.most_memory, options.run.threads);
  LocationReport report(options.format, std::cout);
  Job job(options.files, options.read, options.run);
  const Exit exit = job.answer_each([&](const Chain& chain, const Run& run) -> Delivery {
    require_open(chain);
    Location location =
        locate(fingerprint_of(chain, options.fingerprint, run, kMostExact, job.show_of(chain)),
               options.locate, run);
    return [&report, &chain, location = std::move(location)] {
      report.add(chain, location);
      flush_output();
    };
  });
  report.finish();
  return exit;
}

}  // namespace

Command locate_command() {
  auto options = std::make_shared<LocateArguments>();
  Command command{"locate",
                  "Tell where chains are knotted: cores, tails, slipknots, composites",
                  {},
                  [options] { return run_locate(*options); }};
  command.add(sources(options->files));
  command.add(number("--threshold", options->locate.threshold, "SHARE",
                     "Share of a sub-chain's votes at which it counts as\nso knotted", share()));
  add_fingerprint_options(command, options->fingerprint,
                          "Exact shares of all directions, without votes; the\ndefault by rays up "
                          "to " +
                              std::to_string(kMostExact) + " stations");
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(choice("--format", options->format, kLocateFormats,
                     "text; tsv and json, for programs; pymol and\nchimerax, commands that colour "
                     "the cores"));
  return command;
}

}  // namespace korvex::cli

#include "korvex/locate.hpp"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/report.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kFormats = choices_of(location_formats());

struct Options {
  std::vector<std::string> files;
  ReadOptions read;
  FingerprintOptions fingerprint;
  LocateOptions locate;
  Run run;
  ReportFormat format = ReportFormat::kText;
};

Exit run_locate(const Options& options) {
  LocationReport report(options.format, std::cout);
  const Exit exit = for_each_chain(options.files, options.read, [&](const Chain& chain) {
    require_open(chain);
    const std::string title = title_of(chain);
    Run run = options.run;
    Location location;
    {
      Progress progress;
      const auto directions = static_cast<double>(options.fingerprint.directions);
      run.progress = [&](double fraction) {
        progress.show_bar(title, fraction, directions, "directions");
      };
      run.progress(0);
      location = locate(fingerprint(chain.points, options.fingerprint, run), options.locate);
    }
    report.add(chain, location);
    flush_output();
  });
  report.finish();
  return exit;
}

}  // namespace

Command locate_command() {
  auto options = std::make_shared<Options>();
  Command command{"locate",
                  "Tell where chains are knotted: cores, tails, slipknots, composites",
                  {},
                  [options] { return run_locate(*options); }};
  command.add(files(options->files));
  command.add(number("--threshold", options->locate.threshold, "SHARE",
                     "Share of a sub-chain's votes at which it counts as\nso knotted", share()));
  add_fingerprint_options(command, options->fingerprint);
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(choice("--format", options->format, kFormats,
                     "text; tsv and json, for programs; pymol and\nchimerax, commands that colour "
                     "the cores"));
  return command;
}

}  // namespace korvex::cli

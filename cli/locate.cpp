#include "korvex/locate.hpp"

#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/save.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

const Choices<LocationFormat> kFormats = {{"text", LocationFormat::kText},
                                          {"tsv", LocationFormat::kTsv},
                                          {"json", LocationFormat::kJson},
                                          {"pymol", LocationFormat::kPymol},
                                          {"chimerax", LocationFormat::kChimerax}};

struct Options {
  std::vector<std::string> files;
  ReadOptions read;
  FingerprintOptions fingerprint;
  LocateOptions locate;
  Run run;
  LocationFormat format = LocationFormat::kText;
};

Exit run_locate(const Options& options) {
  const bool as_array = options.format == LocationFormat::kJson;
  std::ostringstream array;  // written whole or not at all
  const char* separator = "";
  write_location_head(options.format, std::cout);
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
    if (as_array) array << separator;
    separator = ", ";
    write_location(location, chain, options.format, as_array ? array : std::cout);
    flush_output();
  });
  if (as_array) std::cout << '[' << array.str() << "]\n";
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

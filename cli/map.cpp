#include <memory>
#include <optional>
#include <string>

#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/report.hpp"
#include "one_chain.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kFormats = choices_of(map_formats());

struct Options {
  std::string file;
  std::string output;
  ReadOptions read;
  ClosureMapOptions map;
  Run run;
  std::optional<ReportFormat> format;  // by the name of the output
};

ClosureMap map_of(const Chain& chain, const Options& options) {
  const std::string title = title_of(chain);
  Progress progress;
  Run run = options.run;
  run.progress = [&](double fraction) { progress.show_bar(title, fraction, 100, "percent"); };
  auto map = closure_map(chain.points, options.map, run);
  if (!map)
    throw Failure(Exit::kSomeInputsFailed, title + ": its map has more than " +
                                               std::to_string(options.map.most_regions) +
                                               " regions: allow for more by --regions");
  return *std::move(map);
}

Exit run_map(const Options& options) {
  const ReportFormat format =
      format_for(options.format, options.output, kFormats, ReportFormat::kSvg);
  return write_about_one_chain(options.file, options.read, options.output,
                               [&](const Chain& chain, std::ostream& out) {
                                 write_closure_map(chain, map_of(chain, options), format, out);
                               });
}

}  // namespace

Command map_command() {
  auto options = std::make_shared<Options>();
  Command command{
      "map", "Draw or write the knots of a chain in all directions of closing", {}, [options] {
        return run_map(*options);
      }};
  command.add(file(options->file));
  command.add(output(options->output, "map"));
  command.add(number("--regions", options->map.most_regions, "COUNT",
                     "Most regions; a chain that has more is refused", within(1, kMostRegions)));
  add_threads_option(command, options->run);
  add_chain_options(command, options->read);
  command.add(
      choice("--format", options->format, kFormats,
             "A drawing, JSON, or a NumPy archive; default: by the\nend of OUT's name, else "
             "svg"));
  return command;
}

}  // namespace korvex::cli

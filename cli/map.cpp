#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/error.hpp"
#include "korvex/report.hpp"
#include "options.hpp"
#include "output_file.hpp"
#include "progress.hpp"
#include "read_notes.hpp"

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

ReportFormat format_for(const Options& options) {
  if (options.format) return *options.format;
  const std::string extension = std::filesystem::path(options.output).extension().string();
  for (const auto& [name, format] : kFormats)
    if (extension == "." + name) return format;
  return ReportFormat::kSvg;
}

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

Exit map_of_file(const Options& options) {
  refuse_to_replace(options.file, options.output);
  OutputFile output(options.output);
  const Chain chain = only_chain(options.file, options.read);
  ReadNotes notes(options.read);
  notes.add(chain);
  notes.tell();
  require_open(chain);
  write_closure_map(chain, map_of(chain, options), format_for(options), output.stream());
  output.publish();
  return Exit::kDone;
}

Exit run_map(const Options& options) {
  try {
    return map_of_file(options);
  } catch (const korvex::Error& error) {
    if (!error.file().empty()) throw;
    throw Failure(Exit::kSomeInputsFailed, options.file + ": " + error.what());
  }
}

}  // namespace

Command map_command() {
  auto options = std::make_shared<Options>();
  Command command{
      "map", "Draw or write the knots of a chain in all directions of closing", {}, [options] {
        return run_map(*options);
      }};
  command.add(file(options->file));
  command.add(output(options->output));
  command.add(number("--regions", options->map.most_regions, "COUNT",
                     "Most regions; a chain that has more is refused", within(1, 10'000'000)));
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(
      choice("--format", options->format, kFormats,
             "A drawing, JSON, or a NumPy archive; default: by the\nend of OUT's name, else "
             "svg"));
  return command;
}

}  // namespace korvex::cli

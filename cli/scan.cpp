#include "korvex/scan.hpp"

#include <fmt/format.h>

#include <charconv>
#include <iostream>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "interrupt.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/error.hpp"
#include "korvex/votes.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kScanFormats = {{"tsv", ReportFormat::kTsv},
                                            {"jsonl", ReportFormat::kJson}};

struct ScanArguments {
  ScanPlan plan;
  Run run;
  bool names_from_input = false;
};

// "k/n".
bool parse_shard(std::string_view text, Shard& shard) {
  const char* const end = text.data() + text.size();
  const auto [slash, error] = std::from_chars(text.data(), end, shard.number);
  if (error != std::errc() || slash == end || *slash != '/') return false;
  const auto [rest, error_of] = std::from_chars(slash + 1, end, shard.of);
  return error_of == std::errc() && rest == end && shard.number >= 1 && shard.number <= shard.of;
}

Option shard_option(Shard& shard) {
  return {.names = "--shard",
          .help =
              "Only the Kth of N shares of the pieces, K from 1 to N;\nall shares may write "
              "to one DIR at a time",
          .target = [&shard](const std::string& text) { parse_shard(text, shard); },
          .value = "K/N",
          .refuse =
              [](const std::string& text) {
                Shard ignored;
                return parse_shard(text, ignored) ? std::string()
                                                  : "'" + text +
                                                        "' is not of the form K/N with K from "
                                                        "1 to N";
              }};
}

// Names that each end in a NUL.
void read_names(std::vector<std::string>& names) {
  std::string name;
  while (std::getline(std::cin, name, '\0'))
    if (!name.empty()) names.push_back(name);
}

std::string title_of(const ScanProgress& now) {
  std::string title = fmt::format("{} files, ", now.advance.members);
  if (now.advance.known != 0)
    title = fmt::format("file {} of {}, ", now.advance.members, now.advance.known);
  return title + fmt::format("{} chains, {} knotted", now.counts.chains, now.counts.knotted);
}

Exit exit_for(const ScanCounts& counts) {
  return counts.failed > 0 ? Exit::kSomeInputsFailed : Exit::kDone;
}

ScanOutcome scan_with_progress(ScanArguments& arguments) {
  Progress progress;
  arguments.plan.progress = [&](const ScanProgress& now) {
    progress.show_job(title_of(now), now.advance.fraction, now.counts.chains, "chains");
  };
  return scan(arguments.plan, arguments.run);
}

Exit run_scan(ScanArguments& arguments) {
  if (arguments.names_from_input) read_names(arguments.plan.sources);
  if (arguments.plan.sources.empty())
    throw Failure(Exit::kUsage,
                  "no source given: name files, folders, archives or lists, or give "
                  "their names on standard input with -0");
  const StopWhenInterrupted interrupts;
  arguments.run.stop = interrupts.token();
  const std::string& directory = arguments.plan.directory;
  try {
    const ScanOutcome outcome = scan_with_progress(arguments);
    const std::string kept = outcome.kept > 0 ? fmt::format(" ({} of {} pieces were whole already)",
                                                            outcome.kept, outcome.pieces)
                                              : std::string();
    std::cout << text_of(outcome.counts) + kept + "\n";
    if (arguments.plan.shard.of > 1) return exit_for(outcome.counts);
    std::cout << "results: " + merge_scan(directory).path + "\n";
    return exit_for(outcome.counts);
  } catch (const korvex::Error& error) {
    if (error.code() != ErrorCode::kCancelled) throw;
    complain("stopped; the same command with --resume goes on with what is whole in " + directory);
    return Exit::kInterrupted;
  }
}

}  // namespace

Command scan_command() {
  auto arguments = std::make_shared<ScanArguments>();
  ScanPlan& plan = arguments->plan;
  ScanOptions& options = plan.options;
  Command command{
      "scan", "Find the knots in whole folders and archives, piece by piece", {}, [arguments] {
        return run_scan(*arguments);
      }};
  command.add(
      {.names = "SOURCE",
       .help = "Files, folders, archives (tar, tar.gz, zip, ...), or\n@LIST for the names "
               "in a file, one a line",
       .target = [&plan](const std::vector<std::string>& values) { plan.sources = values; }});
  command.add({.names = "-0",
               .help = "Names of sources from standard input, each ended by\na NUL",
               .target = &arguments->names_from_input});
  command.add({.names = "-o,--output",
               .help = "Directory for the answers, made if it is not there",
               .target = [&plan](const std::string& value) { plan.directory = value; },
               .value = "DIR",
               .required = true});
  command.add({.names = "--resume",
               .help = "Go on with what is in DIR: keep the pieces that are\nwhole and of the same "
                       "options, do the rest",
               .target = &plan.resume});
  command.add(shard_option(plan.shard));
  command.add(number("--piece", options.piece, "COUNT",
                     "Members of a source, or frames of a long trajectory,\nthat make a piece",
                     within(1, std::numeric_limits<int>::max())));
  command.add(number("--trials", options.trials, "COUNT",
                     "Closures to vote over; 0: exact shares, or where a\nchain has more than "
                     "--regions, 100",
                     within(0, kMostVotes)));
  command.add(number("--regions", options.most_regions, "COUNT", "Most regions of exact shares",
                     within(1, kMostRegions)));
  command.add(number("--locate-above", options.locate_above, "SHARE",
                     "Tell where the knot lies in chains that are knotted in\na larger share of "
                     "closures",
                     share()));
  command.add({"--slipknots", "Tell it for all chains, and so find slipknots", &options.slipknots});
  command.add(number("--threshold", options.threshold, "SHARE",
                     "Share of a sub-chain's votes at which it counts as\nso knotted", share()));
  command.add(number("--directions", options.directions, "COUNT",
                     "Votes for every sub-chain; 0: exact shares up to 100\nends of sub-chains, "
                     "else 100",
                     within(0, 1'000'000)));
  command.add(number("--step", options.step, "COUNT",
                     "Residues from one end of a sub-chain to the next",
                     within(1, std::numeric_limits<int>::max())));
  command.add({"--knotted-only", "Leave out chains without a knot, a slipknot or an error",
               &options.knotted_only});
  add_run_options(command, arguments->run);
  add_chain_options(command, options.read);
  command.add(
      choice("--format", options.format, kScanFormats, "A table, or JSON, an object a line"));
  return command;
}

}  // namespace korvex::cli

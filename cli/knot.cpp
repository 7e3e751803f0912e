#include <array>
#include <charconv>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "job.hpp"
#include "korvex/closure_map.hpp"
#include "korvex/report.hpp"
#include "korvex/votes.hpp"
#include "options.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kVotesFormats = choices_of(vote_formats());

const Choices<Closure> kClosures = choices_of<Closure>(std::array{
    Closure::kRays, Closure::kTwoPoints, Closure::kOut, Closure::kDirect, Closure::kRing});

struct KnotArguments {
  std::vector<std::string> files;
  ReadOptions read;
  VoteOptions votes;
  ClosureMapOptions map{.boundaries = false};
  bool closure_given = false;
  bool sampled = false;  // as --trials or --sampling ask
  Run run;
  ReportFormat format = ReportFormat::kText;
};

// The exact answer; nothing where votes are asked for or the map would have too many regions.
std::optional<ClosureMap> map_of(const Chain& chain, Closure closure, const KnotArguments& options,
                                 Run run, const ShowFraction& show) {
  if (closure != Closure::kRays || options.sampled) return std::nullopt;
  run.progress = [&](double fraction) { show(fraction, 100, "percent"); };
  return closure_map(chain.points, options.map, run);
}

Votes votes_of(const Chain& chain, const VoteOptions& votes, Run run, const ShowFraction& show) {
  const auto trials = static_cast<double>(votes.trials > 0 ? votes.trials : votes.most_trials);
  run.progress = [&](double fraction) { show(fraction, trials, "closures"); };
  run.progress(0);
  return vote(chain.points, votes, run);
}

Exit run_knot(const KnotArguments& options) {
  VotesReport report(options.format, std::cout);
  Job job(options.files, options.read, options.run,
          options.closure_given && options.votes.closure == Closure::kRing);
  const Exit exit = job.answer_each([&](const Chain& chain, const Run& run) -> Delivery {
    VoteOptions asked = options.votes;
    if (chain.closed && !options.closure_given) asked.closure = Closure::kRing;
    const ShowFraction show = job.show_of(chain);
    if (auto map = map_of(chain, asked.closure, options, run, show))
      return [&report, &chain, map = *std::move(map)] {
        report.add(chain, map);
        flush_output();
      };
    Votes votes = votes_of(chain, asked, run, show);
    return [&report, &chain, closure = asked.closure, votes = std::move(votes)] {
      report.add(chain, closure, votes);
      flush_output();
    };
  });
  report.finish();
  return exit;
}

Option trials_option(KnotArguments& options) {
  const auto parse = [](const std::string& text, std::size_t& trials) {
    if (text == "auto") {
      trials = 0;
      return true;
    }
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, trials);
    return error == std::errc() && rest == end && trials > 0 && trials <= kMostVotes;
  };
  const auto refuse = [parse](const std::string& text) {
    std::size_t trials = 0;
    return parse(text, trials) ? std::string()
                               : "'" + text + "' is neither auto nor a whole number from 1 to " +
                                     std::to_string(kMostVotes);
  };
  return {"--trials",
          "Closures by rays or two points to vote over; auto:\nas many as it takes until one type "
          "has more than\nhalf for certain, or all shares are known to the\ntolerance, or to one "
          "that is given. Default: none by\nrays, whose shares are exact, else 100",
          [&options, parse](const std::string& text) {
            options.sampled = true;
            parse(text, options.votes.trials);
          },
          "COUNT|auto",
          "",
          refuse};
}

Option closure_option(KnotArguments& options) {
  Option option = choice("--closure", options.votes.closure, kClosures,
                         "How the ends are joined: both to infinity in one\ndirection; each in its "
                         "own; away from the centre;\nstraight to each other; or they are joined "
                         "already\n(the default for closed chains)");
  return noting(std::move(option), [&options] { options.closure_given = true; });
}

}  // namespace

Command knot_command() {
  auto options = std::make_shared<KnotArguments>();
  Command command{"knot", "Name the knots that chains form, with their shares", {}, [options] {
                    return run_knot(*options);
                  }};
  command.add(sources(options->files));
  command.add(closure_option(*options));
  command.add(trials_option(*options));
  command.add(
      noting(number("--tolerance", options->votes.tolerance, "SHARE",
                    "Half the width of the 95 % intervals at which\n--trials auto stops", share()),
             [&options = *options] { options.votes.majority_settles = false; }));
  command.add(noting(sampling_option(options->votes.sampling),
                     [&options = *options] { options.sampled = true; }));
  command.add(number("--regions", options->map.most_regions, "COUNT",
                     "Most regions of exact shares; a chain that has more\nis voted on",
                     within(1, kMostRegions)));
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(choice("--format", options->format, kVotesFormats,
                     "text, a line for each chain; tsv, a line for each\ntype; json, the crossings "
                     "of the diagrams too"));
  command.add(classic_flag());
  return command;
}

}  // namespace korvex::cli

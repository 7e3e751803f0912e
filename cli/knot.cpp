#include <array>
#include <charconv>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/report.hpp"
#include "korvex/votes.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

const Choices<ReportFormat> kFormats = choices_of(vote_formats());

const Choices<Closure> kClosures = choices_of<Closure>(std::array{
    Closure::kRays, Closure::kTwoPoints, Closure::kOut, Closure::kDirect, Closure::kRing});

constexpr std::size_t kMostTrials = 10'000'000;

struct KnotOptions {
  std::vector<std::string> files;
  ReadOptions read;
  VoteOptions votes;
  bool closure_given = false;
  Run run;
  ReportFormat format = ReportFormat::kText;
};

Exit run_knot(const KnotOptions& options) {
  VotesReport report(options.format, std::cout);
  const Exit exit = for_each_chain(
      options.files, options.read,
      [&](const Chain& chain) {
        VoteOptions votes = options.votes;
        if (chain.closed && !options.closure_given) votes.closure = Closure::kRing;
        const std::string title = title_of(chain);
        Run run = options.run;
        const auto trials =
            static_cast<double>(votes.trials > 0 ? votes.trials : votes.most_trials);
        Votes answer;
        {
          Progress progress;
          run.progress = [&](double fraction) {
            progress.show_bar(title, fraction, trials, "closures");
          };
          run.progress(0);
          answer = vote(chain.points, votes, run);
        }
        report.add(chain, votes.closure, answer);
        flush_output();
      },
      options.closure_given && options.votes.closure == Closure::kRing);
  report.finish();
  return exit;
}

Option trials_option(VoteOptions& votes) {
  const auto parse = [](const std::string& text, std::size_t& trials) {
    if (text == "auto") {
      trials = 0;
      return true;
    }
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, trials);
    return error == std::errc() && rest == end && trials > 0 && trials <= kMostTrials;
  };
  const auto refuse = [parse](const std::string& text) {
    std::size_t trials = 0;
    return parse(text, trials) ? std::string()
                               : "'" + text + "' is neither auto nor a whole number from 1 to " +
                                     std::to_string(kMostTrials);
  };
  return {"--trials",
          "Closures by rays or two points to vote over; auto:\nas many as it takes until one type "
          "has more than\nhalf for certain, or all shares are known to the\ntolerance",
          [&votes, parse](const std::string& text) { parse(text, votes.trials); },
          "COUNT|auto",
          "100",
          refuse};
}

Option closure_option(KnotOptions& options) {
  Option option = choice("--closure", options.votes.closure, kClosures,
                         "How the ends are joined: both to infinity in one\ndirection; each in its "
                         "own; away from the centre;\nstraight to each other; or they are joined "
                         "already\n(the default for closed chains)");
  option.target = [&options, take = std::get<TakeOne>(option.target)](const std::string& text) {
    options.closure_given = true;
    take(text);
  };
  return option;
}

}  // namespace

Command knot_command() {
  auto options = std::make_shared<KnotOptions>();
  Command command{
      "knot", "Name the knots that chains form, with shares and intervals", {}, [options] {
        return run_knot(*options);
      }};
  command.add(files(options->files));
  command.add(closure_option(*options));
  command.add(trials_option(options->votes));
  command.add(number("--tolerance", options->votes.tolerance, "SHARE",
                     "Half the width of the 95 % intervals at which\n--trials auto stops",
                     share()));
  command.add(sampling_option(options->votes.sampling));
  add_run_options(command, options->run);
  add_chain_options(command, options->read);
  command.add(choice("--format", options->format, kFormats,
                     "text, a line for each chain; tsv, a line for each\ntype; json, the crossings "
                     "of the diagrams too"));
  command.add(classic_flag());
  return command;
}

}  // namespace korvex::cli

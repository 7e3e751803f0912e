#include <fmt/format.h>

#include <charconv>
#include <iostream>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "chains.hpp"
#include "command.hpp"
#include "commands.hpp"
#include "engine_options.hpp"
#include "korvex/votes.hpp"
#include "options.hpp"
#include "progress.hpp"

namespace korvex::cli {
namespace {

enum class Format { kText, kTsv, kJson };

const Choices<Format> kFormats = {
    {"text", Format::kText}, {"tsv", Format::kTsv}, {"json", Format::kJson}};

const Choices<korvex::Closure> kEngineClosures = {
    {"rays", korvex::Closure::kRays}, {"two-points", korvex::Closure::kTwoPoints},
    {"out", korvex::Closure::kOut},   {"direct", korvex::Closure::kDirect},
    {"ring", korvex::Closure::kRing},
};

constexpr std::size_t kMostTrials = 10'000'000;

struct KnotOptions {
  std::vector<std::string> files;
  ReadOptions read;
  VoteOptions votes;
  bool closure_given = false;
  Run run;
  Format format = Format::kText;
};

// What is printed of one chain after another.
class KnotPrinter {
 public:
  KnotPrinter(std::ostream& out, Format format) : out_(out), format_(format) {
    if (format == Format::kTsv)
      out << "source\tmodel\tchain\tresidues\tclosure\ttrials\ttype\tvotes\tshare\tlow\thigh\n";
  }

  void add(const Chain& chain, korvex::Closure closure, const Votes& votes) {
    if (format_ == Format::kJson) return json_.push_back(as_json(chain, closure, votes));
    format_ == Format::kText ? add_text(chain, votes) : add_rows(chain, closure, votes);
    flush_output();
  }

  void finish() const {
    constexpr auto kReplaceBadUtf8 = nlohmann::ordered_json::error_handler_t::replace;
    if (format_ == Format::kJson) out_ << json_.dump(2, ' ', false, kReplaceBadUtf8) << '\n';
  }

 private:
  // As many as one vote more or less shows in.
  static int decimals_for(std::size_t trials) {
    constexpr std::size_t kTenths = 1000;
    constexpr std::size_t kHundredths = 10'000;
    return trials < kTenths ? 0 : trials < kHundredths ? 1 : 2;
  }

  void add_text(const Chain& chain, const Votes& votes) const {
    out_ << title_of(chain) << ": ";
    const char* separator = "";
    for (const TypeVotes& type : votes.types) {
      out_ << separator << type.type;
      if (votes.trials > 1)
        out_ << fmt::format(" {0:.{3}f} % [{1:.{3}f}-{2:.{3}f}]", 100 * type.share,
                            100 * type.interval.low, 100 * type.interval.high,
                            decimals_for(votes.trials));
      separator = ", ";
    }
    out_ << fmt::format(" ({} {}, {} {}", chain.points.size(),
                        chain.points.size() == 1 ? "residue" : "residues", votes.trials,
                        votes.trials == 1 ? "closure" : "closures");
    if (votes.ring && votes.dominant().type.find('?') != std::string::npos) add_ring(*votes.ring);
    out_ << ")\n";
  }

  // What is known of a closed curve whose knot has no name.
  void add_ring(const RingReport& ring) const {
    out_ << fmt::format("; Alexander key {:x}; {} crossings, writhe {}; simplified {}, writhe {}",
                        ring.alexander_key, ring.projected.crossings, ring.projected.writhe,
                        ring.simplified_size().crossings, ring.simplified_size().writhe);
  }

  void add_rows(const Chain& chain, korvex::Closure closure, const Votes& votes) const {
    for (const TypeVotes& type : votes.types)
      out_ << fmt::format("{}\t{}\t{}\t{}\t{}\t{}\t{}\t{}\t{:.6g}\t{:.6g}\t{:.6g}\n", chain.source,
                          chain.model, chain.name, chain.points.size(), name_of(closure),
                          votes.trials, type.type, type.count, type.share, type.interval.low,
                          type.interval.high);
  }

  static nlohmann::ordered_json as_json(const Chain& chain, korvex::Closure closure,
                                        const Votes& votes) {
    nlohmann::ordered_json json{{"source", chain.source},      {"model", chain.model},
                                {"chain", chain.name},         {"residues", chain.points.size()},
                                {"closure", name_of(closure)}, {"trials", votes.trials}};
    json["types"] = nlohmann::ordered_json::array();
    for (const TypeVotes& type : votes.types)
      json["types"].push_back({{"type", type.type},
                               {"votes", type.count},
                               {"proven", type.proven},
                               {"share", type.share},
                               {"low", type.interval.low},
                               {"high", type.interval.high}});
    auto& crossings = json["crossings"] = nlohmann::ordered_json::object();
    for (const auto& [count, diagrams] : votes.crossings)
      crossings[std::to_string(count)] = diagrams;
    if (votes.ring) json["ring"] = as_json(*votes.ring);
    return json;
  }

  static nlohmann::ordered_json as_json(const RingReport& ring) {
    const auto size = [](const DiagramSize& diagram) {
      return nlohmann::ordered_json{{"crossings", diagram.crossings}, {"writhe", diagram.writhe}};
    };
    return {{"projected", size(ring.projected)},
            {"points_left", ring.points_left},
            {"simplified", size(ring.simplified_size())},
            {"alexander_key", fmt::format("{:x}", ring.alexander_key)}};
  }

  std::ostream& out_;
  Format format_;
  nlohmann::ordered_json json_ = nlohmann::ordered_json::array();
};

Exit run_knot(const KnotOptions& options) {
  KnotPrinter printer(std::cout, options.format);
  const Exit exit = for_each_chain(
      options.files, options.read,
      [&](const Chain& chain) {
        VoteOptions votes = options.votes;
        if (chain.closed && !options.closure_given) votes.closure = korvex::Closure::kRing;
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
        printer.add(chain, votes.closure, answer);
      },
      options.closure_given && options.votes.closure == korvex::Closure::kRing);
  printer.finish();
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
  Option option = choice("--closure", options.votes.closure, kEngineClosures,
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

#include "engine_options.hpp"

#include <charconv>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>

#include "options.hpp"

namespace korvex::cli {
namespace {

const Choices<GapPolicy> kGapPolicies = {{"auto", GapPolicy::kAuto},
                                         {"bridge", GapPolicy::kBridge},
                                         {"split", GapPolicy::kSplit},
                                         {"reject", GapPolicy::kReject}};
const Choices<bool> kUnwraps = {{"auto", true}, {"never", false}};
const Choices<Numbering> kNumberings = {{"author", Numbering::kAuthor},
                                        {"label", Numbering::kLabel}};
const Choices<Sampling> kSamplings = {{"lattice", Sampling::kLattice},
                                      {"independent", Sampling::kIndependent}};
const Choices<korvex::Closure> kSampledClosures = {{"rays", korvex::Closure::kRays},
                                                   {"two-points", korvex::Closure::kTwoPoints}};

// A bound of a range: a number and perhaps an insertion code, taken off the front of `text`.
template <typename Number>
bool take_bound(std::string_view& text, Number& number, char* code) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  if (code != nullptr && !text.empty() && text.front() != '-') {
    *code = text.front();
    text.remove_prefix(1);
  }
  return true;
}

// A range that ends before it begins holds nothing.
bool is_backwards(const ResidueRange& range) {
  return std::pair(range.last, range.last_code) < std::pair(range.first, range.first_code);
}

// "first-last" or one bound for both.
std::optional<ResidueRange> residues_from(std::string_view text) {
  ResidueRange range;
  if (!take_bound(text, range.first, &range.first_code)) return std::nullopt;
  range.last = range.first;
  range.last_code = range.first_code;
  if (text.empty()) return range;
  if (text.front() != '-') return std::nullopt;
  text.remove_prefix(1);
  range.last_code = ' ';
  if (!take_bound(text, range.last, &range.last_code) || !text.empty()) return std::nullopt;
  if (is_backwards(range)) return std::nullopt;
  return range;
}

std::optional<ModelRange> models_from(std::string_view text) {
  ModelRange range;
  if (!take_bound(text, range.first, nullptr)) return std::nullopt;
  range.last = range.first;
  if (text.empty()) return range;
  if (text.front() != '-') return std::nullopt;
  text.remove_prefix(1);
  if (!take_bound(text, range.last, nullptr) || range.last < range.first) return std::nullopt;
  if (text.empty()) return range;
  if (text.front() != ':') return std::nullopt;
  text.remove_prefix(1);
  if (!take_bound(text, range.step, nullptr) || !text.empty() || range.step < 1)
    return std::nullopt;
  return range;
}

// An option whose text `parse` turns into a value, or refuses.
template <typename Value>
Option parsed(const std::string& names, Value& value,
              std::optional<Value> (*parse)(std::string_view), const std::string& form,
              const std::string& help) {
  const auto refuse = [parse, form](const std::string& text) {
    return parse(text)
               ? std::string()
               : "'" + text + "' is not of the form " + form + ", with the lower number first";
  };
  return {.names = names,
          .help = help,
          .target = [&value, parse](const std::string& text) { value = *parse(text); },
          .value = form,
          .refuse = refuse};
}

// A check that refuses all but the numbers that 64 bits hold.
Check whole_number() {
  return [](const std::string& text) {
    std::uint64_t value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && rest == end) return std::string();
    return "'" + text + "' is not a whole number from 0 to 18446744073709551615";
  };
}

Option chain_option(std::vector<std::string>& chains) {
  return {.names = "--chain",
          .help = "Chains by their names, separated by commas;\ndefault: all",
          .target = [&chains](const std::vector<std::string>& values) { chains = values; },
          .value = "NAME",
          .delimiter = ','};
}

Option atom_option(std::vector<std::string>& atoms) {
  return {.names = "--atom",
          .help =
              "Atoms that make the chain, separated by commas, or\nall; default: CA of amino "
              "acids, P of nucleotides",
          .target = [&atoms](const std::vector<std::string>& values) { atoms = values; },
          .value = "NAME",
          .delimiter = ','};
}

Option topology_option(std::string& path) {
  return {.names = "--topology",
          .help =
              "File with the chains of an XTC, TRR or DCD\ntrajectory: PDB, GRO, mmCIF or LAMMPS "
              "data; or LAMMPS\ndata with the molecules and bonds of a LAMMPS dump",
          .target = [&path](const std::string& value) { path = value; },
          .value = "FILE"};
}

// A check that refuses all but numbers from 1.5 up.
Check bonds() {
  return [](const std::string& text) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && rest == end && value >= 1.5) return std::string();
    return "'" + text + "' is not a number of at least 1.5";
  };
}

// A check that refuses all but numbers from 0 to 100.
Check plddt() {
  return [](const std::string& text) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && rest == end && value >= 0 && value <= 100) return std::string();
    return "'" + text + "' is not a number from 0 to 100";
  };
}

}  // namespace

void add_chain_options(Command& command, ReadOptions& read) {
  command.add(parsed("--model", read.models, models_from, "N[-N[:STEP]]",
                     "Models or frames of the file, both included, every\nSTEPth from the first "
                     "on; default: all"));
  command.add(chain_option(read.chains));
  command.add(
      parsed("--residues", read.residues, residues_from, "N[-N]",
             "Residues by their labels, both included: 10-52 ends\nat 52 alone, 10-52A takes in "
             "52A, and 10-52Z every\nresidue of that number; default: all"));
  command.add(
      number("--min-plddt", read.min_plddt, "PLDDT",
             "Cuts residues below it off the ends of predicted\nmodels; those in the middle stay",
             plddt()));
  command.add(atom_option(read.atoms));
  command.add(choice("--numbering", read.numbering, kNumberings,
                     "Chain names and residue numbers of an mmCIF file"));
  command.add(number("--chain-length", read.chain_length, "COUNT",
                     "Points of a chain: cuts what the file has as one;\n0: cuts nothing",
                     within(0, std::numeric_limits<int>::max())));
  command.add(topology_option(read.topology));
  command.add(choice("--gaps", read.gaps, kGapPolicies,
                     "Where neighbours lie farther apart than 1.5 times\nthe median, or residues "
                     "are missing: join them\nstraight, make two chains, or refuse the chain;\n"
                     "auto: join up to --max-gap, else make two chains"));
  command.add(number("--max-gap", read.max_gap, "BONDS",
                     "Longest gap that --gaps auto bridges, in median\nbonds", bonds()));
  command.add(choice("--unwrap", read.unwrap, kUnwraps,
                     "Mend the bonds that the file's periodic box broke"));
}

void add_threads_option(Command& command, Run& run) {
  run.threads = 0;
  command.add(number("--threads", run.threads, "COUNT", "Threads; 0 for as many as the machine has",
                     within(0, 4096)));
}

void add_run_options(Command& command, Run& run) {
  add_threads_option(command, run);
  command.add(number("--seed", run.seed, "NUMBER",
                     "Fixes the directions: the same seed gives the same\nanswer on any number of "
                     "threads",
                     whole_number()));
}

Check share() {
  return [](const std::string& text) {
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    if (error == std::errc() && rest == end && value > 0 && value <= 1) return std::string();
    return "'" + text + "' is not a number above 0 and at most 1";
  };
}

Option sampling_option(Sampling& sampling) {
  return choice("--sampling", sampling, kSamplings,
                "Directions: an even lattice turned at random, or\neach on its own at random");
}

void add_fingerprint_options(Command& command, FingerprintChoice& choice,
                             const std::string& about_exact) {
  FingerprintOptions& options = choice.options;
  const auto sampled = [&choice] { choice.sampled = true; };
  command.add({.names = "--exact", .help = about_exact, .target = &options.exact});
  command.add(korvex::cli::choice(
      "--closure", options.closure, kSampledClosures,
      "How both ends of a sub-chain are led to infinity:\nin one direction, or each in its own"));
  command.add(noting(number("--directions", options.directions, "COUNT",
                            "Votes for every sub-chain", within(1, 1'000'000)),
                     sampled));
  command.add(number("--step", options.step, "COUNT",
                     "Residues from one end of a sub-chain to the next",
                     within(1, std::numeric_limits<int>::max())));
  command.add(noting(sampling_option(options.sampling), sampled));
  command.add(
      memory(options.most_memory,
             "Most memory for the whole run, but no less than 64M;\na chain whose votes need "
             "more is refused",
             "4G"));
}

Fingerprint fingerprint_of(const Chain& chain, const FingerprintChoice& choice, Run run,
                           std::size_t most_exact, const ShowFraction& show) {
  FingerprintOptions options = choice.options;
  const bool by_rays = options.closure == korvex::Closure::kRays;
  if (options.exact && (choice.sampled || !by_rays))
    throw Failure(Exit::kUsage,
                  "--exact takes all directions of closing by rays: leave out --directions, "
                  "--sampling and --closure");
  if (by_rays && !choice.sampled && chain.points.size() <= most_exact * options.step)
    options.exact = true;
  const auto directions = static_cast<double>(options.directions);
  run.progress = [&](double fraction) {
    show(fraction, options.exact ? 100 : directions, options.exact ? "percent" : "directions");
  };
  run.progress(0);
  return fingerprint(chain.points, options, run);
}

}  // namespace korvex::cli

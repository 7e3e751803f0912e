#include "read/read_chains.hpp"

#include <algorithm>
#include <cmath>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "korvex/error.hpp"
#include "read/bytes.hpp"
#include "read/frames.hpp"
#include "read/gaps.hpp"
#include "read/input.hpp"
#include "read/selection.hpp"
#include "read/text.hpp"
#include "read/trace.hpp"

namespace korvex {
namespace read {
namespace {

// The parsers see to it that numbers are finite; scaled and converted they may not be any more.
void check_finite(const Chain& chain) {
  for (std::size_t i = 0; i < chain.points.size(); ++i) {
    const Point& point = chain.points[i];
    if (std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z)) continue;
    fail_at(chain.source, 0,
            "the position of atom " + std::to_string(chain.residues[i].number) + " in model " +
                std::to_string(chain.model) + " is too large; scale the coordinates");
  }
}

// What parsers hand their findings to.
struct Sinks {
  const ModelSink& models;
  const ChainSink& chains;
  FrameChains& frames;
};

// The bonds of a long PDB file, which stand at its end, take a reading of their own; nothing where
// there is but one.
std::optional<Bonds> bonds_of(const Input& input) {
  std::unique_ptr<ByteSource> again = input.again();
  if (!again) return {};
  TextFeed feed(std::move(again), input.name());
  Lines lines(feed, input.name());
  return read_bonds(lines);
}

void parse_lines(Input& input, Lines& lines, const ReadOptions& options, const Sinks& sinks) {
  switch (input.format()) {
    case Format::kGro:
      return parse_gro(lines, options, sinks.models);
    case Format::kXyz:
      return parse_xyz(lines, options, sinks.chains);
    case Format::kLammps:
      return parse_lammps(lines, options, sinks.chains);
    default:
      return parse_plain(lines, sinks.chains);
  }
}

void parse_text(Input& input, const ReadOptions& options, const Sinks& sinks) {
  const std::string& name = input.name();
  const bool is_pdb = input.format() == Format::kPdb;
  if (input.format() == Format::kMmcif)
    return parse_mmcif(input.whole(), name, options, sinks.models);
  if (input.format() == Format::kBcif)
    return parse_bcif(input.whole(), name, options, sinks.models);
  if (input.is_long()) {
    const std::optional<Bonds> bonds = is_pdb ? bonds_of(input) : std::nullopt;
    TextFeed feed(input.take(), name);
    Lines lines(feed, name);
    if (!is_pdb) return parse_lines(input, lines, options, sinks);
    return parse_pdb(lines, options, bonds ? &*bonds : nullptr, sinks.models);
  }
  Lines lines(input.whole(), name);
  if (!is_pdb) return parse_lines(input, lines, options, sinks);
  Lines first(input.whole(), name);
  const Bonds bonds = read_bonds(first);
  parse_pdb(lines, options, &bonds, sinks.models);
}

void parse(Input& input, const ReadOptions& options, const Sinks& sinks) {
  if (!is_of_positions(input.format())) return parse_text(input, options, sinks);
  ByteStream bytes(input.is_long() ? input.take() : open_memory(input.whole()));
  switch (input.format()) {
    case Format::kXtc:
      return parse_xtc(bytes, input.name(), sinks.frames);
    case Format::kTrr:
      return parse_trr(bytes, input.name(), sinks.frames);
    default:
      return parse_dcd(bytes, input.name(), sinks.frames);
  }
}

// Nothing behind the last selected frame is looked at.
struct PastLast {};

std::string nothing_to_trace(Format format, const std::vector<std::string>& atoms) {
  std::string atom;
  for (const std::string& name : atoms) atom += (atom.empty() ? "" : ",") + name;
  const bool has_residues = format == Format::kPdb || format == Format::kMmcif ||
                            format == Format::kBcif || format == Format::kGro;
  if (!has_residues && atom.empty()) return "holds no atoms; give a chain's coordinates";
  if (!has_residues) return "holds no atom of the kind " + in_quotes(atom) + "; name another";
  return atom.empty() ? "holds no polymer chain with CA or P atoms; name the atom to trace"
                      : "holds no polymer atom named " + in_quotes(atom) + "; name another";
}

}  // namespace

void each_chain(Input& input, const ReadOptions& options, Tracing tracing, const ChainSink& sink) {
  const std::string& name = input.name();
  const Format format = input.format();
  const ChosenAtoms chosen(options.atoms);
  const bool counts = format != Format::kPdb && format != Format::kMmcif && format != Format::kBcif;
  bool any = false;
  const ChainSink chain_sink = [&](RawChain&& raw) {
    any = true;
    if (counts && raw.chain.model > options.models.last) throw PastLast();
    if (!selects_model(options.models, raw.chain.model)) return;
    raw.chain.source = name;
    check_finite(raw.chain);
    sink(std::move(raw));
  };
  const ModelSink model_sink = [&](Model&& model) {
    // Traces are worth their cost only where they are wanted, or to tell that there are any.
    if (any && counts && model.number > options.models.last) throw PastLast();
    if (any && !selects_model(options.models, model.number)) return;
    for (RawChain& raw : traces_of(model, chosen, tracing)) chain_sink(std::move(raw));
  };
  FrameChains frames(options, name, chain_sink);
  if (!options.topology.empty() && format != Format::kLammps && !is_of_positions(format)) {
    throw Error(ErrorCode::kInvalidArgument,
                name +
                    ": names its chains itself; a topology is for LAMMPS dumps and for XTC, TRR "
                    "and DCD trajectories",
                name);
  }
  try {
    parse(input, options, {model_sink, chain_sink, frames});
  } catch (const PastLast&) {
    return;
  }
  if (!any && !frames.any()) fail_at(name, 0, nothing_to_trace(format, options.atoms));
}

void each_chain(std::string bytes, const std::string& name, const ReadOptions& options,
                Tracing tracing, const ChainSink& sink) {
  Input input([&] { return open_memory(bytes); }, name);
  input.whole();
  // The exported interface reads what it always has.
  const bool is_new = is_of_positions(input.format()) || input.format() == Format::kBcif;
  if (tracing == Tracing::kLoose && is_new) fail_at(name, 0, "is not text");
  each_chain(input, options, tracing, sink);
}

namespace {

struct StopReading {};

// The names of chains as a message may show them.
std::string list_of(const std::set<std::string>& chains) {
  constexpr std::size_t kMost = 20;
  std::string list;
  std::size_t count = 0;
  for (const std::string& chain : chains) {
    if (++count > kMost) break;
    list += (list.empty() ? "" : ", ") + (chain.empty() ? std::string("(unnamed)") : chain);
  }
  return chains.size() > kMost ? list + ", ..." : list;
}

// Some chains were there; one that is not may be missed.
void check_wanted(const std::string& name, const std::vector<std::string>& wanted,
                  const std::set<std::string>& chains) {
  for (const std::string& chain : wanted) {
    if (chains.contains(chain)) continue;
    throw Error(ErrorCode::kInvalidArgument,
                name + ": no chain named " + in_quotes(chain) +
                    " is there; the chains of the selected models are " + list_of(chains),
                name);
  }
}

// What a selection that nothing met could have asked for.
[[noreturn]] void fail_unmet(const std::string& name, const std::set<std::string>& chains) {
  throw Error(ErrorCode::kInvalidArgument,
              name + ": nothing there is selected; " +
                  (chains.empty() ? "no model has one of the wanted numbers"
                                  : "the chains of the selected models are " + list_of(chains) +
                                        "; check their names, residue numbers and confidences"),
              name);
}

}  // namespace
}  // namespace read

// Where a source has its bytes.
struct SourceBytes {
  static std::unique_ptr<read::ByteSource> open(const Source& source) {
    if (source.in_memory_) return read::open_memory(source.bytes_);
    return source.stream_ == nullptr ? read::open_file(source.name_)
                                     : read::open_stream(*source.stream_, source.name_);
  }
};

Source Source::stream(std::istream& stream, std::string name) {
  Source source(std::move(name));
  source.stream_ = &stream;
  return source;
}

Source Source::memory(std::string bytes, std::string name) {
  Source source(std::move(name));
  source.bytes_ = std::move(bytes);
  source.in_memory_ = true;
  return source;
}

std::string Source::load() const {
  if (in_memory_) return bytes_;
  return stream_ == nullptr ? read::load_file(name_) : read::load_stream(*stream_, name_);
}

void visit_chains(const Source& source, const ReadOptions& options,
                  const std::function<bool(Chain&&)>& visit) {
  read::check(options);
  std::set<std::string> seen;
  bool any = false;
  const auto sink = [&](read::RawChain&& raw) {
    seen.insert(raw.chain.name);
    if (!read::selects_chain(options, raw.chain)) return;
    read::select_residues(raw, options.residues);
    read::trim_tails(raw, options.min_plddt);
    if (raw.chain.points.empty()) return;
    if (options.unwrap) read::mend(raw);
    read::settle_ends(raw, options.closed);
    any = true;
    for (Chain& piece : read::settle_gaps(std::move(raw), options))
      if (!visit(std::move(piece))) throw read::StopReading();
  };
  const auto cut = [&](read::RawChain&& raw) {
    if (options.chain_length == 0) return sink(std::move(raw));
    for (read::RawChain& piece : read::cut(std::move(raw), options.chain_length)) {
      sink(std::move(piece));
    }
  };
  try {
    read::Input input([&source] { return SourceBytes::open(source); }, source.name());
    read::each_chain(input, options, read::Tracing::kStrict, cut);
  } catch (const read::StopReading&) {
    return;
  }
  if (!any) read::fail_unmet(source.name(), seen);
  read::check_wanted(source.name(), options.chains, seen);
}

std::vector<Chain> read_chains(const Source& source, const ReadOptions& options) {
  std::vector<Chain> chains;
  visit_chains(source, options, [&chains](Chain&& chain) {
    chains.push_back(std::move(chain));
    return true;
  });
  return chains;
}

}  // namespace korvex

#include "read/read_chains.hpp"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "korvex/error.hpp"
#include "read/bytes.hpp"
#include "read/selection.hpp"
#include "read/text.hpp"
#include "read/trace.hpp"

namespace korvex {
namespace read {
namespace {

// Text as the parsers want it: uncompressed, without byte order mark, lines ended by LF or CR LF.
std::string text_of(std::string bytes, const std::string& name) {
  if (bytes.empty()) fail_at(name, 0, "is empty; give a chain's coordinates");
  if (is_gzip(bytes)) bytes = gunzip(bytes, name);
  if (bytes.starts_with("\xef\xbb\xbf")) bytes.erase(0, 3);
  const bool old_mac =
      bytes.find('\n') == std::string::npos && bytes.find('\r') != std::string::npos;
  if (old_mac) std::replace(bytes.begin(), bytes.end(), '\r', '\n');
  return bytes;
}

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

void parse(Format format, std::string_view text, const std::string& name,
           const ReadOptions& options, const ModelSink& model_sink, const ChainSink& chain_sink) {
  switch (format) {
    case Format::kPdb:
      return parse_pdb(text, name, options, model_sink);
    case Format::kMmcif:
      return parse_mmcif(text, name, options, model_sink);
    case Format::kGro:
      return parse_gro(text, name, options, model_sink);
    case Format::kXyz:
      return parse_xyz(text, name, options, chain_sink);
    case Format::kLammps:
      return parse_lammps(text, name, options, chain_sink);
    case Format::kPlain:
      return parse_plain(text, name, chain_sink);
  }
}

std::string nothing_to_trace(Format format, const std::string& atom) {
  const bool has_residues =
      format == Format::kPdb || format == Format::kMmcif || format == Format::kGro;
  if (!has_residues && atom.empty()) return "holds no atoms; give a chain's coordinates";
  if (!has_residues) return "holds no atom of the kind " + in_quotes(atom) + "; name another";
  return atom.empty() ? "holds no polymer chain with CA or P atoms; name the atom to trace"
                      : "holds no polymer atom named " + in_quotes(atom) + "; name another";
}

}  // namespace

void each_chain(std::string bytes, const std::string& name, const ReadOptions& options,
                const ChainSink& sink) {
  const std::string text = text_of(std::move(bytes), name);
  bool any = false;
  const ChainSink chain_sink = [&](Chain&& chain) {
    any = true;
    if (!selects_model(options.models, chain.model)) return;
    chain.source = name;
    check_finite(chain);
    sink(std::move(chain));
  };
  const ModelSink model_sink = [&](Model&& model) {
    // Traces are worth their cost only where they are wanted, or to tell that there are any.
    if (any && !selects_model(options.models, model.number)) return;
    for (Chain& chain : traces_of(model, options.atom)) chain_sink(std::move(chain));
  };
  const Format format = detect_format(text, name);
  parse(format, text, name, options, model_sink, chain_sink);
  if (!any) fail_at(name, 0, nothing_to_trace(format, options.atom));
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
                                        "; check their names and residue numbers"),
              name);
}

}  // namespace
}  // namespace read

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
  if (options.models.step < 1) {
    throw Error(ErrorCode::kInvalidArgument, "the step from model to model is " +
                                                 std::to_string(options.models.step) +
                                                 "; it must be at least 1");
  }
  std::set<std::string> seen;
  bool any = false;
  const auto sink = [&](Chain&& chain) {
    seen.insert(chain.name);
    if (!read::selects_chain(options, chain)) return;
    read::select_residues(chain, options.residues);
    if (chain.points.empty()) return;
    read::settle_ends(chain, options.closed);
    any = true;
    for (Chain& piece : read::settle_gaps(std::move(chain), options.gaps)) {
      if (!visit(std::move(piece))) throw read::StopReading();
    }
  };
  try {
    read::each_chain(source.load(), source.name(), options, sink);
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

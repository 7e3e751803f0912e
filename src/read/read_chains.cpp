#include "read/read_chains.hpp"

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "korvex/error.hpp"
#include "read/bytes.hpp"
#include "read/gaps.hpp"
#include "read/selection.hpp"
#include "read/text.hpp"
#include "read/trace.hpp"

namespace korvex {
namespace read {
namespace {

// ChainEnds every line by LF: CR alone ends one as well, and any number of CR before LF belongs to
// it.
void settle_line_ends(std::string& text) {
  if (text.find('\r') == std::string::npos) return;
  std::size_t kept = 0;
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (text[i] != '\r') {
      text[kept++] = text[i];
      continue;
    }
    const std::size_t next = std::min(text.find_first_not_of('\r', i), text.size());
    if (next < text.size() && text[next] == '\n') {
      i = next - 1;
    } else {
      text[kept++] = '\n';
    }
  }
  text.resize(kept);
}

// Text as the parsers want it: uncompressed, without byte order mark and the zeros that tapes and
// fixed blocks are filled up with, lines ended by LF.
std::string text_of(std::string bytes, const std::string& name) {
  if (bytes.empty()) fail_at(name, 0, "is empty; give a chain's coordinates");
  if (is_gzip(bytes)) bytes = gunzip(bytes, name);
  if (is_gzip(bytes)) fail_at(name, 0, "is compressed with gzip twice; unpack it once");
  if (bytes.starts_with("\xef\xbb\xbf")) bytes.erase(0, 3);
  if (!is_binary(bytes)) {
    bytes.resize(bytes.find_last_not_of('\0') + 1);
    settle_line_ends(bytes);
  }
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

std::string nothing_to_trace(Format format, const std::vector<std::string>& atoms) {
  std::string atom;
  for (const std::string& name : atoms) atom += (atom.empty() ? "" : ",") + name;
  const bool has_residues =
      format == Format::kPdb || format == Format::kMmcif || format == Format::kGro;
  if (!has_residues && atom.empty()) return "holds no atoms; give a chain's coordinates";
  if (!has_residues) return "holds no atom of the kind " + in_quotes(atom) + "; name another";
  return atom.empty() ? "holds no polymer chain with CA or P atoms; name the atom to trace"
                      : "holds no polymer atom named " + in_quotes(atom) + "; name another";
}

}  // namespace

void each_chain(std::string bytes, const std::string& name, const ReadOptions& options,
                Tracing tracing, const ChainSink& sink) {
  const std::string text = text_of(std::move(bytes), name);
  const ChosenAtoms chosen(options.atoms);
  bool any = false;
  const ChainSink chain_sink = [&](RawChain&& raw) {
    any = true;
    if (!selects_model(options.models, raw.chain.model)) return;
    raw.chain.source = name;
    check_finite(raw.chain);
    sink(std::move(raw));
  };
  const ModelSink model_sink = [&](Model&& model) {
    // Traces are worth their cost only where they are wanted, or to tell that there are any.
    if (any && !selects_model(options.models, model.number)) return;
    for (RawChain& raw : traces_of(model, chosen, tracing)) chain_sink(std::move(raw));
  };
  const Format format = detect_format(text, name);
  if (!options.topology.empty() && format != Format::kLammps) {
    throw Error(ErrorCode::kInvalidArgument,
                name + ": is no LAMMPS dump, and a topology is for those alone", name);
  }
  parse(format, text, name, options, model_sink, chain_sink);
  if (!any) fail_at(name, 0, nothing_to_trace(format, options.atoms));
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
  read::check(options);
  std::set<std::string> seen;
  bool any = false;
  const auto sink = [&](read::RawChain&& raw) {
    seen.insert(raw.chain.name);
    if (!read::selects_chain(options, raw.chain)) return;
    read::select_residues(raw, options.residues);
    if (raw.chain.points.empty()) return;
    if (options.unwrap) read::mend(raw);
    read::settle_ends(raw, options.closed);
    any = true;
    for (Chain& piece : read::settle_gaps(std::move(raw), options)) {
      if (!visit(std::move(piece))) throw read::StopReading();
    }
  };
  const auto cut = [&](read::RawChain&& raw) {
    if (options.chain_length == 0) return sink(std::move(raw));
    for (read::RawChain& piece : read::cut(std::move(raw), options.chain_length)) {
      sink(std::move(piece));
    }
  };
  try {
    read::each_chain(source.load(), source.name(), options, read::Tracing::kStrict, cut);
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

// The formats: each parser goes through an input and hands over what it finds, model by model. What
// breaks its format's rules throws Error, naming the line. Frames are counted from 1.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "korvex/chain.hpp"
#include "korvex/read.hpp"
#include "read/atom_site.hpp"
#include "read/byte_stream.hpp"
#include "read/frames.hpp"
#include "read/raw_chain.hpp"
#include "read/text.hpp"

namespace korvex::read {

enum class Format { kPdb, kMmcif, kGro, kXyz, kLammps, kPlain, kXtc, kTrr, kDcd, kBcif };

// True of trajectories in binary, which have positions and no names.
inline bool is_of_positions(Format format) {
  return format == Format::kXtc || format == Format::kTrr || format == Format::kDcd;
}

// Tells the format by the content. Throws Error for binary and unknown content.
Format detect_format(std::string_view text, const std::string& file);

// The format of bytes that are no text; nothing where they are of none that is read.
std::optional<Format> binary_format(std::string_view bytes);

// True where the bytes begin as those of a file do that is not text.
bool is_binary(std::string_view bytes);

// True where the second line is a count and the third an atom in GRO columns.
bool looks_like_gro(std::string_view text, const std::string& file);

using ModelSink = std::function<void(Model&&)>;

// Formats of atoms with names and residues.

// The bonds of the CONECT records, which stand behind all models.
Bonds read_bonds(Lines& lines);
// `bonds` are those of the whole file; null where they are not known before its end: a CONECT
// record behind a model then throws Error.
void parse_pdb(Lines& lines, const ReadOptions& options, const Bonds* bonds, const ModelSink& sink);
void parse_mmcif(std::string_view text, const std::string& file, const ReadOptions& options,
                 const ModelSink& sink);
void parse_bcif(std::string_view bytes, const std::string& file, const ReadOptions& options,
                const ModelSink& sink);
void parse_gro(Lines& lines, const ReadOptions& options, const ModelSink& sink);

// Formats of points.
void parse_xyz(Lines& lines, const ReadOptions& options, const ChainSink& sink);
void parse_lammps(Lines& lines, const ReadOptions& options, const ChainSink& sink);
void parse_plain(Lines& lines, const ChainSink& sink);

// Formats of positions alone, in binary. Those of XTC and TRR files are turned from nanometres into
// ångström.
void parse_xtc(ByteStream& bytes, const std::string& file, FrameChains& chains);
void parse_trr(ByteStream& bytes, const std::string& file, FrameChains& chains);
void parse_dcd(ByteStream& bytes, const std::string& file, FrameChains& chains);

}  // namespace korvex::read

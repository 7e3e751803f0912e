// The formats: each parser goes through a whole text and hands over what it finds, model by model.
// A text that breaks its format's rules anywhere throws Error, naming the line. Frames are counted
// from 1.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include "korvex/chain.hpp"
#include "korvex/read.hpp"
#include "read/atom_site.hpp"
#include "read/raw_chain.hpp"

namespace korvex::read {

enum class Format { kPdb, kMmcif, kGro, kXyz, kLammps, kPlain };

// Tells the format by the content. Throws Error for binary and unknown content.
Format detect_format(std::string_view text, const std::string& file);

// True where the bytes begin as those of a file do that is not text.
bool is_binary(std::string_view bytes);

// True where the second line is a count and the third an atom in GRO columns.
bool looks_like_gro(std::string_view text, const std::string& file);

using ModelSink = std::function<void(Model&&)>;
using ChainSink = std::function<void(RawChain&&)>;

// Formats of atoms with names and residues.
void parse_pdb(std::string_view text, const std::string& file, const ReadOptions& options,
               const ModelSink& sink);
void parse_mmcif(std::string_view text, const std::string& file, const ReadOptions& options,
                 const ModelSink& sink);
void parse_gro(std::string_view text, const std::string& file, const ReadOptions& options,
               const ModelSink& sink);

// Formats of points.
void parse_xyz(std::string_view text, const std::string& file, const ReadOptions& options,
               const ChainSink& sink);
void parse_lammps(std::string_view text, const std::string& file, const ReadOptions& options,
                  const ChainSink& sink);
void parse_plain(std::string_view text, const std::string& file, const ChainSink& sink);

}  // namespace korvex::read

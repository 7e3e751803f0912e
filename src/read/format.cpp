#include <algorithm>
#include <array>

#include "korvex/error.hpp"
#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

// Kinds of content that are recognised only to say what to do about them.
struct Known {
  std::string_view magic;
  std::size_t offset;
  const char* advice;
};

constexpr std::array<Known, 7> kUnread = {{
    {"BZh", 0, "is compressed with bzip2; unpack it, or compress it with gzip"},
    {"\xfd"
     "7zXZ",
     0, "is compressed with xz; unpack it, or compress it with gzip"},
    {"\x28\xb5\x2f\xfd", 0, "is compressed with zstd; unpack it, or compress it with gzip"},
    {"PK\x03\x04", 0, "is a zip archive; unpack it"},
    {"ustar", 257, "is a tar archive; unpack it and give the files in it"},
    {"\xff\xfe", 0, "is UTF-16 text; save it as UTF-8"},
    {"\xfe\xff", 0, "is UTF-16 text; save it as UTF-8"},
}};

// Formats that are no text.
struct Binary {
  std::string_view magic;
  std::size_t offset;
  Format format;
};

constexpr std::array<Binary, 5> kBinary = {{
    {"CORD", 4, Format::kDcd},
    {"CORD", 8, Format::kDcd},
    {std::string_view("\0\0\x07\xcb", 4), 0, Format::kXtc},
    {std::string_view("\0\0\x07\xe7", 4), 0, Format::kXtc},
    {std::string_view("\0\0\x07\xc9", 4), 0, Format::kTrr},
}};

bool has_magic(std::string_view bytes, std::string_view magic, std::size_t offset) {
  return bytes.size() >= offset && bytes.substr(offset).starts_with(magic);
}

constexpr std::array<std::string_view, 38> kPdbRecords = {
    "HEADER", "OBSLTE", "TITLE",  "SPLIT",  "CAVEAT", "COMPND", "SOURCE", "KEYWDS",
    "EXPDTA", "NUMMDL", "MDLTYP", "AUTHOR", "REVDAT", "SPRSDE", "JRNL",   "REMARK",
    "DBREF",  "SEQADV", "SEQRES", "MODRES", "HET",    "HETNAM", "HETSYN", "FORMUL",
    "HELIX",  "SHEET",  "SSBOND", "LINK",   "CISPEP", "SITE",   "CRYST1", "ORIGX1",
    "SCALE1", "MTRIX1", "MODEL",  "ATOM",   "HETATM", "USER"};

// What to do about bytes of a known kind; nothing for others.
const char* advice_for(std::string_view bytes) {
  for (const Known& known : kUnread)
    if (has_magic(bytes, known.magic, known.offset)) return known.advice;
  return nullptr;
}

void refuse_binary(std::string_view text, const std::string& file) {
  if (const char* advice = advice_for(text)) fail_at(file, 0, advice);
  const std::size_t zero = text.find('\0');
  if (zero == std::string_view::npos) return;
  const auto before =
      std::count(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(zero), '\n');
  fail_not_text(file, static_cast<std::size_t>(before) + 1);
}

bool is_mmcif_start(std::string_view line) {
  constexpr std::string_view kStart = "data_";
  return line.size() >= kStart.size() &&
         std::equal(kStart.begin(), kStart.end(), line.begin(), [](char wanted, char c) {
           return wanted == (c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
         });
}

bool is_pdb_record(std::string_view line) {
  const std::string_view name = trimmed(columns(line, 1, 6));
  if (std::find(kPdbRecords.begin(), kPdbRecords.end(), name) != kPdbRecords.end()) return true;
  // Six-digit serial numbers run into the record's name.
  return line.starts_with("HETATM") || (line.starts_with("ATOM ") && line.size() >= 27);
}

// A PDB file may begin with anything; its atoms tell it.
bool has_pdb_atoms(std::string_view text, const std::string& file) {
  Lines lines(text, file);
  while (lines.next())
    if (lines.line().starts_with("ATOM  ") || lines.line().starts_with("HETATM")) return true;
  return false;
}

}  // namespace

namespace {

// A map of MessagePack, of up to 15 or of more keys, one of which has the blocks of BinaryCIF.
bool is_bcif(std::string_view bytes) {
  if (bytes.empty()) return false;
  const auto first = static_cast<unsigned char>(bytes[0]);
  const bool is_map = (first > 0x80 && first < 0x90) || first == 0xde || first == 0xdf;
  constexpr std::size_t kTelling = 65536;
  return is_map && bytes.substr(0, kTelling).find("dataBlocks") != std::string_view::npos;
}

}  // namespace

std::optional<Format> binary_format(std::string_view bytes) {
  for (const Binary& binary : kBinary)
    if (has_magic(bytes, binary.magic, binary.offset)) return binary.format;
  if (is_bcif(bytes)) return Format::kBcif;
  return {};
}

bool is_binary(std::string_view bytes) {
  return advice_for(bytes) != nullptr || binary_format(bytes).has_value();
}

Format detect_format(std::string_view text, const std::string& file) {
  if (const std::optional<Format> binary = binary_format(text)) return *binary;
  refuse_binary(text, file);
  if (looks_like_gro(text, file)) return Format::kGro;
  Lines lines(text, file);
  bool comment = false;
  do {
    if (!lines.next_filled()) fail_at(file, 0, "holds no atoms; give a chain's coordinates");
    comment = trimmed(lines.line()).starts_with('#');
  } while (comment);
  const std::string_view first = trimmed(lines.line());
  if (is_mmcif_start(first)) return Format::kMmcif;
  if (first.starts_with("ITEM:")) return Format::kLammps;
  if (is_pdb_record(lines.line())) return Format::kPdb;
  std::string_view rest = first;
  const std::string_view word = take_word(rest);
  if (to_number(word)) return trimmed(rest).empty() ? Format::kXyz : Format::kPlain;
  if (has_pdb_atoms(text, file)) return Format::kPdb;
  lines.fail("the format is not known: the first line reads " + in_quotes(first) +
             "; give PDB, mmCIF, GRO, XYZ, a LAMMPS dump or plain text with `id x y z` or `x y z` "
             "in each line");
}

}  // namespace korvex::read

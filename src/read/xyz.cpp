// XYZ files: frames of a count, a comment and that many lines `El x y z`; what follows on an atom's
// line is passed over. In an extended XYZ file the comment may say in which columns the positions
// are.
#include <algorithm>
#include <array>

#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

// The word, counted from 0, at which the three coordinates begin, and the one that names the atom.
struct Layout {
  std::size_t name = 0;
  std::size_t position = 1;
};

// Reads `Properties=species:S:1:pos:R:3:...` of an extended XYZ comment.
Layout layout_of(std::string_view comment, const Lines& lines) {
  constexpr std::string_view kKey = "Properties=";
  const std::size_t found = comment.find(kKey);
  Layout layout;
  if (found == std::string_view::npos) return layout;
  comment.remove_prefix(found + kKey.size());
  std::string_view value = take_word(comment);
  if (value.starts_with('"')) value.remove_prefix(1);
  if (value.ends_with('"')) value.remove_suffix(1);
  const auto field = [&value] {
    const std::size_t end = value.find(':');
    const std::string_view taken = value.substr(0, end);
    value.remove_prefix(end == std::string_view::npos ? value.size() : end + 1);
    return taken;
  };
  std::size_t column = 0;
  while (!value.empty()) {
    const std::string_view name = field();
    field();
    const std::optional<std::int64_t> width = to_integer(field());
    if (!width || *width < 1 || *width > 1000) break;
    if (name == "species") layout.name = column;
    if (name == "pos" && *width == 3) {
      layout.position = column;
      return layout;
    }
    column += static_cast<std::size_t>(*width);
  }
  lines.fail("Properties= names no column `pos:R:3`; write the frame with one");
}

// What stands in quotes behind `key` in an extended XYZ comment; empty where it is not there.
std::string_view quoted_after(std::string_view comment, std::string_view key) {
  const std::size_t found = comment.find(key);
  if (found == std::string_view::npos) return {};
  comment.remove_prefix(found + key.size());
  return comment.substr(0, comment.find('"'));
}

// Reads `Lattice="ax ay az bx by bz cx cy cz"` and `pbc="T T F"`; no cell where the former is not
// there or holds other than nine numbers.
Cell cell_in(std::string_view comment) {
  std::string_view numbers = quoted_after(comment, "Lattice=\"");
  std::string_view periodic = quoted_after(comment, "pbc=\"");
  Cell cell;
  for (std::size_t edge = 0; edge < 3; ++edge) {
    std::array<double, 3> xyz{};
    for (double& value : xyz) {
      const std::optional<double> number = to_number(take_word(numbers));
      if (!number) return {};
      value = *number;
    }
    const std::string_view repeats = take_word(periodic);
    if (repeats.empty() || repeats[0] == 'T') cell.edges.push_back({xyz[0], xyz[1], xyz[2]});
  }
  return cell;
}

// Reads `Time=`, `time=` or `t=`, and `Step=` or `step=`.
void read_time(std::string_view comment, Chain& chain) {
  for (const char* key : {"Time=", "time=", "t="})
    if (!chain.time) chain.time = number_after(comment, key);
  for (const char* key : {"Step=", "step="})
    if (!chain.step) chain.step = integer_after(comment, key);
}

// Reads one atom's line; false when it is not the chosen kind.
bool read_atom(const Lines& lines, const Layout& layout, const ChosenAtoms& chosen, Chain& chain,
               std::int32_t number) {
  std::string_view rest = lines.line();
  std::string_view name;
  std::array<std::string_view, 3> words;
  for (std::size_t column = 0; column < std::max(layout.name + 1, layout.position + 3); ++column) {
    const std::string_view word = take_word(rest);
    if (word.empty()) {
      lines.fail("expected `El x y z`, but found " + in_quotes(trimmed(lines.line())) +
                 "; write one atom a line");
    }
    if (column == layout.name) name = word;
    if (column >= layout.position && column < layout.position + 3)
      words[column - layout.position] = word;
  }
  const Point point{coordinate(words[0], 'x', lines), coordinate(words[1], 'y', lines),
                    coordinate(words[2], 'z', lines)};
  if (!chosen.empty() && !chosen.has(name)) return false;
  chain.points.push_back(point);
  chain.residues.push_back({number, ' ', std::string(name)});
  return true;
}

}  // namespace

void parse_xyz(Lines& lines, const ReadOptions& options, const ChainSink& sink) {
  const ChosenAtoms chosen(options.atoms);
  std::int64_t frame = 0;
  while (lines.next_filled()) {
    const std::optional<std::int32_t> count = to_int32(trimmed(lines.line()));
    if (!count || *count < 0) {
      lines.fail("expected the number of atoms of a frame, but found " +
                 in_quotes(trimmed(lines.line())));
    }
    const std::size_t count_line = lines.number();
    const bool has_comment = lines.next();
    const Layout layout = has_comment ? layout_of(lines.line(), lines) : Layout{};
    RawChain raw;
    Chain& chain = raw.chain;
    if (has_comment) {
      raw.cell = cell_in(lines.line());
      read_time(lines.line(), chain);
    }
    chain.model = ++frame;
    for (std::int32_t i = 0; i < *count; ++i) {
      if (!lines.next()) {
        lines.fail("the file ends after " + std::to_string(i) + " of the " +
                   std::to_string(*count) + " atoms that line " + std::to_string(count_line) +
                   " announces; it may be cut short: copy it again");
      }
      read_atom(lines, layout, chosen, chain, i + 1);
    }
    if (!chain.points.empty()) sink(std::move(raw));
  }
}

}  // namespace korvex::read

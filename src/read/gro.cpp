// GRO files: frames of a title, a count, that many atoms in fixed columns and a box. The columns of
// the coordinates are as wide as the distance between their decimal points. Lengths in nanometres.

#include <vector>

#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

constexpr std::size_t kCoordinates = 20;  // columns before the first coordinate
constexpr double kAngstromPerNanometre = 10;

// The width of one coordinate; nothing where the line has not three.
std::optional<std::size_t> coordinate_width(std::string_view line) {
  if (line.size() <= kCoordinates) return {};
  const std::size_t first = line.find('.', kCoordinates);
  if (first == std::string_view::npos) return {};
  const std::size_t second = line.find('.', first + 1);
  if (second == std::string_view::npos) return {};
  const std::size_t width = second - first;
  if (line.size() < kCoordinates + 3 * width) return {};
  return width;
}

// True where the coordinates stand in columns of this width and end with them.
bool are_in_columns(std::string_view line, std::size_t width) {
  if (coordinate_width(line) != width) return false;
  const std::size_t end = kCoordinates + 3 * width;
  const bool continues = line.size() > end && line[end] >= '0' && line[end] <= '9';
  const std::size_t third = line.find('.', kCoordinates) + 2 * width;
  return !continues && third < end && line[third] == '.';
}

// Atoms of a frame come without chain names: where residue numbers fall, a chain begins. They wrap
// after five digits, which is no fall.
class ChainCounter {
 public:
  std::string key(std::int32_t number) {
    constexpr std::int32_t kWrapped = 99999;
    if (number < last_ && last_ != kWrapped) ++chain_;
    last_ = number;
    return std::to_string(chain_);
  }

 private:
  std::int32_t last_ = 0;
  int chain_ = 0;
};

AtomSite read_atom(const Lines& lines, std::size_t width) {
  const std::string_view line = lines.line();
  AtomSite site;
  const std::string_view number = trimmed(columns(line, 1, 5));
  if (!are_in_columns(line, width) || !to_int32(number)) {
    lines.fail(
        "expected an atom in GRO columns (residue number, residue, atom, atom number, x, y, "
        "z), but found " +
        in_quotes(line));
  }
  site.number = *to_int32(number);
  site.residue_name = trimmed(columns(line, 6, 10));
  site.name = trimmed(columns(line, 11, 15));
  double xyz[3];
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const std::size_t first = kCoordinates + 1 + axis * width;
    const std::string_view field = trimmed(columns(line, first, first + width - 1));
    xyz[axis] = kAngstromPerNanometre * coordinate(field, "xyz"[axis], lines);
  }
  site.position = {xyz[0], xyz[1], xyz[2]};
  return site;
}

// The numbers of a line, apart by blanks or, where wide ones leave none, by columns as wide as the
// distance between the first two decimal points. Empty where there is anything else.
std::vector<double> box_numbers(std::string_view line) {
  line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
  std::vector<double> numbers;
  std::string_view rest = line;
  for (std::string_view word = take_word(rest); !word.empty(); word = take_word(rest)) {
    if (!to_number(word)) break;
    numbers.push_back(*to_number(word));
  }
  if (numbers.size() == 3 || numbers.size() == 9) return numbers;
  const std::size_t first = line.find('.');
  const std::size_t second = first == std::string_view::npos ? first : line.find('.', first + 1);
  if (second == std::string_view::npos) return {};
  const std::size_t width = second - first;
  numbers.clear();
  for (std::size_t begin = 0; begin < line.size(); begin += width) {
    const std::optional<double> number = to_number(trimmed(line.substr(begin, width)));
    if (!number) return {};
    numbers.push_back(*number);
  }
  return numbers;
}

// The box closes a frame; without it the frame is cut short.
Cell read_box(const Lines& lines) {
  std::vector<double> box = box_numbers(lines.line());
  if (box.size() != 3 && box.size() != 9)
    lines.fail("expected the 3 or 9 numbers of the box, but found " + in_quotes(lines.line()));
  box.resize(9);
  for (double& length : box) length *= kAngstromPerNanometre;
  return {{{box[0], box[3], box[4]}, {box[5], box[1], box[6]}, {box[7], box[8], box[2]}}};
}

}  // namespace

bool looks_like_gro(std::string_view text, const std::string& file) {
  Lines lines(text, file);
  if (!lines.next() || !lines.next() || !to_int32(trimmed(lines.line())) || !lines.next())
    return false;
  return coordinate_width(lines.line()) && to_int32(trimmed(columns(lines.line(), 1, 5)));
}

void parse_gro(Lines& lines, const ReadOptions& options, const ModelSink& sink) {
  const ChosenAtoms chosen(options.atoms);
  for (std::int64_t frame = 1; !lines.only_blanks_left(); ++frame) {
    lines.next();
    const std::size_t title = lines.number();
    const std::optional<double> time = number_after(lines.line(), "t=");
    const std::optional<std::int64_t> step = integer_after(lines.line(), "step=");
    if (!lines.next())
      lines.fail("the file ends after a title; it may be cut short: copy it again");
    const std::optional<std::int32_t> count = to_int32(trimmed(lines.line()));
    if (!count || *count < 0) {
      lines.fail("expected the number of atoms of the frame that line " + std::to_string(title) +
                 " begins, but found " + in_quotes(lines.line()));
    }
    Model model;
    model.number = frame;
    model.time = time;
    model.step = step;
    ChainCounter chains;
    std::size_t width = 0;
    for (std::int32_t i = 0; i < *count; ++i) {
      if (!lines.next()) {
        lines.fail("the file ends after " + std::to_string(i) + " of " + std::to_string(*count) +
                   " atoms; it may be cut short: copy it again");
      }
      if (i == 0) width = coordinate_width(lines.line()).value_or(0);
      AtomSite site = read_atom(lines, width);
      site.chain = chains.key(site.number);
      site.place = model.size++;
      if (matters_for_trace(site.name, chosen)) model.atoms.push_back(std::move(site));
    }
    if (!lines.next())
      lines.fail("the file ends before the box of its frame; it may be cut short: copy it again");
    model.cell = read_box(lines);
    sink(std::move(model));
  }
}

}  // namespace korvex::read

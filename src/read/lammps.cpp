// LAMMPS text dumps: frames of sections that begin with `ITEM:`. One chain a molecule and frame,
// its atoms in the order of their ids.
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "read/parsers.hpp"
#include "read/text.hpp"
#include "read/topology.hpp"

namespace korvex::read {
namespace {

// A periodic box: its edges are a = (ax, 0, 0), b = (bx, by, 0), c = (cx, cy, cz).
struct Box {
  Point origin;
  Point a;
  Point b;
  Point c;
  std::array<bool, 3> periodic{};
  bool known = false;

  Point place(double u, double v, double w) const { return origin + (u * a + v * b + w * c); }
  Point images(double i, double j, double k) const { return i * a + j * b + k * c; }

  // The whole box vectors to add to a point so that it lies nearest to one it is `apart` from.
  Point shift(Point apart) const {
    Point moved;
    if (periodic[2] && c.z > 0) moved = moved - std::round(apart.z / c.z) * c;
    if (periodic[1] && b.y > 0) moved = moved - std::round((apart.y + moved.y) / b.y) * b;
    if (periodic[0] && a.x > 0) moved = moved - std::round((apart.x + moved.x) / a.x) * a;
    return moved;
  }
};

// How the columns of a frame give positions.
struct Columns {
  std::vector<std::string> names;
  std::array<std::size_t, 3> position{};
  std::array<std::size_t, 3> image{};
  std::size_t id = 0;
  std::optional<std::size_t> molecule;
  std::optional<std::size_t> kind;  // element or type
  bool scaled = false;
  bool has_images = false;
  bool wrapped = false;  // no way to tell the image
};

struct Bead {
  std::int32_t id = 0;
  Point point;
  std::string kind;
};

class LammpsParser {
 public:
  LammpsParser(Lines& lines, const ReadOptions& options, const ChainSink& sink)
      : lines_(lines), chosen_(options.atoms), unwrap_(options.unwrap), sink_(sink) {
    if (!options.topology.empty()) topology_ = read_topology(options.topology);
  }

  void parse() {
    while (lines_.next_filled()) {
      std::string_view rest = lines_.line();
      if (take_word(rest) != "ITEM:")
        lines_.fail("expected `ITEM: ...`, but found " + in_quotes(lines_.line()));
      const std::string_view item = trimmed(rest);
      if (item.starts_with("ATOMS")) {
        read_atoms(item.substr(5));
      } else if (item == "NUMBER OF ATOMS") {
        read_count();
      } else if (item.starts_with("BOX BOUNDS")) {
        read_box(item.substr(10));
      } else if (item == "TIMESTEP") {
        in_frame_ = true;
        need_line("the time step");
        step_ = to_integer(trimmed(lines_.line()));
        time_.reset();
      } else if (item == "UNITS") {
        need_line("a value");
      } else if (item == "TIME") {
        need_line("the time");
        time_ = to_number(trimmed(lines_.line()));
        if (time_ && !std::isfinite(*time_)) time_.reset();
      } else {
        lines_.fail("the section " + in_quotes(item) +
                    " is not one of an atom dump; write it with `dump custom`");
      }
    }
    if (in_frame_) lines_.fail("the file ends within a frame; it may be cut short: copy it again");
  }

 private:
  void need_line(const char* what) {
    if (!lines_.next()) {
      lines_.fail(std::string("the file ends where ") + what +
                  " belongs; it may be cut short: copy it again");
    }
  }

  void read_count() {
    need_line("the number of atoms");
    count_ = to_int32(trimmed(lines_.line()));
    if (!count_ || *count_ < 0)
      lines_.fail(in_quotes(lines_.line()) + " stands where the number of atoms belongs");
  }

  // The bounds of a tilted box are those of the upright box around it.
  void read_box(std::string_view heading) {
    box_ = Box{};
    const bool tilted = heading.find("xy") != std::string_view::npos;
    if (heading.find("abc") != std::string_view::npos)
      lines_.fail("boxes of general orientation are not read; dump without `triclinic/general`");
    std::string_view rest = heading;
    std::size_t axis = 0;
    for (std::string_view word = take_word(rest); !word.empty(); word = take_word(rest)) {
      if (word == "xy" || word == "xz" || word == "yz") continue;
      if (axis < 3) box_.periodic[axis++] = word == "pp";
    }
    std::array<std::array<double, 3>, 3> rows{};
    for (std::array<double, 3>& row : rows) {
      need_line("the bounds of the box");
      rest = lines_.line();
      for (std::size_t i = 0; i < (tilted ? 3U : 2U); ++i) {
        const std::optional<double> value = to_number(take_word(rest));
        if (!value || !std::isfinite(*value))
          lines_.fail("expected the bounds of the box, but found " + in_quotes(lines_.line()));
        row[i] = *value;
      }
    }
    const double xy = rows[0][2];
    const double xz = rows[1][2];
    const double yz = rows[2][2];
    const double x_low = rows[0][0] - std::min({0.0, xy, xz, xy + xz});
    const double x_high = rows[0][1] - std::max({0.0, xy, xz, xy + xz});
    const double y_low = rows[1][0] - std::min(0.0, yz);
    const double y_high = rows[1][1] - std::max(0.0, yz);
    box_.origin = {x_low, y_low, rows[2][0]};
    box_.a = {x_high - x_low, 0, 0};
    box_.b = {xy, y_high - y_low, 0};
    box_.c = {xz, yz, rows[2][1] - rows[2][0]};
    box_.known = true;
  }

  static std::optional<std::size_t> place_of(const Columns& columns, std::string_view name) {
    const auto found = std::find(columns.names.begin(), columns.names.end(), name);
    if (found == columns.names.end()) return {};
    return static_cast<std::size_t>(found - columns.names.begin());
  }

  static bool find_three(const Columns& columns, const std::array<const char*, 3>& names,
                         std::array<std::size_t, 3>& places) {
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const std::optional<std::size_t> place = place_of(columns, names[axis]);
      if (!place) return false;
      places[axis] = *place;
    }
    return true;
  }

  Columns read_columns(std::string_view heading) const {
    Columns columns;
    for (std::string_view word = take_word(heading); !word.empty(); word = take_word(heading))
      columns.names.emplace_back(word);
    columns.has_images = find_three(columns, {"ix", "iy", "iz"}, columns.image);
    if (find_three(columns, {"xu", "yu", "zu"}, columns.position)) {
      columns.has_images = false;
    } else if (find_three(columns, {"xsu", "ysu", "zsu"}, columns.position)) {
      columns.scaled = true;
      columns.has_images = false;
    } else if (find_three(columns, {"x", "y", "z"}, columns.position)) {
      columns.wrapped = !columns.has_images;
    } else if (find_three(columns, {"xs", "ys", "zs"}, columns.position)) {
      columns.scaled = true;
      columns.wrapped = !columns.has_images;
    } else {
      lines_.fail("no columns xu yu zu, xsu ysu zsu, x y z or xs ys zs; dump one of them");
    }
    const std::optional<std::size_t> id = place_of(columns, "id");
    if (!id) lines_.fail("no column `id`, which tells the order of the atoms; dump it");
    columns.id = *id;
    columns.molecule = place_of(columns, "mol");
    columns.kind = place_of(columns, "element");
    if (!columns.kind) columns.kind = place_of(columns, "type");
    if ((columns.scaled || columns.has_images) && !box_.known)
      lines_.fail("scaled or wrapped positions need `ITEM: BOX BOUNDS` before them");
    return columns;
  }

  Point position_of(const Columns& columns, const std::vector<std::string_view>& words) const {
    std::array<double, 3> value{};
    std::array<double, 3> image{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      value[axis] = coordinate(words[columns.position[axis]], "xyz"[axis], lines_);
      if (!columns.has_images) continue;
      const std::optional<std::int32_t> count = to_int32(words[columns.image[axis]]);
      if (!count) {
        lines_.fail(in_quotes(words[columns.image[axis]]) +
                    " stands where an image count belongs; give a whole number");
      }
      image[axis] = *count;
    }
    const Point inside = columns.scaled ? box_.place(value[0], value[1], value[2])
                                        : Point{value[0], value[1], value[2]};
    return columns.has_images ? inside + box_.images(image[0], image[1], image[2]) : inside;
  }

  void read_atoms(std::string_view heading) {
    if (!count_) lines_.fail("`ITEM: NUMBER OF ATOMS` must come before the atoms");
    const Columns columns = read_columns(heading);
    std::map<std::string, std::vector<Bead>, std::less<>> molecules;
    std::vector<std::string> order;
    std::vector<std::string_view> words(columns.names.size());
    for (std::int32_t i = 0; i < *count_; ++i) {
      need_line("an atom");
      std::string_view rest = lines_.line();
      for (std::string_view& word : words) word = take_word(rest);
      if (words.back().empty()) {
        lines_.fail("expected " + std::to_string(words.size()) + " columns, but found " +
                    in_quotes(lines_.line()));
      }
      const std::optional<std::int32_t> id = to_int32(words[columns.id]);
      if (!id) lines_.fail(in_quotes(words[columns.id]) + " stands where the id belongs");
      Bead bead{*id, position_of(columns, words), {}};
      if (columns.kind) bead.kind = words[*columns.kind];
      if (!chosen_.empty() && !chosen_.has(bead.kind)) continue;
      const std::string_view molecule =
          columns.molecule && !topology_ ? words[*columns.molecule] : std::string_view{};
      auto found = molecules.find(molecule);
      if (found == molecules.end()) {
        found = molecules.emplace(std::string(molecule), std::vector<Bead>{}).first;
        order.emplace_back(molecule);
      }
      found->second.push_back(std::move(bead));
    }
    count_.reset();
    in_frame_ = false;
    ++frame_;
    emit(molecules, order, unwrap_ && columns.wrapped && box_.known);
  }

  // Molecules in the order of their numbers, where they are numbers.
  template <typename Molecules>
  void emit(Molecules& molecules, std::vector<std::string>& order, bool wrapped) const {
    std::stable_sort(order.begin(), order.end(), [](const std::string& a, const std::string& b) {
      constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max();
      return to_integer(a).value_or(kLast) < to_integer(b).value_or(kLast);
    });
    for (const std::string& name : order) {
      std::vector<Bead>& beads = molecules.find(name)->second;
      std::sort(beads.begin(), beads.end(),
                [](const Bead& a, const Bead& b) { return a.id < b.id; });
      const auto twice = std::adjacent_find(
          beads.begin(), beads.end(), [](const Bead& a, const Bead& b) { return a.id == b.id; });
      if (twice != beads.end()) {
        lines_.fail("atom id " + std::to_string(twice->id) +
                    " occurs twice in the frame that ends here");
      }
      if (topology_)
        emit_strands(beads, wrapped);
      else
        emit_chain(name, beads, wrapped, false);
    }
  }

  // `beads` are in the order of their ids.
  void emit_strands(const std::vector<Bead>& beads, bool wrapped) const {
    std::vector<std::int32_t> ids;
    for (const Bead& bead : beads) ids.push_back(bead.id);
    for (const Backbone& strand : backbones_of(*topology_, ids, lines_.file())) {
      std::vector<Bead> ordered;
      for (const std::int32_t id : strand.atoms) {
        const auto place = std::lower_bound(ids.begin(), ids.end(), id) - ids.begin();
        ordered.push_back(beads[static_cast<std::size_t>(place)]);
      }
      emit_chain(strand.name, ordered, wrapped, strand.ring);
    }
  }

  void emit_chain(const std::string& name, std::vector<Bead>& beads, bool wrapped,
                  bool ring) const {
    RawChain raw;
    raw.ends_bonded = ring;
    raw.mended.resize(wrapped ? beads.size() : 0);
    raw.chain = chain_of(name, beads, wrapped, raw.mended);
    sink_(std::move(raw));
  }

  Chain chain_of(const std::string& name, std::vector<Bead>& beads, bool wrapped,
                 std::vector<bool>& mended) const {
    Chain chain;
    chain.name = name;
    chain.model = frame_;
    chain.time = time_;
    chain.step = step_;
    Point shift;
    for (Bead& bead : beads) {
      if (wrapped && !chain.points.empty()) {
        const Point before = std::exchange(shift, box_.shift(bead.point - chain.points.back()));
        mended[chain.points.size()] = shift != before;
        bead.point = bead.point + shift;
      }
      chain.points.push_back(bead.point);
      chain.residues.push_back({bead.id, ' ', std::move(bead.kind)});
    }
    return chain;
  }

  Lines& lines_;
  ChosenAtoms chosen_;
  bool unwrap_;
  const ChainSink& sink_;
  std::optional<Topology> topology_;
  std::optional<std::int32_t> count_;
  Box box_;
  std::int64_t frame_ = 0;
  bool in_frame_ = false;
  std::optional<double> time_;
  std::optional<std::int64_t> step_;
};

}  // namespace

void parse_lammps(Lines& lines, const ReadOptions& options, const ChainSink& sink) {
  LammpsParser(lines, options, sink).parse();
}

}  // namespace korvex::read

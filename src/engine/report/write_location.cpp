#include <array>
#include <iomanip>
#include <nlohmann/json.hpp>
#include <ostream>
#include <sstream>

#include "korvex/save.hpp"

namespace korvex {
namespace {

using Json = nlohmann::ordered_json;

// A location with the words and labels of its chain.
class Writer {
 public:
  Writer(const Location& location, const Chain& chain, std::ostream& out)
      : location_(location), chain_(chain), out_(out) {}

  void text() const {
    out_ << title() << ": " << location_.type << ", share " << rounded(location_.share);
    if (location_.factors.size() > 1) {
      out_ << ", composite of";
      const char* separator = " ";
      for (const std::string& factor : location_.factors) {
        out_ << separator << factor;
        separator = " and ";
      }
    }
    out_ << '\n';
    for (const KnotPlace& place : location_.knots) {
      out_ << "  " << place.type << ": core " << labels(place.core) << " (" << place.core.length()
           << " residues, share " << rounded(place.core_share) << "), tails " << place.tail_before
           << " and " << place.tail_after << " residues, in " << place.sub_chains
           << " sub-chains, the longest " << labels(place.longest) << '\n';
      if (place.undone_before) undone(place, *place.undone_before);
      if (place.undone_after) undone(place, *place.undone_after);
    }
  }

  void tsv() const {
    if (location_.knots.empty()) {
      out_ << chain_.source << '\t' << chain_.model << '\t' << chain_.name << '\t' << location_.type
           << "\t\t\t\t" << location_.share << "\t\t\t\t\t\t\t\n";
    }
    for (const KnotPlace& place : location_.knots) {
      out_ << chain_.source << '\t' << chain_.model << '\t' << chain_.name << '\t' << place.type
           << '\t' << label(place.core.first) << '\t' << label(place.core.last) << '\t'
           << place.core_share << '\t' << place.whole_share << '\t' << place.tail_before << '\t'
           << place.tail_after << '\t' << place.sub_chains << '\t' << label(place.longest.first)
           << '\t' << label(place.longest.last) << '\t'
           << (place.undone_before ? label(place.undone_before->residue) : "") << '\t'
           << (place.undone_after ? label(place.undone_after->residue) : "") << '\n';
    }
  }

  void json() const {
    Json json;
    json["source"] = chain_.source;
    json["model"] = chain_.model;
    json["chain"] = chain_.name;
    json["residues"] = chain_.points.size();
    json["type"] = location_.type;
    json["share"] = location_.share;
    json["factors"] = location_.factors;
    json["knots"] = Json::array();
    for (const KnotPlace& place : location_.knots) json["knots"].push_back(place_json(place));
    out_ << json.dump(2, ' ', false, Json::error_handler_t::replace);
  }

  void pymol() const {
    out_ << "# " << title() << '\n' << "color grey80, " << pymol_chain("") << '\n';
    for (std::size_t k = 0; k < location_.knots.size(); ++k) {
      const KnotPlace& place = location_.knots[k];
      const std::string name = pymol_name("core", place.type);
      out_ << "select " << name << ", " << pymol_chain(pymol_range(place.core)) << '\n'
           << "color " << color(k) << ", " << name << '\n';
      for (const auto& undone : {place.undone_before, place.undone_after})
        if (undone)
          out_ << "select " << pymol_name("loop", place.type) << ", "
               << pymol_chain(pymol_range(undone->loop)) << '\n'
               << "color yellow, " << pymol_name("loop", place.type) << '\n';
    }
    out_ << "deselect\n";
  }

  void chimerax() const {
    out_ << "# " << title() << '\n' << "color " << chimerax_chain() << " lightgray\n";
    for (std::size_t k = 0; k < location_.knots.size(); ++k) {
      const KnotPlace& place = location_.knots[k];
      out_ << "# " << place.type << '\n'
           << "color " << chimerax_chain() << ':' << chimerax_range(place.core) << ' ' << color(k)
           << '\n';
      for (const auto& undone : {place.undone_before, place.undone_after})
        if (undone)
          out_ << "color " << chimerax_chain() << ':' << chimerax_range(undone->loop)
               << " yellow\n";
    }
  }

 private:
  std::string label(std::int32_t residue) const {
    return residue_label(chain_.residues, static_cast<std::size_t>(residue));
  }
  std::string labels(const Stretch& stretch) const {
    const char* dash = stretch_is_negative(stretch) ? " to " : "-";
    return label(stretch.first) + dash + label(stretch.last);
  }
  bool stretch_is_negative(const Stretch& stretch) const {
    return label(stretch.first).front() == '-' || label(stretch.last).front() == '-';
  }
  // PyMOL takes a minus sign for part of a number only behind a backslash.
  std::string pymol_label(std::int32_t residue) const {
    std::string own = label(residue);
    if (own.front() == '-') own.insert(own.begin(), '\\');
    return own;
  }
  std::string pymol_range(const Stretch& stretch) const {
    return " and resi " + pymol_label(stretch.first) + "-" + pymol_label(stretch.last);
  }

  std::string title() const {
    std::string title = chain_.source.empty() ? "chain" : chain_.source;
    if (chain_.model != 1) title += " model " + std::to_string(chain_.model);
    if (!chain_.name.empty()) title += " chain " + chain_.name;
    return title;
  }

  static std::string rounded(double share) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(2) << share;
    return text.str();
  }

  void undone(const KnotPlace& place, const Threading& threading) const {
    out_ << "    slipknot: with residue " << label(threading.residue) << " " << place.type
         << " becomes " << threading.becomes << "; loop " << labels(threading.loop) << ", tail "
         << labels(threading.tail) << '\n';
  }

  Json stretch_json(const Stretch& stretch) const {
    return {{"begin", label(stretch.first)},
            {"end", label(stretch.last)},
            {"begin_index", stretch.first},
            {"end_index", stretch.last}};
  }

  Json place_json(const KnotPlace& place) const {
    Json json;
    json["type"] = place.type;
    json["core"] = stretch_json(place.core);
    json["core_share"] = place.core_share;
    json["whole_share"] = place.whole_share;
    json["tail_before"] = place.tail_before;
    json["tail_after"] = place.tail_after;
    json["sub_chains"] = place.sub_chains;
    json["longest"] = stretch_json(place.longest);
    json["slipknot"] = place.slipknot();
    for (const auto& [name, undone] : {std::pair{"undone_before", place.undone_before},
                                       std::pair{"undone_after", place.undone_after}}) {
      if (!undone) continue;
      json[name] = {{"residue", label(undone->residue)},
                    {"residue_index", undone->residue},
                    {"becomes", undone->becomes},
                    {"loop", stretch_json(undone->loop)},
                    {"tail", stretch_json(undone->tail)}};
    }
    return json;
  }

  std::string pymol_chain(const std::string& range) const {
    return chain_.name.empty() ? "all" + range : "chain " + chain_.name + range;
  }
  std::string chimerax_range(const Stretch& stretch) const {
    return label(stretch.first) + "-" + label(stretch.last);
  }
  std::string chimerax_chain() const { return chain_.name.empty() ? "" : "/" + chain_.name; }

  // Chains of one file may have the same knot.
  std::string pymol_name(const std::string& part, const std::string& type) const {
    std::string name = part;
    for (const std::string& text : {chain_.name, type})
      if (!text.empty()) name.append("_").append(plain_name(text));
    return name;
  }

  // Letters, digits and underscores alone.
  static std::string plain_name(const std::string& type) {
    std::string name;
    for (const char c : type) {
      if (c == '+' || c == '-') {
        name += c == '+' ? 'p' : 'm';
      } else {
        name +=
            (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ? c : '_';
      }
    }
    return name;
  }

  static const char* color(std::size_t k) {
    constexpr std::array kColors{"red", "blue", "orange", "green", "purple", "cyan"};
    return kColors[k % kColors.size()];
  }

  const Location& location_;
  const Chain& chain_;
  std::ostream& out_;
};

}  // namespace

void write_location_head(LocationFormat format, std::ostream& out) {
  if (format != LocationFormat::kTsv) return;
  out << "source\tmodel\tchain\ttype\tcore_begin\tcore_end\tcore_share\twhole_share\t"
         "tail_before\ttail_after\tsub_chains\tlongest_begin\tlongest_end\tundone_before\t"
         "undone_after\n";
}

void write_location(const Location& location, const Chain& chain, LocationFormat format,
                    std::ostream& out) {
  const Writer writer(location, chain, out);
  switch (format) {
    case LocationFormat::kText:
      return writer.text();
    case LocationFormat::kTsv:
      return writer.tsv();
    case LocationFormat::kJson:
      return writer.json();
    case LocationFormat::kPymol:
      return writer.pymol();
    case LocationFormat::kChimerax:
      return writer.chimerax();
  }
}

}  // namespace korvex

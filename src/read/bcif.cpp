// BinaryCIF: the tables of mmCIF in MessagePack, each column packed by a chain of encodings.
// Source: D. Sehnal et al., PLoS Comput. Biol. 16, e1008247 (2020).
//
// Values become the words that mmCIF would have for them, so that both are understood alike.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <memory>
#include <utility>

#include "read/cif_links.hpp"
#include "read/cif_table.hpp"
#include "read/message_pack.hpp"
#include "read/text.hpp"
#include "read/xdr.hpp"

namespace korvex::read {
namespace {

// No table of a structure has more rows; counts beyond are damage.
constexpr std::int64_t kMostRows = std::int64_t{1} << 28;

// A column on its way through its encodings.
struct ColumnData {
  std::string_view bytes;              // before the first
  std::vector<std::int64_t> whole;     // whole numbers, or
  std::vector<double> real;            // others
  std::vector<std::string_view> text;  // or texts
  bool is_real = false;
  bool is_single = false;  // the others have single precision
  bool is_text = false;
};

class Decoder {
 public:
  explicit Decoder(const std::string& file) : file_(file) {}

  // What the value {data, encoding} stands for: encodings are undone from the last to the first.
  ColumnData decode(const Packed& packed, int depth = 0) const {
    ColumnData data;
    data.bytes = packed["data"].bytes;
    const std::vector<Packed>& encodings = packed["encoding"].items;
    if (depth > 2 || encodings.empty()) fail("a column without encodings");
    for (auto encoding = encodings.rbegin(); encoding != encodings.rend(); ++encoding)
      undo(*encoding, data, depth);
    return data;
  }

  [[noreturn]] void fail(const std::string& what) const {
    fail_at(file_, 0, "not well-formed BinaryCIF (" + what + "); copy or download the file again");
  }

 private:
  void undo(const Packed& encoding, ColumnData& data, int depth) const {
    const std::string_view kind = encoding["kind"].bytes;
    if (kind == "ByteArray") return undo_bytes(encoding["type"].integer, data);
    if (kind == "StringArray") return undo_texts(encoding, data, depth);
    if (data.is_real || data.is_text) fail("encodings that do not follow one another");
    if (kind == "FixedPoint") return undo_fixed_point(encoding["factor"].real, data);
    if (kind == "IntervalQuantization") return undo_intervals(encoding, data);
    if (kind == "RunLength") return undo_runs(encoding["srcSize"].integer, data);
    if (kind == "Delta") return undo_deltas(encoding["origin"].integer, data);
    if (kind == "IntegerPacking") return undo_packing(encoding, data);
    fail("the unknown encoding " + in_quotes(kind));
  }

  void undo_bytes(std::int64_t type, ColumnData& data) const {
    const bool is_real = type == 32 || type == 33;
    const std::int64_t kind =
        type > 3 ? type - 3 : type;  // of unsigned numbers that of signed ones
    if (!is_real && (kind < 1 || kind > 3)) fail("an unknown type of numbers");
    const std::size_t width = is_real ? (type == 32 ? 4 : 8) : std::size_t{1} << (kind - 1);
    if (data.bytes.size() % width != 0) fail("a column of a wrong length");
    Numbers numbers(data.bytes, false);
    const std::size_t count = data.bytes.size() / width;
    data.is_real = is_real;
    data.is_single = type == 32;
    for (std::size_t i = 0; i < count; ++i)
      if (is_real)
        data.real.push_back(numbers.real(type == 33));
      else
        data.whole.push_back(numbers.whole(width, type <= 3));
  }

  void undo_fixed_point(double factor, ColumnData& data) const {
    if (!(factor > 0)) fail("a fixed point without a factor");
    data.is_real = true;
    for (const std::int64_t value : data.whole)
      data.real.push_back(static_cast<double>(value) / factor);
    data.whole.clear();
  }

  void undo_intervals(const Packed& encoding, ColumnData& data) const {
    const double low = encoding["min"].real;
    const double steps = encoding["numSteps"].real;
    if (!(steps > 1)) fail("an interval without steps");
    const double step = (encoding["max"].real - low) / (steps - 1);
    data.is_real = true;
    for (const std::int64_t value : data.whole)
      data.real.push_back(low + step * static_cast<double>(value));
    data.whole.clear();
  }

  void undo_runs(std::int64_t size, ColumnData& data) const {
    if (data.whole.size() % 2 != 0 || size < 0 || size > kMostRows) fail("runs of a wrong length");
    std::vector<std::int64_t> values;
    for (std::size_t i = 0; i < data.whole.size(); i += 2) {
      const std::int64_t count = data.whole[i + 1];
      if (count < 0 || count > size - static_cast<std::int64_t>(values.size()))
        fail("runs of a wrong length");
      values.insert(values.end(), static_cast<std::size_t>(count), data.whole[i]);
    }
    data.whole = std::move(values);
  }

  static void undo_deltas(std::int64_t origin, ColumnData& data) {
    auto sum = static_cast<std::uint64_t>(origin);
    for (std::int64_t& value : data.whole) {
      sum += static_cast<std::uint64_t>(value);
      value = static_cast<std::int64_t>(sum);
    }
  }

  // A value at the end of the range of its bytes is to be added to the next one.
  void undo_packing(const Packed& encoding, ColumnData& data) const {
    const std::int64_t width = encoding["byteCount"].integer;
    const bool is_unsigned = encoding["isUnsigned"].integer != 0;
    if (width != 1 && width != 2) fail("numbers packed in a wrong number of bytes");
    const std::int64_t all = std::int64_t{1} << (8 * width);
    const std::int64_t upper = is_unsigned ? all - 1 : all / 2 - 1;
    const std::int64_t lower = is_unsigned ? -1 : -all / 2;
    std::vector<std::int64_t> values;
    std::int64_t sum = 0;
    for (const std::int64_t value : data.whole) {
      sum += value;
      if (value == upper || value == lower) continue;
      values.push_back(std::exchange(sum, 0));
    }
    data.whole = std::move(values);
  }

  // Texts behind one another, where each begins, and which of them each row has.
  void undo_texts(const Packed& encoding, ColumnData& data, int depth) const {
    const auto numbers = [&](const char* bytes, const char* encodings) {
      ColumnData part;
      part.bytes = bytes == nullptr ? data.bytes : encoding[bytes].bytes;
      const std::vector<Packed>& steps = encoding[encodings].items;
      if (depth > 0 || steps.empty()) fail("texts without encodings");
      for (auto step = steps.rbegin(); step != steps.rend(); ++step) undo(*step, part, depth + 1);
      if (part.is_real || part.is_text) fail("texts whose places are no whole numbers");
      return std::move(part.whole);
    };
    const std::vector<std::int64_t> offsets = numbers("offsets", "offsetEncoding");
    const std::vector<std::int64_t> rows = numbers(nullptr, "dataEncoding");
    const std::string_view all = encoding["stringData"].bytes;
    data.is_text = true;
    for (const std::int64_t row : rows) {
      if (row < 0) {
        data.text.emplace_back();
        continue;
      }
      const auto place = static_cast<std::size_t>(row);
      if (place + 1 >= offsets.size()) fail("a text that is not there");
      const std::int64_t begin = offsets[place];
      const std::int64_t end = offsets[place + 1];
      if (begin < 0 || end < begin || end > static_cast<std::int64_t>(all.size()))
        fail("a text that is not there");
      data.text.push_back(
          all.substr(static_cast<std::size_t>(begin), static_cast<std::size_t>(end - begin)));
    }
  }

  const std::string& file_;
};

// Words as mmCIF has them, one behind the other.
struct HeldWords {
  std::string text;

  CifValue add(std::string_view word) {
    const std::size_t begin = text.size();
    text += word;
    return {static_cast<std::uint32_t>(begin), static_cast<std::uint32_t>(word.size())};
  }

  CifValue add_text(std::string_view word) {
    const bool plain = !word.empty() && word != "?" && word != "." && word[0] != '\'' &&
                       word[0] != '"' && word[0] != ';';
    if (plain) return add(word);
    const CifValue value = add("'");
    add(word);
    add("'");
    return {value.begin, static_cast<std::uint32_t>(word.size() + 2)};
  }

  template <typename Number>
  CifValue add_number(Number number) {
    std::array<char, 64> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number).ptr;
    return add({digits.data(), static_cast<std::size_t>(end - digits.data())});
  }
};

// A category, whose values the words hold.
struct BinaryTable {
  std::vector<std::string> tags;
  std::vector<CifValue> values;
};

class TableReader {
 public:
  TableReader(const Decoder& decoder, const std::string& file) : decoder_(decoder), file_(file) {}

  // A category of a block, with the columns that are wanted; all where there are none.
  BinaryTable table(const Packed& block, std::string_view name, const CifColumns& wanted) {
    const std::vector<Packed>& categories = block["categories"].items;
    const auto category =
        std::find_if(categories.begin(), categories.end(),
                     [&](const Packed& one) { return lower(one["name"].bytes) == name; });
    if (category == categories.end()) return {};
    const std::int64_t rows = (*category)["rowCount"].integer;
    if (rows < 0 || rows > kMostRows) decoder_.fail("a table of a wrong length");
    std::vector<std::string> tags;
    std::vector<std::vector<CifValue>> columns;
    for (const Packed& column : (*category)["columns"].items) {
      const std::string tag = lower(column["name"].bytes);
      const bool is_wanted =
          wanted.empty() || std::find(wanted.begin(), wanted.end(), tag) != wanted.end();
      if (!is_wanted) continue;
      tags.push_back(tag);
      columns.push_back(values(column, static_cast<std::size_t>(rows)));
    }
    std::vector<CifValue> all;
    for (std::size_t row = 0; row < static_cast<std::size_t>(rows) && !columns.empty(); ++row)
      for (const std::vector<CifValue>& column : columns) all.push_back(column[row]);
    return {std::move(tags), std::move(all)};
  }

  std::shared_ptr<HeldWords> held() const { return held_; }

 private:
  static std::string lower(std::string_view name) {
    std::string text(name);
    for (char& c : text) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return text;
  }

  std::vector<CifValue> values(const Packed& column, std::size_t rows) {
    const ColumnData data = decoder_.decode(column["data"]);
    const std::size_t size = data.is_text   ? data.text.size()
                             : data.is_real ? data.real.size()
                                            : data.whole.size();
    const Packed& mask = column["mask"];
    const bool is_masked = mask.kind == Packed::Kind::kMap;
    const std::vector<std::int64_t> masks =
        is_masked ? decoder_.decode(mask).whole : std::vector<std::int64_t>();
    if (size != rows || (is_masked && masks.size() != rows))
      decoder_.fail("a column of a wrong length");
    if (held_->text.size() + 40 * rows > std::numeric_limits<std::uint32_t>::max())
      fail_at(file_, 0, "holds too much for one file; split it");
    std::vector<CifValue> found;
    for (std::size_t row = 0; row < rows; ++row)
      if (is_masked && masks[row] != 0)
        found.push_back(held_->add(masks[row] == 1 ? "." : "?"));
      else if (data.is_text)
        found.push_back(held_->add_text(data.text[row]));
      else if (!data.is_real)
        found.push_back(held_->add_number(data.whole[row]));
      else if (data.is_single)
        found.push_back(held_->add_number(static_cast<float>(data.real[row])));
      else
        found.push_back(held_->add_number(data.real[row]));
    return found;
  }

  const Decoder& decoder_;
  const std::string& file_;
  std::shared_ptr<HeldWords> held_ = std::make_shared<HeldWords>();
};

}  // namespace

CifBlock read_bcif(std::string_view bytes, const std::string& file, const CifColumns& wanted) {
  const Packed packed = read_message_pack(bytes, file);
  const Decoder decoder(file);
  for (const Packed& block : packed["dataBlocks"].items) {
    TableReader reader(decoder, file);
    std::array<BinaryTable, 6> tables = {
        reader.table(block, "_atom_site", wanted),
        reader.table(block, "_entity", {"id", "type"}),
        reader.table(block, "_struct_asym", {"id", "entity_id"}),
        reader.table(block, "_cell", {}),
        reader.table(block, "_ma_qa_metric", {"mode", "type"}),
        reader.table(block, "_struct_conn", {kLinkTags.begin(), kLinkTags.end()})};
    const std::vector<std::string>& tags = tables[0].tags;
    if (std::find(tags.begin(), tags.end(), "cartn_x") == tags.end()) continue;
    // The words have their places now that all of them are there.
    const char* const held = reader.held()->text.data();
    const auto made = [&](std::size_t i) {
      return CifTable(std::move(tables[i].tags), held, std::move(tables[i].values), 0, 0);
    };
    return {made(0), made(1), made(2), made(3), made(4), made(5), reader.held()};
  }
  fail_at(file, 0, "no _atom_site.Cartn_x: this BinaryCIF holds no atoms of a structure");
}

}  // namespace korvex::read

// A scanner of CIF for speed. Words are found by the edges of white space, 64 bytes at a time, and
// looked at only where they hold a character that may mean something. It follows the grammar of CIF
// 1.1 as gemmi does, without save frames; wherever it is in doubt it gives up.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <utility>

#include "read/cif_edges.hpp"
#include "read/cif_table.hpp"

namespace korvex::read {
namespace {

constexpr std::size_t kTileBytes = 64 * CifEdges::kBlock;  // whose edges are found at once

bool is_space(char c) { return c == ' ' || c == '\n' || c == '\t'; }

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool begins_as(std::string_view text, std::string_view lower_case) {
  return text.size() >= lower_case.size() &&
         std::equal(lower_case.begin(), lower_case.end(), text.begin(),
                    [](char wanted, char c) { return wanted == lowered(c); });
}

enum class WordKind { kEnd, kValue, kTag, kReserved, kComment, kUnclear };

// Places in a tile, in their order.
class Places {
 public:
  // Where to write them to, and what tells the end of what was written.
  std::uint32_t* begin() {
    next_ = places_.data();
    return places_.data();
  }
  void end_at(std::uint32_t* end) {
    end_ = end;
    *end = kNone;
  }

  std::size_t size() const { return static_cast<std::size_t>(end_ - next_); }
  bool empty() const { return next_ == end_; }
  std::uint32_t front() const { return *next_; }  // above all places where there is none
  std::uint32_t operator[](std::size_t i) const { return next_[i]; }
  std::uint32_t take() { return *next_++; }
  void drop(std::size_t count) { next_ += count; }
  void skip_below(std::size_t place) {
    while (*next_ < place && next_ != end_) ++next_;
  }

 private:
  static constexpr std::uint32_t kNone = std::numeric_limits<std::uint32_t>::max();
  std::array<std::uint32_t, kTileBytes + CifEdges::kBlock + CifEdges::kSlack> places_;
  std::uint32_t* end_ = places_.data();
  std::uint32_t* next_ = places_.data();
};

class WordScanner {
 public:
  explicit WordScanner(std::string_view text) : text_(text) { load(0); }

  // Moves to the next word that is no comment.
  WordKind next() {
    for (;;) {
      while (edges_.empty())
        if (!load_next()) return WordKind::kEnd;
      begin_ = edges_.take();
      if (edges_.empty()) return next_of_two_tiles();
      end_ = edges_.take();
      if (specials_.front() >= end_) return WordKind::kValue;
      const WordKind kind = kind_of_special();
      if (kind != WordKind::kComment) return kind;
    }
  }

  // The edges of the next `count` words, where all of them are plain values of this tile; else
  // null.
  const Places* plain(std::size_t count) const {
    const bool are = edges_.size() >= 2 * count && edges_[2 * count - 1] <= specials_.front();
    return are ? &edges_ : nullptr;
  }
  void drop(std::size_t count) { edges_.drop(2 * count); }

  std::size_t begin() const { return begin_; }
  std::size_t length() const { return end_ - begin_; }
  std::string_view word() const { return text_.substr(begin_, length()); }

 private:
  void load(std::size_t begin) {
    tile_ = begin;
    CifEdges found{edges_.begin(), specials_.begin(), begin > 0 && !is_space(text_[begin - 1])};
    const std::size_t size = std::min(text_.size() - begin, kTileBytes);
    const std::size_t blocks = size / CifEdges::kBlock;
    find_cif_edges(text_.data() + begin, blocks, static_cast<std::uint32_t>(begin), found);
    if (size < kTileBytes) {
      // White space is thought behind the text, so that every word ends.
      std::array<char, CifEdges::kBlock> rest;
      rest.fill(' ');
      const std::size_t read = blocks * CifEdges::kBlock;
      std::memcpy(rest.data(), text_.data() + begin + read, size - read);
      find_cif_edges(rest.data(), 1, static_cast<std::uint32_t>(begin + read), found);
    }
    edges_.end_at(found.edges);
    specials_.end_at(found.specials);
  }

  bool load_next() {
    if (tile_ + kTileBytes > text_.size()) return false;
    load(tile_ + kTileBytes);
    return true;
  }

  // The word that has begun goes on behind this tile.
  WordKind next_of_two_tiles() {
    specials_.skip_below(begin_);
    bool is_special = !specials_.empty();
    while (edges_.empty() && load_next())
      is_special = is_special || specials_.front() < edges_.front();
    end_ = edges_.take();
    if (!is_special) return WordKind::kValue;
    const WordKind kind = kind_of_special(true);
    return kind == WordKind::kComment ? next() : kind;
  }

  // Goes on behind `place`, where white space or the end of the text is.
  void go_to(std::size_t place) {
    if (place >= tile_ + kTileBytes) load(place - place % kTileBytes);
    edges_.skip_below(place + 1);
  }

  bool is_end(std::size_t place) const { return place >= text_.size() || is_space(text_[place]); }

  // `known`: that there is a special character in the word.
  WordKind kind_of_special(bool known = false) {
    if (!known) {
      specials_.skip_below(begin_);
      if (specials_.front() >= end_) return WordKind::kValue;
    }
    const char first = text_[begin_];
    if (first == '#') {
      go_to(std::min(text_.find('\n', begin_), text_.size()));
      return WordKind::kComment;
    }
    if (first == '\'' || first == '"') return end_quoted(first);
    if (first == ';' && begin_ > 0 && text_[begin_ - 1] == '\n') return end_field();
    const std::string_view found = word();
    const bool strange =
        std::any_of(found.begin(), found.end(), [](char c) { return c < '!' || c > '~'; });
    if (strange || first == '$' || found == "_") return WordKind::kUnclear;
    if (first == '_') return WordKind::kTag;
    for (const char* reserved : {"data_", "loop_", "global_", "save_", "stop_"})
      if (begins_as(found, reserved)) return WordKind::kReserved;
    return WordKind::kValue;
  }

  // A quote ends where white space follows.
  WordKind end_quoted(char quote) {
    std::size_t at = begin_;
    do {
      at = text_.find(quote, at + 1);
      if (at == std::string_view::npos) return WordKind::kUnclear;
      if (at + 1 < text_.size() && text_[at + 1] == '#') return WordKind::kUnclear;
    } while (!is_end(at + 1));
    if (at + 1 == end_) return WordKind::kValue;
    end_ = at + 1;
    if (word().find('\n') != std::string_view::npos) return WordKind::kUnclear;
    go_to(end_);
    return WordKind::kValue;
  }

  WordKind end_field() {
    const std::size_t at = text_.find("\n;", begin_);
    if (at == std::string_view::npos || !is_end(at + 2)) return WordKind::kUnclear;
    end_ = at + 2;
    go_to(end_);
    return WordKind::kValue;
  }

  std::string_view text_;
  std::size_t tile_ = 0;  // where it begins
  Places edges_;          // where white space ends and begins, of this tile and ahead
  Places specials_;       // characters that may mean something
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
};

// Names that may stand once in a block. Different names that happen to share a number are taken for
// equal.
class NamesSeen {
 public:
  // False where it has been there.
  bool add(std::string_view name) {
    std::uint64_t number = 0xcbf29ce484222325U;  // FNV-1a
    for (const char c : name)
      number = (number ^ static_cast<unsigned char>(lowered(c))) * 0x100000001b3U;
    if (2 * ++count_ > slots_.size()) grow();
    return put(std::max<std::uint64_t>(number, 1));
  }

 private:
  bool put(std::uint64_t number) {
    std::size_t slot = number % slots_.size();
    while (slots_[slot] != 0 && slots_[slot] != number) slot = (slot + 1) % slots_.size();
    return std::exchange(slots_[slot], number) == 0;
  }

  void grow() {
    std::vector<std::uint64_t> old(2 * slots_.size());
    old.swap(slots_);
    for (const std::uint64_t number : old)
      if (number != 0) put(number);
  }

  std::vector<std::uint64_t> slots_ = std::vector<std::uint64_t>(1024);
  std::size_t count_ = 0;
};

// One of the categories that are kept, as far as it has been read.
struct Category {
  const char* prefix = "";
  const CifColumns* wanted = nullptr;  // null: all columns
  std::vector<std::string> tags = {};
  std::vector<CifValue> values = {};
  std::size_t begin = 0;  // where it begins in the text
  std::size_t width = 0;  // of its loop
  bool started = false;
};

class CifScanner {
 public:
  CifScanner(std::string_view text, const CifColumns& wanted)
      : text_(text), words_(text), wanted_(wanted) {}

  // Nothing where the text is not clear or has no atoms.
  std::optional<CifBlock> scan() {
    WordKind kind = words_.next();
    if (kind == WordKind::kEnd) return {};
    while (kind != WordKind::kEnd) {
      if (kind != WordKind::kReserved || !begin_block()) return {};
      kind = words_.next();
      while (kind == WordKind::kTag || (kind == WordKind::kReserved && is_loop()))
        kind = kind == WordKind::kTag ? take_pair() : take_loop();
      if (kind == WordKind::kValue || kind == WordKind::kUnclear) return {};
      if (has_atoms_ && !found_) found_ = block();
    }
    return std::move(found_);
  }

 private:
  bool is_loop() const { return words_.word().size() == 5 && begins_as(words_.word(), "loop_"); }

  bool begin_block() {
    if (!begins_as(words_.word(), "data_") || !blocks_.add(words_.word())) return false;
    seen_ = NamesSeen();
    has_atoms_ = false;
    categories_ = {{{"_atom_site.", &wanted_},
                    {"_entity."},
                    {"_struct_asym."},
                    {"_cell."},
                    {"_ma_qa_metric."},
                    {"_struct_conn."}}};
    return true;
  }

  // The category of a tag, nothing where it is not kept.
  Category* category_of(std::string_view tag) {
    for (Category& category : categories_)
      if (begins_as(tag, category.prefix)) return &category;
    return nullptr;
  }

  bool note(std::string_view tag) {
    has_atoms_ = has_atoms_ || (tag.size() == 18 && begins_as(tag, "_atom_site.cartn_x"));
    return seen_.add(tag);
  }

  static std::string column(std::string_view tag, const Category& category) {
    std::string name(tag.substr(std::min(tag.size(), std::strlen(category.prefix))));
    std::transform(name.begin(), name.end(), name.begin(), lowered);
    return name;
  }

  void start(Category& category) {
    if (category.started) return;
    category.started = true;
    category.begin = words_.begin();
  }

  WordKind take_pair() {
    const std::string_view tag = words_.word();
    if (!note(tag)) return WordKind::kUnclear;
    Category* category = category_of(tag);
    if (category != nullptr) start(*category);
    if (words_.next() != WordKind::kValue) return WordKind::kUnclear;
    // A loop goes before single values.
    if (category != nullptr && category->width == 0) {
      category->tags.push_back(column(tag, *category));
      category->values.push_back(value());
    }
    return words_.next();
  }

  WordKind take_loop() {
    const std::size_t begin = words_.begin();
    Category* category = nullptr;
    std::vector<char> kept;  // of each column, 1 or 0
    WordKind kind = words_.next();
    for (; kind == WordKind::kTag; kind = words_.next()) {
      const std::string_view tag = words_.word();
      if (!note(tag)) return WordKind::kUnclear;
      if (kept.empty()) category = take_over(category_of(tag), begin);
      kept.push_back(category != nullptr && keeps(*category, tag) ? 1 : 0);
      if (kept.back() != 0) category->tags.push_back(column(tag, *category));
    }
    if (kept.empty()) return WordKind::kUnclear;
    if (category != nullptr) category->width = kept.size();
    const std::size_t count = take_values(kind, kept, category);
    // Empty loops break the rules of CIF, though some are let pass.
    return count != 0 && count % kept.size() == 0 ? kind : WordKind::kUnclear;
  }

  CifValue value() const {
    return {static_cast<std::uint32_t>(words_.begin()),
            static_cast<std::uint32_t>(words_.length())};
  }

  // The number of values from the current word of this kind on, up to the first word of another.
  std::size_t take_values(WordKind& kind, const std::vector<char>& kept, Category* category) {
    std::size_t count = 0;
    if (category == nullptr) {
      for (; kind == WordKind::kValue; kind = words_.next()) {
        ++count;
        for (; words_.plain(kept.size()) != nullptr; count += kept.size()) words_.drop(kept.size());
      }
      return count;
    }
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < kept.size(); ++i)
      if (kept[i] != 0) columns.push_back(i);
    const std::size_t begin = words_.begin();
    for (; kind == WordKind::kValue; kind = words_.next()) {
      if (kept[count++ % kept.size()] != 0) category->values.push_back(value());
      if (count % kept.size() != 0) continue;
      make_room(*category, count / kept.size(), begin);
      count += kept.size() * take_rows(kept.size(), columns, category->values);
    }
    return count;
  }

  // Room for as many rows as there may be, if they are as long as those before.
  void make_room(Category& category, std::size_t rows, std::size_t begin) const {
    const std::size_t size = category.values.size();
    if (size + category.tags.size() <= category.values.capacity()) return;
    const std::size_t length = std::max<std::size_t>((words_.begin() - begin) / rows, 1);
    const std::size_t more = (text_.size() - words_.begin()) / length + 1;
    category.values.reserve(size + std::min(more, rows + 4000) * category.tags.size());
  }

  // As many rows as are plain.
  std::size_t take_rows(std::size_t width, const std::vector<std::size_t>& columns,
                        std::vector<CifValue>& values) {
    std::size_t rows = 0;
    while (const Places* edges = words_.plain(width)) {
      if (values.size() + columns.size() > values.capacity()) break;
      for (const std::size_t column : columns) {
        const std::uint32_t begin = (*edges)[2 * column];
        values.push_back({begin, (*edges)[2 * column + 1] - begin});
      }
      words_.drop(width);
      ++rows;
    }
    return rows;
  }

  // The category when this loop is the first of it, emptied.
  static Category* take_over(Category* category, std::size_t begin) {
    if (category == nullptr || category->width != 0) return nullptr;
    category->begin = begin;
    category->started = true;
    category->tags.clear();
    category->values.clear();
    return category;
  }

  static bool keeps(const Category& category, std::string_view tag) {
    if (!begins_as(tag, category.prefix)) return false;
    if (category.wanted == nullptr) return true;
    const std::string name = column(tag, category);
    return std::find(category.wanted->begin(), category.wanted->end(), name) !=
           category.wanted->end();
  }

  CifTable table(std::size_t number) {
    Category& category = categories_[number];
    if (!category.started) return {};
    const auto end = text_.begin() + static_cast<std::ptrdiff_t>(category.begin);
    const auto line = static_cast<std::size_t>(std::count(text_.begin(), end, '\n')) + 1;
    return {std::move(category.tags), text_.data(), std::move(category.values), line,
            category.width};
  }

  CifBlock block() { return {table(0), table(1), table(2), table(3), table(4), table(5), nullptr}; }

  std::string_view text_;
  WordScanner words_;
  const CifColumns& wanted_;
  NamesSeen blocks_;
  NamesSeen seen_;  // tags of this block
  bool has_atoms_ = false;
  std::array<Category, 6> categories_{};
  std::optional<CifBlock> found_;
};

}  // namespace

std::optional<CifBlock> scan_cif(std::string_view text, const CifColumns& wanted) {
  // Places have 32 bits.
  if (text.size() > std::numeric_limits<std::uint32_t>::max() - kTileBytes) return {};
  return CifScanner(text, wanted).scan();
}

}  // namespace korvex::read

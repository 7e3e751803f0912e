// Plain text: one atom a line, `id x y z` or `x y z`, in one and the same way throughout a file.
// `#` starts a comment; blank lines are passed over.
#include <array>

#include "read/parsers.hpp"
#include "read/text.hpp"

namespace korvex::read {
namespace {

struct Words {
  std::array<std::string_view, 5> words;
  std::size_t count = 0;
};

Words words_of(std::string_view line) {
  Words found;
  std::string_view rest = line.substr(0, line.find('#'));
  while (found.count < found.words.size()) {
    const std::string_view word = take_word(rest);
    if (word.empty()) break;
    found.words[found.count++] = word;
  }
  return found;
}

}  // namespace

void parse_plain(Lines& lines, const ChainSink& sink) {
  RawChain raw;
  Chain& chain = raw.chain;
  std::size_t expected = 0;
  std::size_t first_line = 0;
  while (lines.next()) {
    const auto [words, count] = words_of(lines.line());
    if (count == 0) continue;
    if (count != 3 && count != 4) {
      lines.fail("expected `id x y z` or `x y z`, separated by blanks, but found " +
                 std::to_string(count) + (count == 5 ? " or more" : "") + " words in " +
                 in_quotes(trimmed(lines.line())));
    }
    if (expected == 0) {
      expected = count;
      first_line = lines.number();
    }
    if (count != expected) {
      lines.fail(std::to_string(count) + " words here but " + std::to_string(expected) +
                 " in line " + std::to_string(first_line) +
                 "; write all lines as `id x y z` or all as `x y z`");
    }
    Residue residue;
    residue.number = static_cast<std::int32_t>(chain.points.size() + 1);
    if (count == 4) {
      const std::optional<std::int32_t> id = to_int32(words[0]);
      if (!id) {
        lines.fail(in_quotes(words[0]) +
                   " stands where the id belongs; give a whole number of at most 32 bits");
      }
      residue.number = *id;
    }
    chain.points.push_back({coordinate(words[count - 3], 'x', lines),
                            coordinate(words[count - 2], 'y', lines),
                            coordinate(words[count - 1], 'z', lines)});
    chain.residues.push_back(std::move(residue));
  }
  if (!chain.points.empty()) sink(std::move(raw));
}

}  // namespace korvex::read

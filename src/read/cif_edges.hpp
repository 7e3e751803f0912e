// Where the words of a text begin and end, for the scanner of CIF.
#pragma once

#include <cstddef>
#include <cstdint>

namespace korvex::read {

// Where places are written to; `kSlack` more than there are may be overwritten behind them.
struct CifEdges {
  static constexpr std::size_t kBlock = 64;  // bytes
  static constexpr std::size_t kSlack = 8;

  std::uint32_t* edges = nullptr;     // where white space begins or ends: blanks, tabs, line feeds
  std::uint32_t* specials = nullptr;  // bytes that may mean more than themselves (" # $ ' ; _), or
                                      // that are no printable ASCII
  bool in_word = false;               // the byte before is no white space
};

// Goes through whole blocks of a text, of which the first byte has the place `begin`, and moves
// `found` behind the last places. O(blocks); any thread.
void find_cif_edges(const char* text, std::size_t blocks, std::uint32_t begin, CifEdges& found);

}  // namespace korvex::read

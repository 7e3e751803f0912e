#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "korvex.h"
#include "recognition/ordinals.hpp"
#include "records/text_stream.hpp"
#include "records/wrapping.hpp"

namespace {

using namespace korvex::recognition;
using korvex::records::percentage;
using korvex::records::wrapping_add;

// Truncated toward zero; what an int cannot hold becomes the smallest one, as the processor's own
// conversion has it.
int truncated(double value) {
  if (!(std::fabs(value) < 2147483648.0)) return std::numeric_limits<int>::min();
  return static_cast<int>(value);
}

// The knots with votes in order of their percentage, and a closing entry of 0 %.
std::vector<Knocik> percentages(const int* counts, int total) {
  std::vector<Knocik> list;
  for (int k = 1; k <= kNoMatch; ++k)
    if (counts[k] >= 1) list.push_back({k, percentage(counts[k], total)});
  std::sort(list.begin(), list.end(), WayToSortKnociki);
  list.push_back({kUnknot, 0});
  return list;
}

float share(float count, float total) {
  return static_cast<float>(truncated(static_cast<double>(count / total * 1000) + 0.5) / 1000.0);
}

}  // namespace

std::string GiveTheNameOfKnot_toMatrix(int* counts) {
  int total = 0;
  for (int i = 0; i < kOrdinals; ++i) total = wrapping_add(total, counts[i]);
  if (total == 0) return "EMPTY KNOTS TABLE in GIVETHENAME...()";
  int known = 0;
  for (int i = 1; i <= kNoMatch; ++i) known = wrapping_add(known, counts[i]);
  const int inside = wrapping_add(counts[kUnusable], counts[kReserved]);
  const std::string inside_percentage = std::to_string(percentage(inside, total));
  std::string text;
  if (known == 0) {
    if (total < korvex::records::wrapping_multiply(2, counts[kUnknot])) return kUnknotName;
    for (int band = 0; band < 31; ++band) text += "0 ";
    return text + inside_percentage;
  }
  const std::vector<Knocik> list = percentages(counts, total);
  std::size_t cursor = 0;
  for (int threshold = 90; threshold >= 0; threshold -= 3) {
    if (list[cursor].votes <= threshold) text += "0";
    for (bool first = true; list[cursor].votes > threshold; first = false) {
      if (!first) text += ",";
      text += knotsArray[list[cursor++].ordinal].name;
    }
    text += " ";
  }
  return text + inside_percentage;
}

bool WayToSortPolies(std::pair<std::string, float> a, std::pair<std::string, float> b) {
  return a.second > b.second;
}

std::string GiveThePolies_toDict(std::map<std::string, float> tally) {
  std::vector<std::pair<std::string, float>> entries(tally.begin(), tally.end());
  float total = 0;
  for (const auto& [poly, count] : entries) total += count;
  std::sort(entries.begin(), entries.end(), WayToSortPolies);
  if (entries.size() == 1 && entries[0].second == 1.0F) return "'" + entries[0].first + "'";
  std::ostringstream text = korvex::records::text_stream();
  text << "{";
  const char* separator = "";
  for (const auto& [poly, count] : entries) {
    text << separator << "'" << poly << "': " << share(count, total);
    separator = ", ";
  }
  text << "}";
  return text.str();
}

int GiveTheStrenghtOfKnot_poly(std::map<std::string, float> tally) {
  int best = 0;
  int total = 0;
  for (const auto& [poly, count] : tally) {
    if (poly != "1" && count > static_cast<float>(best)) best = truncated(count);
    total = truncated(static_cast<float>(total) + count);
  }
  return percentage(best, total);
}

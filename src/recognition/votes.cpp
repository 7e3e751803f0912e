#include <algorithm>
#include <string>
#include <vector>

#include "korvex.h"
#include "recognition/ordinals.hpp"
#include "records/wrapping.hpp"

namespace {

using namespace korvex::recognition;
using korvex::records::percentage;
using korvex::records::wrapping_add;

int sum(const int* counts, int first, int last) {
  int total = 0;
  for (int i = first; i <= last; ++i) total = wrapping_add(total, counts[i]);
  return total;
}

}  // namespace

bool WayToSortKnociki(Knocik a, Knocik b) { return a.votes > b.votes; }

std::string GiveTheNameOfKnot_allProj(int* counts) {
  std::vector<Knocik> ranking;
  int total = 0;
  for (int i = 0; i < kOrdinals; ++i) {
    if (counts[i] < 1) continue;
    ranking.push_back({i, counts[i]});
    total = wrapping_add(total, counts[i]);
  }
  std::sort(ranking.begin(), ranking.end(), WayToSortKnociki);
  std::string text;
  for (const Knocik& knot : ranking) {
    if (knot.ordinal == kReserved) continue;
    text +=
        knotsArray[knot.ordinal].name + "(" + std::to_string(percentage(knot.votes, total)) + "%) ";
  }
  const int inside = sum(counts, kUnusable, kReserved);
  if (inside < 1) return text;
  text += "IN(" + std::to_string(inside);
  text += inside <= total / 3 ? ") " : ")  \t----- many INSIDE!";
  return text;
}

std::string GiveTheNameOfKnotOne(int* counts) {
  int dominant = 0;
  int best = std::max(counts[0], 0);
  for (int i = 1; i < kOrdinals; ++i) {
    if (counts[i] <= best) continue;
    dominant = i;
    best = counts[i];
  }
  const int total = sum(counts, 0, kReserved);
  if (total == sum(counts, kUnusable, kReserved)) return kFailuresName;
  if (percentage(best, total) < 51) return kNoMajorityName;
  return knotsArray[dominant].name;
}

int GiveTheStrenghtOfKnot(int* counts) {
  const int best = std::max(0, *std::max_element(counts + 1, counts + kOrdinals));
  return percentage(best, sum(counts, 0, kReserved));
}

#include <sstream>
#include <string>

#include "korvex.h"

RowFile MakeRowFromJob(std::string knotText, Job job, int strength, int mode) {
  std::ostringstream text;
  if (mode != 0) {
    text << job.firstId << " " << job.lastId << " " << knotText << " " << job.begin << " "
         << job.end;
  } else {
    text << "(" << job.firstId << ", " << job.lastId << "): " << knotText;
  }
  return {job.begin, job.end, strength, text.str()};
}

bool WayToSortRowsToFile(RowFile a, RowFile b) {
  return a.begin < b.begin || (a.begin == b.begin && a.end > b.end);
}

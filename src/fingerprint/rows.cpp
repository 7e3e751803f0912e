#include <string>

#include "korvex.h"
#include "records/text_stream.hpp"

RowFile MakeRowFromJob(std::string knotText, Job job, int strength, int mode) {
  std::ostringstream text = korvex::records::text_stream();
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

// Many chains, worked on at once and answered in order.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "command.hpp"
#include "engine_options.hpp"
#include "korvex/read.hpp"
#include "korvex/run.hpp"
#include "korvex/sources.hpp"
#include "progress.hpp"
#include "read_notes.hpp"

namespace korvex::cli {

class Job {
 public:
  // Every chain of `sources` that `read` selects. `as_rings`: the user has said that they are
  // rings.
  Job(const std::vector<std::string>& sources, const ReadOptions& read, const Run& run,
      bool as_rings = false);

  // Runs `answer` on every chain, many at once, and what it returns in order, one at a time. An
  // input that cannot be read or worked on costs one line on standard error, and the rest goes on.
  // What ReadNotes tells goes there, too. One line on the terminal shows how far the whole job is.
  Exit answer_each(const std::function<Delivery(const Chain&, const Run&)>& answer);

  // Where `answer` shows how far it is with a chain: the first of a single file has the line.
  ShowFraction show_of(const Chain& chain);

 private:
  void deliver(const Chain& chain, const Delivery& delivery);
  void complain_of(const std::string& title);
  void end_member();
  void show(const Advance& now);

  std::vector<Lot> lots_;
  ReadOptions read_;
  Run run_;
  bool as_rings_;
  ReadNotes notes_;
  Exit exit_ = Exit::kDone;

  std::mutex terminal_;
  Progress progress_;
  bool of_one_file_;
  std::string shown_;  // the chain that has the line
  bool several_ = false;
};

}  // namespace korvex::cli

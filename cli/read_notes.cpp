#include "read_notes.hpp"

#include <fmt/format.h>

#include "chains.hpp"
#include "command.hpp"
#include "korvex/report.hpp"

namespace korvex::cli {
namespace {

std::string counted(std::size_t count, const char* what) {
  return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::string label(const Residue& residue) {
  std::string text = residue.name.empty() ? "" : residue.name + " ";
  text += std::to_string(residue.number);
  if (residue.insertion_code != ' ') text += residue.insertion_code;
  return text;
}

std::string place(const Chain& chain) {
  return (chain.name.empty() ? std::string() : " of chain " + chain.name) + ", model " +
         std::to_string(chain.model);
}

}  // namespace

void ReadNotes::Gaps::add(double length, const Chain& chain, std::size_t next) {
  ++count;
  if (length <= longest) return;
  longest = length;
  const std::size_t size = chain.points.size();
  where = fmt::format("{:.4g} (median bond {:.4g}) ", length, chain.bond);
  where += next == 0 ? "before " + label(chain.residues[0])
                     : "between " + label(chain.residues[next - 1]) + " and " +
                           label(chain.residues[next % size]);
  where += place(chain);
}

void ReadNotes::add(const Chain& chain) {
  source_ = chain.source;
  ++chains_;
  for (const Gap& gap : chain.gaps) bridged_.add(gap.length, chain, gap.after + 1);
  if (!chain.gaps.empty()) ++bridged_.chains;
  if (chain.split_length > 0) split_.add(chain.split_length, chain, 0);
  if (chain.part == 1) ++split_.chains;
  mended_bonds_ += chain.mended;
  if (chain.mended != 0) ++mended_chains_;
  if (chain.ends != ChainEnds::kNear || as_rings_) return;
  if (near_++ != 0) return;
  near_model_ = chain.model;
  complain(
      fmt::format("note: {}: the ends lie {:.4g} apart (median bond {:.4g}); if the chain is "
                  "a ring, name its knot by korvex knot --closure ring",
                  title_of(chain), norm(chain.points.front() - chain.points.back()), chain.bond));
}

void ReadNotes::tell() const {
  tell_gaps();
  if (mended_bonds_ != 0) {
    complain(
        fmt::format("warning: {}: {} in {} broken by the periodic box and mended; --unwrap "
                    "never leaves them",
                    source_, counted(mended_bonds_, "bond"), counted(mended_chains_, "chain")));
  }
  if (near_ != 0 && chains_ > 1) {
    complain(fmt::format("note: {}: the ends lay within 1.5 median bonds in {} of {}", source_,
                         near_, counted(chains_, "chain")));
  }
}

// What the user has asked for needs no telling.
void ReadNotes::tell_gaps() const {
  if (policy_ != GapPolicy::kAuto) return;
  const auto tell = [this](const Gaps& gaps, const std::string& what, const std::string& advice) {
    if (gaps.count == 0) return;
    complain(fmt::format("warning: {}: {} {}: {}{}; {}", source_, counted(gaps.count, "gap"), what,
                         gaps.count == 1 ? "" : "the longest ", gaps.where, advice));
  };
  tell(bridged_, "bridged by straight lines in " + counted(bridged_.chains, "chain"),
       "--gaps split makes chains of their own of the parts");
  tell(split_,
       fmt::format("of more than {:g} median bonds split {}", max_gap_,
                   counted(split_.chains, "chain")),
       "--gaps bridge joins the parts");
}

}  // namespace korvex::cli

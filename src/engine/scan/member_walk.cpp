#include "engine/scan/member_walk.hpp"

#include <algorithm>
#include <iostream>
#include <utility>

namespace korvex {

MemberWalk::MemberWalk(const std::vector<Lot>& lots, std::size_t most_bytes)
    : lots_(lots), most_bytes_(most_bytes), counts_(lots.size()) {
  for (const Lot& lot : lots) all_bytes_ += static_cast<double>(lot.bytes);
}

std::optional<MetMember> MemberWalk::next(const std::function<bool(const Place&)>& wanted) {
  while (auto met = step()) {
    const bool by_frames = lots_[met->member.at.lot].by_frames;
    if (!by_frames && wanted && !wanted(met->member.at)) continue;
    if (archive_ && !met->failure) {
      try {
        met->bytes = archive_->content(most_bytes_);
      } catch (...) {
        met->failure = std::current_exception();
      }
    }
    return met;
  }
  return std::nullopt;
}

std::optional<MetMember> MemberWalk::step() {
  while (at_.lot < lots_.size()) {
    const Lot& lot = lots_[at_.lot];
    if (!lot.archive.empty()) {
      if (auto met = step_in_archive(lot)) return met;
    } else if (at_.index < lot.files.size()) {
      MetMember met{lot.files[at_.index], {}, {}};
      counts_[at_.lot] = ++at_.index;
      return met;
    }
    next_lot();
  }
  return std::nullopt;
}

std::optional<MetMember> MemberWalk::step_in_archive(const Lot& lot) {
  try {
    if (!archive_) {
      if (at_.index > 0) return std::nullopt;  // it is damaged, and that was told
      archive_.emplace(lot.archive);
    }
    std::string name;
    if (!archive_->next(name)) return std::nullopt;
    MetMember met{{lot.archive, std::move(name), at_}, {}, {}};
    counts_[at_.lot] = ++at_.index;
    return met;
  } catch (...) {
    archive_.reset();
    return failed_here(lot);
  }
}

MetMember MemberWalk::failed_here(const Lot& lot) {
  MetMember met{{lot.archive, {}, at_}, {}, std::current_exception()};
  counts_[at_.lot] = ++at_.index;
  return met;
}

void MemberWalk::next_lot() {
  bytes_before_ += static_cast<double>(lots_[at_.lot].bytes);
  archive_.reset();
  at_ = {at_.lot + 1, 0};
}

bool MemberWalk::done() const {
  if (at_.lot >= lots_.size()) return true;
  const Lot& lot = lots_[at_.lot];
  return at_.lot + 1 == lots_.size() && lot.archive.empty() && at_.index >= lot.files.size();
}

double MemberWalk::fraction() const {
  if (!(all_bytes_ > 0) || done()) return 1;
  const Lot& lot = lots_[at_.lot];
  const double whole = static_cast<double>(lot.bytes);
  double passed = 0;
  if (archive_)
    passed = static_cast<double>(archive_->passed());
  else if (!lot.files.empty())
    passed = whole * static_cast<double>(at_.index) / static_cast<double>(lot.files.size());
  return (bytes_before_ + std::min(passed, whole)) / all_bytes_;
}

Source source_of(MetMember&& member) {
  if (member.bytes) return Source::memory(*std::move(member.bytes), member.member.title());
  if (member.member.source == "-" && member.member.name.empty())
    return Source::stream(std::cin, "standard input");
  return member.member.title();
}

}  // namespace korvex

#include "korvex/scan.hpp"

#include <map>
#include <memory>
#include <mutex>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "engine/scan/manifest.hpp"
#include "engine/scan/parts.hpp"
#include "engine/scan/scan_answer.hpp"
#include "korvex/error.hpp"

namespace korvex {
namespace {

using Json = nlohmann::ordered_json;

std::string counted(std::size_t count, const char* one, const char* many) {
  return std::to_string(count) + ' ' + (count == 1 ? one : many);
}

void check(const ScanPlan& plan) {
  const auto refuse = [](const std::string& what) {
    throw Error(ErrorCode::kInvalidArgument, what);
  };
  const ScanOptions& options = plan.options;
  if (plan.directory.empty()) refuse("a scan needs a directory to write to");
  if (plan.sources.empty()) refuse("a scan needs at least one source");
  if (plan.shard.number < 1 || plan.shard.number > plan.shard.of)
    refuse("there is no shard " + std::to_string(plan.shard.number) + " of " +
           std::to_string(plan.shard.of) + ": shards are numbered from 1");
  if (options.piece < 1) refuse("a piece must have at least one member");
  if (options.step < 1) refuse("the step must be at least 1");
  scan_head(options.format, {});
}

// The work of one process on one directory.
class Scan {
 public:
  Scan(const ScanPlan& plan, const Run& run)
      : plan_(plan),
        run_(run),
        lots_(lots_of(plan.sources)),
        directory_(plan.directory, plan.options.format) {
    const std::string manifest = manifest_of(plan, lots_, run.seed);
    digest_ = digest_of(manifest);
    begin(manifest);
  }

  ScanOutcome go() {
    ChainWork work;
    work.wanted = [this](const Place& at) { return wants(at); };
    work.answer = [this](const Member& member, Chain&& chain, const Run& run) {
      return answer(member, chain, run);
    };
    work.failed = [this](const Member& member, const std::string& title) { failed(member, title); };
    work.ended = [this](const Member& member) { ended(member.at); };
    work.advanced = [this](const Advance& advance) {
      if (!plan_.progress) return;
      ScanCounts counts = done_;
      plan_.progress({advance, counts += part_counts_});
    };
    const MemberCounts members = for_each_chain(lots_, plan_.options.read, work, run_);
    publish();
    write_pieces(members);
    ScanOutcome outcome{kept_counts_, pieces_, kept_};
    outcome.counts += done_;
    return outcome;
  }

 private:
  void begin(const std::string& manifest) {
    const std::string path = directory_.manifest();
    if (const auto there = text_of_file(path)) {
      if (!plan_.resume)
        throw Error(
            ErrorCode::kInvalidArgument,
            plan_.directory +
                ": holds a scan already; go on with it (--resume) or name another directory",
            plan_.directory);
      if (*there != manifest)
        throw Error(ErrorCode::kInvalidArgument,
                    plan_.directory +
                        ": holds a scan of other sources, or with other options or another seed, "
                        "as " +
                        path + " tells; name another directory",
                    plan_.directory);
      return;
    }
    WholeFile file(path);
    file.write(manifest);
    file.publish();
  }

  PieceNumber piece_of(const Place& at) const { return {at.lot, at.index / plan_.options.piece}; }

  // Asked in order within a lot.
  bool wants(const Place& at) {
    const std::lock_guard lock(asking_);
    const PieceNumber number = piece_of(at);
    Asked& last = asked_[number.lot];
    if (last.piece != number.piece) last = {number.piece, wants_piece(number)};
    return last.wanted;
  }

  bool wants_piece(const PieceNumber& number) {
    if ((number.lot + number.piece) % plan_.shard.of != plan_.shard.number - 1) return false;
    ++pieces_;
    if (!plan_.resume) return true;
    if (const auto counts = directory_.counts_of(number, digest_)) {
      kept_counts_ += *counts;
      ++kept_;
      return false;
    }
    clear_remains(number);
    return true;
  }

  // Of who was killed while he wrote this piece.
  void clear_remains(const PieceNumber& number) {
    if (remains_of_ != number.lot) {
      remains_of_ = number.lot;
      remains_ = directory_.remains(number.lot);
    }
    const auto [begin, end] = remains_.equal_range(directory_.part(number));
    for (auto file = begin; file != end; ++file) remove_file(file->second);
  }

  Delivery answer(const Member& member, const Chain& chain, const Run& run) {
    Run own = run;
    own.seed = seed_of(member, chain, run.seed);
    const ScanAnswer found = scan_answer(chain, plan_.options, own);
    ScanCounts counts;
    counts.chains = 1;
    counts.knotted = found.knotted() ? 1 : 0;
    counts.slipknots = found.slipknot() ? 1 : 0;
    counts.failed = found.failure.empty() ? 0 : 1;
    std::string line;
    if (!plan_.options.knotted_only || counts.knotted + counts.slipknots + counts.failed > 0)
      line = scan_line(plan_.options.format, member.source, member.name, chain, found);
    return [this, at = member.at, counts, line = std::move(line)] { add(at, counts, line); };
  }

  // Called within a catch block: of a member, since answers keep their failures.
  void failed(const Member& member, const std::string& title) {
    std::string why = "internal error";
    try {
      throw;
    } catch (const std::bad_alloc&) {
      why = "there is not enough memory for it";
    } catch (const std::exception& error) {
      why = error.what();
    } catch (...) {
    }
    if (!title.empty()) why = title + ": " + why;
    add(member.at, {.failed = 1},
        scan_failure_line(plan_.options.format, member.source, member.name, why));
  }

  void add(const Place& at, const ScanCounts& counts, const std::string& line) {
    begin_piece_of(at);
    part_counts_ += counts;
    part_->write(line);
  }

  void ended(const Place& at) {
    add(at, {.members = 1}, {});
    if (at.index % plan_.options.piece == plan_.options.piece - 1) publish();
  }

  void begin_piece_of(const Place& at) {
    const PieceNumber number = piece_of(at);
    if (part_ && open_ == number) return;
    publish();
    part_ = std::make_unique<WholeFile>(directory_.part(number));
    open_ = number;
  }

  void publish() {
    if (!part_) return;
    part_->write(last_line(part_counts_, digest_));
    part_->publish();
    part_.reset();
    done_ += std::exchange(part_counts_, {});
  }

  void write_pieces(const MemberCounts& members) {
    Json pieces = Json::array();
    for (const std::size_t count : members)
      pieces.push_back((count + plan_.options.piece - 1) / plan_.options.piece);
    WholeFile file(directory_.pieces());
    file.write(Json{{"scan", digest_}, {"pieces", pieces}}.dump() + '\n');
    file.publish();
  }

  const ScanPlan& plan_;
  const Run& run_;
  const std::vector<Lot> lots_;
  const ScanDirectory directory_;
  std::string digest_;

  struct Asked {
    std::optional<std::size_t> piece;
    bool wanted = false;
  };

  // Of the walk.
  std::mutex asking_;
  std::map<std::size_t, Asked> asked_;  // by lot
  std::optional<std::size_t> remains_of_;
  std::multimap<std::string, std::string> remains_;
  std::size_t pieces_ = 0;
  std::size_t kept_ = 0;
  ScanCounts kept_counts_;

  // Of what is handed over.
  PieceNumber open_;
  std::unique_ptr<WholeFile> part_;
  ScanCounts part_counts_;
  ScanCounts done_;
};

// How many pieces each lot has. Throws Error where no scan came to its end.
std::vector<std::size_t> pieces_in(const ScanDirectory& directory, const std::string& digest) {
  const std::string path = directory.pieces();
  const auto text = text_of_file(path);
  const Json json = text ? Json::parse(*text, nullptr, false) : Json();
  if (!json.is_object() || json.value("scan", "") != digest || !json["pieces"].is_array())
    throw Error(ErrorCode::kBadInput,
                path +
                    ": is not there: no scan has come to the end of its sources; go on with one "
                    "(--resume)",
                path);
  return json["pieces"].get<std::vector<std::size_t>>();
}

}  // namespace

ScanCounts& ScanCounts::operator+=(const ScanCounts& other) {
  members += other.members;
  chains += other.chains;
  knotted += other.knotted;
  slipknots += other.slipknots;
  failed += other.failed;
  return *this;
}

std::string text_of(const ScanCounts& counts) {
  return counted(counts.members, "file", "files") + ", " +
         counted(counts.chains, "chain", "chains") + ": " + std::to_string(counts.knotted) +
         " knotted, " + counted(counts.slipknots, "slipknot", "slipknots") + ", " +
         std::to_string(counts.failed) + " failed";
}

ScanOutcome scan(const ScanPlan& plan, const Run& run) {
  check(plan);
  return Scan(plan, run).go();
}

MergedScan merge_scan(const std::string& path) {
  const std::string manifest_path = ScanDirectory(path, ReportFormat::kTsv).manifest();
  const auto manifest = text_of_file(manifest_path);
  if (!manifest)
    throw Error(ErrorCode::kBadInput, path + ": holds no scan; make one by korvex scan", path);
  const ManifestContent content = parsed_manifest(*manifest, manifest_path);
  const ScanDirectory directory(path, content.format);
  const std::string digest = digest_of(*manifest);
  const std::vector<std::size_t> lots = pieces_in(directory, digest);

  std::size_t missing = 0;
  std::string first;
  for (std::size_t lot = 0; lot < lots.size(); ++lot)
    for (std::size_t piece = 0; piece < lots[lot]; ++piece)
      if (!directory.counts_of({lot, piece}, digest) && ++missing == 1)
        first = directory.part({lot, piece});
  if (missing > 0)
    throw Error(ErrorCode::kBadInput,
                path + ": " + counted(missing, "piece is", "pieces are") + " missing, the first " +
                    first + "; scan the rest (--resume)",
                path);

  directory.clear_top();
  MergedScan merged{directory.results(), {}};
  WholeFile results(merged.path);
  results.write(scan_head(content.format, content.about));
  for (std::size_t lot = 0; lot < lots.size(); ++lot)
    for (std::size_t piece = 0; piece < lots[lot]; ++piece) {
      const auto text = text_of_file(directory.part({lot, piece}));
      const auto counts = directory.counts_of({lot, piece}, digest);
      if (!text || !counts)
        throw Error(ErrorCode::kBadInput, path + ": a piece went away while it was read", path);
      results.write(lines_of_part(*text));
      merged.counts += *counts;
    }
  results.publish();
  return merged;
}

}  // namespace korvex

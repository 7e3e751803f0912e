#include <ostream>

#include "engine/report/fingerprint_report.hpp"
#include "engine/report/npz_arrays.hpp"
#include "engine/report/zip_archive.hpp"
#include "korvex/report.hpp"

namespace korvex {
using npz::numbers;
using npz::texts;

void write_npz(const Fingerprint& fingerprint, std::span<const Residue> residues,
               std::ostream& out) {
  const std::size_t n = fingerprint.stations().size();
  std::vector<std::string> labels;
  for (const std::int32_t station : fingerprint.stations())
    labels.push_back(residue_label(residues, static_cast<std::size_t>(station)));

  std::vector<std::int32_t> dominant(n * n, -1);
  std::vector<float> share(n * n, 0);
  std::vector<std::int32_t> begins;
  std::vector<std::int32_t> ends;
  std::vector<std::int32_t> types;
  std::vector<std::uint32_t> counts;
  std::vector<double> shares;
  for (std::size_t begin = 0; begin < n; ++begin) {
    for (std::size_t end = begin + 1; end < n; ++end) {
      const auto vote = fingerprint.dominant(begin, end);
      dominant[begin * n + end] = static_cast<std::int32_t>(vote.type);
      share[begin * n + end] = static_cast<float>(vote.share);
      for (std::size_t type = 1; type < fingerprint.types().size(); ++type) {
        const double share_of_type = fingerprint.share(type, begin, end);
        if (!(share_of_type > 0)) continue;
        begins.push_back(static_cast<std::int32_t>(begin));
        ends.push_back(static_cast<std::int32_t>(end));
        types.push_back(static_cast<std::int32_t>(type));
        if (fingerprint.exact())
          shares.push_back(share_of_type);
        else
          counts.push_back(fingerprint.count(type, begin, end));
      }
    }
  }

  ZipArchive archive(out);
  const std::string square = std::to_string(n) + ", " + std::to_string(n);
  archive.add("stations.npy", numbers(fingerprint.stations()));
  archive.add("labels.npy", texts(labels));
  archive.add("types.npy", texts(fingerprint.types()));
  archive.add("trials.npy",
              numbers(std::vector{static_cast<std::int64_t>(fingerprint.trials())}, ""));
  archive.add("dominant.npy", numbers(dominant, square));
  archive.add("share.npy", numbers(share, square));
  archive.add("begin.npy", numbers(begins));
  archive.add("end.npy", numbers(ends));
  archive.add("type.npy", numbers(types));
  if (fingerprint.exact()) {
    archive.add("exact_share.npy", numbers(shares));
    archive.add("doubt.npy", numbers(std::vector{fingerprint.doubt()}, ""));
  } else {
    archive.add("count.npy", numbers(counts));
  }
  archive.finish();
}

}  // namespace korvex

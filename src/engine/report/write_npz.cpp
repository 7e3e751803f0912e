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
  for (std::size_t begin = 0; begin < n; ++begin) {
    for (std::size_t end = begin + 1; end < n; ++end) {
      const auto vote = fingerprint.dominant(begin, end);
      dominant[begin * n + end] = static_cast<std::int32_t>(vote.type);
      share[begin * n + end] = static_cast<float>(fingerprint.share(vote.type, begin, end));
      for (std::size_t type = 1; type < fingerprint.types().size(); ++type) {
        const std::uint32_t count = fingerprint.count(type, begin, end);
        if (count == 0) continue;
        begins.push_back(static_cast<std::int32_t>(begin));
        ends.push_back(static_cast<std::int32_t>(end));
        types.push_back(static_cast<std::int32_t>(type));
        counts.push_back(count);
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
  archive.add("count.npy", numbers(counts));
  archive.finish();
}

}  // namespace korvex

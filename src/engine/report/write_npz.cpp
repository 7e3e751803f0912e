#include <cstring>
#include <ostream>
#include <type_traits>

#include "engine/report/fingerprint_report.hpp"
#include "engine/report/zip_archive.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

// The file format of one array (NumPy Enhancement Proposal 1, version 1.0).
std::string array_file(const std::string& type, const std::string& shape,
                       const std::string& content) {
  constexpr std::size_t kAlignment = 64;
  constexpr std::size_t kPreamble = 10;
  std::string head =
      "{'descr': '" + type + "', 'fortran_order': False, 'shape': (" + shape + "), }";
  while ((kPreamble + head.size() + 1) % kAlignment != 0) head += ' ';
  head += '\n';
  std::string file = "\x93NUMPY";
  file += '\1';
  file += '\0';
  file += static_cast<char>(head.size() & 0xff);
  file += static_cast<char>(head.size() >> 8 & 0xff);
  return file + head + content;
}

template <typename Number>
std::string type_code() {
  const char kind = std::is_floating_point_v<Number> ? 'f' : std::is_signed_v<Number> ? 'i' : 'u';
  std::string code = "<";
  code += kind;
  code += std::to_string(sizeof(Number));
  return code;
}

// Little-endian, as every platform is that the project builds on.
template <typename Number>
std::string numbers(const std::vector<Number>& values, const std::string& shape) {
  std::string content(values.size() * sizeof(Number), '\0');
  if (!values.empty()) std::memcpy(content.data(), values.data(), content.size());
  return array_file(type_code<Number>(), shape, content);
}

template <typename Number>
std::string numbers(const std::vector<Number>& values) {
  return numbers(values, std::to_string(values.size()) + ",");
}

// Four bytes a character; the texts are ASCII.
std::string texts(const std::vector<std::string>& values) {
  std::size_t width = 1;
  for (const std::string& text : values) width = std::max(width, text.size());
  std::string content(values.size() * width * 4, '\0');
  for (std::size_t row = 0; row < values.size(); ++row)
    for (std::size_t k = 0; k < values[row].size(); ++k)
      content[(row * width + k) * 4] = values[row][k];
  return array_file("<U" + std::to_string(width), std::to_string(values.size()) + ",", content);
}

}  // namespace

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

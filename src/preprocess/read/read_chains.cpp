#include "preprocess/read/read_chains.hpp"

#include <algorithm>

#include "preprocess/read/bytes.hpp"
#include "preprocess/read/text.hpp"
#include "preprocess/read/trace.hpp"

namespace korvex::read {
namespace {

// Text as the parsers want it: uncompressed, without byte order mark, lines ended by LF or CR LF.
std::string text_of(std::string bytes, const std::string& name) {
  if (bytes.empty()) fail_at(name, 0, "is empty; give a chain's coordinates");
  if (is_gzip(bytes)) bytes = gunzip(bytes, name);
  if (bytes.starts_with("\xef\xbb\xbf")) bytes.erase(0, 3);
  const bool old_mac =
      bytes.find('\n') == std::string::npos && bytes.find('\r') != std::string::npos;
  if (old_mac) std::replace(bytes.begin(), bytes.end(), '\r', '\n');
  return bytes;
}

}  // namespace

void each_chain(std::string bytes, const std::string& name, const ReadOptions& options,
                const ChainSink& sink) {
  const std::string text = text_of(std::move(bytes), name);
  bool any = false;
  const ChainSink named_sink = [&](Chain&& chain) {
    any = true;
    chain.source = name;
    sink(std::move(chain));
  };
  const ModelSink model_sink = [&](Model&& model) {
    for (Chain& chain : traces_of(model, options.atom)) named_sink(std::move(chain));
  };
  switch (detect_format(text, name)) {
    case Format::kPdb:
      parse_pdb(text, name, options, model_sink);
      break;
    case Format::kMmcif:
      parse_mmcif(text, name, options, model_sink);
      break;
    case Format::kXyz:
      parse_xyz(text, name, options, named_sink);
      break;
    case Format::kPlain:
      parse_plain(text, name, named_sink);
      break;
  }
  if (!any) {
    fail_at(name, 0,
            options.atom.empty()
                ? "holds no polymer chain with CA or P atoms; name the atom to trace"
                : "holds no atom named " + in_quotes(options.atom) + "; name the atom to trace");
  }
}

}  // namespace korvex::read

// Reading of whole inputs: bytes, format, parser, traces.
#pragma once

#include <string>

#include "read/input.hpp"
#include "read/parsers.hpp"
#include "read/trace.hpp"

namespace korvex::read {

// Hands over the chains of the selected models as the input has them, with nothing selected, joined
// or split otherwise. Throws Error where the input, not the selection, holds no chain.
void each_chain(Input& input, const ReadOptions& options, Tracing tracing, const ChainSink& sink);

// The same of `bytes` as they are stored, maybe compressed; `name` stands for them in messages.
void each_chain(std::string bytes, const std::string& name, const ReadOptions& options,
                Tracing tracing, const ChainSink& sink);

}  // namespace korvex::read

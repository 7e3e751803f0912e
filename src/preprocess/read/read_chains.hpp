// Reading of whole inputs: bytes, format, parser, traces.
#pragma once

#include <string>

#include "preprocess/read/parsers.hpp"

namespace korvex::read {

// Hands over every chain of `bytes` (as stored: maybe compressed), model by model, as the file has
// them. `name` stands for the input in messages. Throws Error where there is none.
void each_chain(std::string bytes, const std::string& name, const ReadOptions& options,
                const ChainSink& sink);

}  // namespace korvex::read

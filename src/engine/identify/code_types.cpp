#include "engine/identify/code_types.hpp"

#include <cstring>
#include <utility>

namespace korvex {
namespace {

// Bytes that are equal for codes that differ in their segments alone.
void write_key(const GaussCode& code, std::string& key) {
  key.resize(code.size() * sizeof(std::uint32_t));
  for (std::size_t k = 0; k < code.size(); ++k) {
    const std::uint32_t word = static_cast<std::uint32_t>(code[k].mate) << 2 |
                               static_cast<std::uint32_t>(code[k].over) << 1 |
                               static_cast<std::uint32_t>(code[k].positive);
    std::memcpy(key.data() + k * sizeof word, &word, sizeof word);
  }
}

// Empties what is known by code when another one would be too many. `bytes` is what the codes take.
template <typename Known>
void make_room(Known& known, std::size_t& bytes, const std::string& key) {
  constexpr std::size_t kMostBytes = std::size_t{64} << 20;
  constexpr std::size_t kOverhead = 80;  // about that of an entry beside its code
  bytes += key.size() + kOverhead;
  if (bytes <= kMostBytes) return;
  known.clear();
  bytes = key.size() + kOverhead;
}

}  // namespace

std::int32_t CodeTypes::number_named(const std::string& name) {
  const auto [known, is_new] = numbers_.try_emplace(name, static_cast<std::int32_t>(names_.size()));
  if (is_new) names_.push_back(name);
  return known->second;
}

CodeType CodeTypes::type_of(const GaussCode& closed) {
  constexpr std::size_t kFewestKnottedPassages = 6;
  const auto crossings = static_cast<std::int32_t>(closed.size() / 2);
  if (closed.size() < kFewestKnottedPassages) return {kUnknotNumber, crossings, true};
  std::string key;
  write_key(closed, key);
  {
    const std::lock_guard lock(mutex_);
    if (const auto found = types_.find(key); found != types_.end()) return found->second;
  }
  const IdentifiedName identified = identify_(closed);
  const std::lock_guard lock(mutex_);
  const CodeType type{number_named(identified.name), crossings, identified.proven};
  make_room(types_, bytes_, key);
  return types_.try_emplace(std::move(key), type).first->second;
}

CodeType WorkerCodeTypes::of_open(const GaussCode& reduced, const Run& run) {
  constexpr std::size_t kFewestKnottedPassages = 4;
  if (reduced.size() < kFewestKnottedPassages) return {};
  write_key(reduced, key_);
  if (const auto found = types_.find(key_); found != types_.end()) return found->second;
  const CodeType type = of_closed(closed_over(reduced), run);
  make_room(types_, bytes_, key_);
  types_.emplace(key_, type);
  return type;
}

CodeType WorkerCodeTypes::of_closed(GaussCode code, const Run& run) {
  pass_moves_.simplify(code, reduction_, run);
  return shared_.type_of(code);
}

}  // namespace korvex

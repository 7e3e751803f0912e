#include "engine/identify/identity_table.hpp"

#include <utility>

namespace korvex {
namespace {

// What an allocation takes beside what was asked for, and an entry beside what it holds: its place
// among the buckets, its link and its hash.
constexpr std::size_t kAllocation = 16;
constexpr std::size_t kLinks = 3 * sizeof(void*) + kAllocation;

std::size_t bytes_beside(const std::string& text) {
  constexpr std::size_t kHeldInside = 15;
  return text.capacity() > kHeldInside ? text.capacity() + 1 + kAllocation : 0;
}

std::size_t bytes_of(const KnotIdentity& identity) {
  std::size_t bytes = sizeof identity + bytes_beside(identity.name) +
                      identity.candidates.capacity() * sizeof(void*) + 2 * kAllocation;
  for (const KnotIdentity& summand : identity.summands) bytes += bytes_of(summand);
  if (identity.alexander)
    for (const std::string& coefficient : identity.alexander->coefficients)
      bytes += sizeof coefficient + bytes_beside(coefficient);
  return bytes;
}

}  // namespace

IdentityTable::Part& IdentityTable::part_of(const HashedKey& key) {
  constexpr int kBitsOfBuckets = 40;
  return parts_[(key.hash >> kBitsOfBuckets) % kParts];
}

bool IdentityTable::find(std::string_view text, DiagramType& found) {
  const HashedKey key(text);
  Part& part = part_of(key);
  const std::lock_guard lock(part.mutex);
  const auto known = part.known.find(key);
  if (known == part.known.end()) return false;
  found = known->second.type;
  return true;
}

std::optional<KnotIdentity> IdentityTable::find(std::string_view text) {
  const HashedKey key(text);
  Part& part = part_of(key);
  const std::lock_guard lock(part.mutex);
  const auto known = part.known.find(key);
  if (known == part.known.end()) return std::nullopt;
  return *known->second.identity;
}

void IdentityTable::keep(std::string_view key, DiagramType type) {
  Entry entry;
  entry.type = std::move(type);
  keep(key, std::move(entry));
}

void IdentityTable::keep(std::string_view key, const KnotIdentity& identity) {
  Entry entry;
  entry.identity = std::make_unique<const KnotIdentity>(identity);
  keep(key, std::move(entry));
}

void IdentityTable::keep(std::string_view key, Entry entry) {
  const std::size_t most = most_bytes_ / kParts;
  std::string own(key);
  std::size_t bytes = sizeof(std::pair<const std::string, Entry>) + kLinks + bytes_beside(own) +
                      bytes_beside(entry.type.name);
  if (entry.identity) bytes += bytes_of(*entry.identity);
  if (bytes > most) return;
  Part& part = part_of(HashedKey(key));
  const std::lock_guard lock(part.mutex);
  if (part.bytes + bytes > most) part.forget();
  if (part.known.try_emplace(std::move(own), std::move(entry)).second) part.bytes += bytes;
}

void IdentityTable::limit_to(std::size_t most_bytes) {
  if (most_bytes_.exchange(most_bytes) > most_bytes) forget();
}

std::size_t IdentityTable::bytes() {
  std::size_t sum = 0;
  for (Part& part : parts_) {
    const std::lock_guard lock(part.mutex);
    sum += part.bytes;
  }
  return sum;
}

std::size_t IdentityTable::entries() {
  std::size_t sum = 0;
  for (Part& part : parts_) {
    const std::lock_guard lock(part.mutex);
    sum += part.known.size();
  }
  return sum;
}

void IdentityTable::forget() {
  for (Part& part : parts_) {
    const std::lock_guard lock(part.mutex);
    part.forget();
  }
}

void IdentityTable::Part::forget() {
  known = decltype(known)();  // the buckets, too
  bytes = 0;
}

IdentityCache::IdentityCache(std::size_t most_bytes)
    : table_(std::make_unique<IdentityTable>(most_bytes)) {}

IdentityCache::~IdentityCache() = default;

IdentityCache& IdentityCache::of_process() {
  static IdentityCache cache;
  return cache;
}

std::size_t IdentityCache::most_bytes() const { return table_->most_bytes(); }
void IdentityCache::limit_to(std::size_t most_bytes) { table_->limit_to(most_bytes); }
std::size_t IdentityCache::bytes() const { return table_->bytes(); }
std::size_t IdentityCache::diagrams() const { return table_->entries(); }
void IdentityCache::forget() { table_->forget(); }

IdentityCache& identities_of(const Run& run) {
  return run.identities != nullptr ? *run.identities : IdentityCache::of_process();
}

}  // namespace korvex

// The memory behind an IdentityCache: entries by key, spread over parts with a lock each.
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "korvex/gauss_code.hpp"
#include "korvex/identify.hpp"
#include "korvex/identity_cache.hpp"
#include "korvex/run.hpp"

namespace korvex {

// What votes and fingerprints count of a diagram.
struct DiagramType {
  std::string name = "0_1";
  bool proven = true;          // no other knot is possible
  std::int32_t crossings = 0;  // of the diagram after all moves
};

class IdentityTable {
 public:
  explicit IdentityTable(std::size_t most_bytes) : most_bytes_(most_bytes) {}

  // Whether the key is known; `found` becomes what was kept under it.
  bool find(std::string_view key, DiagramType& found);
  std::optional<KnotIdentity> find(std::string_view key);

  // What a key stands for must be a function of the key: the first of several is kept.
  void keep(std::string_view key, DiagramType type);
  void keep(std::string_view key, const KnotIdentity& identity);

  std::size_t most_bytes() const { return most_bytes_; }
  void limit_to(std::size_t most_bytes);
  std::size_t bytes();
  std::size_t entries();
  void forget();

 private:
  static constexpr std::size_t kParts = 64;

  // A key whose hash, which chooses the part as well, is taken once.
  struct HashedKey {
    explicit HashedKey(std::string_view text)
        : key(text), hash(std::hash<std::string_view>()(text)) {}

    operator std::string_view() const { return key; }

    std::string_view key;
    std::size_t hash;
  };

  struct Hash {
    using is_transparent = void;
    std::size_t operator()(std::string_view key) const {
      return std::hash<std::string_view>()(key);
    }
    std::size_t operator()(const HashedKey& key) const { return key.hash; }
  };

  struct Equal {
    using is_transparent = void;
    bool operator()(std::string_view a, std::string_view b) const { return a == b; }
  };

  // One of the two.
  struct Entry {
    DiagramType type;
    std::unique_ptr<const KnotIdentity> identity;
  };

  struct alignas(64) Part {
    std::mutex mutex;
    std::unordered_map<std::string, Entry, Hash, Equal> known;
    std::size_t bytes = 0;

    void forget();
  };

  Part& part_of(const HashedKey& key);
  void keep(std::string_view key, Entry entry);

  std::atomic<std::size_t> most_bytes_;
  std::array<Part, kParts> parts_;
};

// The cache that a run is to use.
IdentityCache& identities_of(const Run& run);

}  // namespace korvex

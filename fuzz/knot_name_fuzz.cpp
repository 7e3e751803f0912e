// Names of knots: whatever the text, no name or one that is written so that it is read the same;
// and the mirror image, the name without hands, the factors and the order agree with it.
#include <string>
#include <string_view>
#include <vector>

#include "korvex/knot_name.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::KnotName;

void check_one(const KnotName& name) {
  const std::string text = name.text();
  require(KnotName::parse(text) == name);
  require(name.mirror().mirror() == name);
  require(name.mirror().crossings() == name.crossings());
  require(name.plain().mirror() == name.plain() && name.mirror().plain() == name.plain());
  require(name.is_choice() || name.plain().covers(name));
  require(name.is_unknot() == (text == "0_1"));
  require(name.is_known() == name.crossings().has_value());
  const std::vector<KnotName> factors = name.factors();
  require(KnotName::sum(factors) == name);
  for (const KnotName& factor : factors) require(KnotName::one_of(factor.choices()) == factor);
}

void check_order(const KnotName& a, const KnotName& b) {
  require((a == b) == (a.text() == b.text()));
  require((a <=> b == 0) == (a == b));
  require((a < b) == (b > a));
  const KnotName names[] = {a, b};
  const KnotName reversed[] = {b, a};
  require(KnotName::sum(names) == KnotName::sum(reversed));
}

}  // namespace

// Two names with a line break between them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const std::size_t end = text.find('\n');
  const auto a = KnotName::parse(text.substr(0, end));
  if (a) check_one(*a);
  if (end == std::string_view::npos) return 0;
  const auto b = KnotName::parse(text.substr(end + 1));
  if (a && b) check_order(*a, *b);
  return 0;
}

// Text of diagrams and polynomials: whatever the bytes, what they say or korvex::Error; and what is
// understood is written so that it is understood the same.
#include <string>
#include <string_view>

#include "korvex/alexander.hpp"
#include "korvex/closure.hpp"
#include "korvex/error.hpp"
#include "korvex/homfly.hpp"
#include "korvex/jones.hpp"
#include "points.hpp"

namespace {

using fuzz::require;
using korvex::Diagram;

template <class Read>
void attempt(const Read& read) {
  try {
    read();
  } catch (const korvex::Error& error) {
    require(error.code() == korvex::ErrorCode::kBadInput ||
            error.code() == korvex::ErrorCode::kInvalidArgument);
    require(std::string_view(error.what()).size() > 10);
  }
}

void check_diagram(const Diagram& diagram) {
  const std::string text = diagram.gauss_code();
  require(Diagram::of_gauss_code(text).gauss_code() == text);
  require(diagram.crossings() == 0 || Diagram::of_pd(diagram.pd()).gauss_code() == text);
  if (diagram.crossings() > 60) return;
  const Diagram simple = diagram.simplified();
  require(simple.crossings() <= diagram.crossings());
  require(korvex::alexander_key(simple) == korvex::alexander_key(diagram));
}

}  // namespace

// The first byte chooses what the text is.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  switch (data[0] % 5) {
    case 0:
      attempt([&] { check_diagram(Diagram::of_gauss_code(text)); });
      break;
    case 1:
      attempt([&] { check_diagram(Diagram::of_pd(text)); });
      break;
    case 2:
      attempt([&] {
        const auto polynomial = korvex::jones_of_text(text);
        const std::string written = text_of(polynomial);
        require(text_of(korvex::jones_of_text(written)) == written);
      });
      break;
    case 3:
      attempt([&] {
        const auto polynomial = korvex::homfly_of_text(text);
        const std::string written = text_of(polynomial);
        require(text_of(korvex::homfly_of_text(written)) == written);
      });
      break;
    default:
      attempt([&] { require(name_of(korvex::closure_named(text)) == text); });
  }
  return 0;
}

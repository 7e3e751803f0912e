#include <filesystem>
#include <memory>
#include <string>

#include "command.hpp"
#include "commands.hpp"
#include "korvex/catalogue.hpp"
#include "korvex/diagram.hpp"
#include "korvex/drawing.hpp"
#include "korvex/palette.hpp"
#include "korvex/report.hpp"
#include "options.hpp"
#include "output_file.hpp"

namespace korvex::cli {
namespace {

constexpr const char* kInk = "#333333";

struct DrawOptions {
  std::string name;
  std::string gauss;
  std::string pd;
  std::string output;
  bool is_reduced = false;
};

struct Drawn {
  Diagram diagram;
  std::string caption;
  std::string colour;
};

Drawn of_type(const std::string& name) {
  const KnotType* type = find_knot_type(name);
  if (type == nullptr)
    throw Failure(Exit::kSomeInputsFailed, "the catalogue has no knot '" + name +
                                               "': names are such as 3_1, +5_2, -3_1#4_1");
  const bool is_knotted = type->crossings > 0;
  return {Diagram::of_gauss_code(type->gauss_code), type->name,
          is_knotted ? colour_of_type(type->name) : kInk};
}

Drawn of_code(const Diagram& diagram, bool is_reduced) {
  const Diagram drawn = is_reduced ? diagram.simplified() : diagram;
  const std::size_t crossings = drawn.crossings();
  return {drawn, std::to_string(crossings) + (crossings == 1 ? " crossing" : " crossings"), kInk};
}

Drawn asked_for(const DrawOptions& options) {
  if (options.name.empty() + options.gauss.empty() + options.pd.empty() != 2)
    throw Failure(Exit::kUsage, "name one knot to draw, or give its diagram by --gauss or --pd");
  if (!options.name.empty()) return of_type(options.name);
  return of_code(
      options.pd.empty() ? Diagram::of_gauss_code(options.gauss) : Diagram::of_pd(options.pd),
      options.is_reduced);
}

Option code(const std::string& names, std::string& code, const std::string& help) {
  return {names, help, TakeOne([&code](const std::string& text) { code = text; }), "CODE"};
}

void require_svg(const std::string& output) {
  const std::string extension = std::filesystem::path(output).extension().string();
  if (output != "-" && !extension.empty() && extension != ".svg")
    throw Failure(Exit::kUsage, "drawings are SVG: let the name of '" + output + "' end in .svg");
}

Exit run_draw(const DrawOptions& options) {
  require_svg(options.output);
  const Drawn drawn = asked_for(options);
  OutputFile written(options.output);
  write_drawing(drawn.diagram, draw(drawn.diagram), drawn.caption, drawn.colour, written.stream());
  written.publish();
  return Exit::kDone;
}

}  // namespace

Command draw_command() {
  auto options = std::make_shared<DrawOptions>();
  Command command{"draw", "Draw a knot of the catalogue, or a diagram", {}, [options] {
                    return run_draw(*options);
                  }};
  command.add(
      {.names = "KNOT",
       .help = "Knot of the catalogue, as 7_4, -3_1 or 3_1#4_1; without\na hand: the "
               "right-handed one",
       .target = TakeOne([&name = options->name](const std::string& text) { name = text; })});
  command.add(
      code("--gauss", options->gauss, "Diagram to draw, as its passages: O1+U2+O3+U1+O2+U3+"));
  command.add(code("--pd", options->pd,
                   "Diagram to draw, as its crossings:\n[[1,5,2,4],[5,3,6,2],[3,1,4,6]]"));
  command.add(
      {"--simplified", "Simplify the diagram of --gauss or --pd first", &options->is_reduced});
  command.add(output(options->output, "drawing"));
  return command;
}

}  // namespace korvex::cli

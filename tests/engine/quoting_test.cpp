#include "korvex/quoting.hpp"

#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "korvex/error.hpp"
#include "korvex/report.hpp"

namespace korvex {
namespace {

TEST(QuotedForTerminal, KeepsWhatIsHarmless) {
  for (const char* text : {"", "data/proteins/2efv.pdb chain A", "C:\\files\\a.pdb", "-2", "=1",
                           "Übergröße 結び目 \xF0\x9F\xAA\xA2"})
    EXPECT_EQ(quoted_for_terminal(text), text);
}

TEST(QuotedForTerminal, LeavesNoByteThatATerminalWouldObey) {
  EXPECT_EQ(quoted_for_terminal("a\tb\nc\rd"), "a\\tb\\nc\\rd");
  EXPECT_EQ(quoted_for_terminal("\x1b[2J\x07\x7f"), "\\x1b[2J\\x07\\x7f");
  EXPECT_EQ(quoted_for_terminal(std::string_view("\0", 1)), "\\x00");
  EXPECT_EQ(quoted_for_terminal("\xC2\x9B"), "\\xc2\\x9b");           // C1: begins a command
  EXPECT_EQ(quoted_for_terminal("\xE2\x80\xAE"), "\\xe2\\x80\\xae");  // turns the direction
  EXPECT_EQ(quoted_for_terminal("\xE2\x80\xA8"), "\\xe2\\x80\\xa8");  // line separator
  EXPECT_EQ(quoted_for_terminal("\xff\xC3("), "\\xff\\xc3(");         // no UTF-8
  EXPECT_EQ(quoted_for_terminal("\xC0\x8A"), "\\xc0\\x8a");           // an overlong line feed
  EXPECT_EQ(quoted_for_terminal("\xED\xA0\x80"), "\\xed\\xa0\\x80");  // half a surrogate pair
  EXPECT_EQ(quoted_for_terminal("\xF4\x90\x80\x80"), "\\xf4\\x90\\x80\\x80");
  EXPECT_EQ(quoted_for_terminal("\xE2\x80"), "\\xe2\\x80");  // cut short
  EXPECT_EQ(quoted_for_terminal(std::string_view("\xE2\x80\xA2").substr(0, 2)), "\\xe2\\x80");
  EXPECT_EQ(quoted_for_terminal("\xE0\x81\x81"), "\\xe0\\x81\\x81");           // an overlong letter
  EXPECT_EQ(quoted_for_terminal("\xF9\x80\x80\x80"), "\\xf9\\x80\\x80\\x80");  // no lead byte
}

TEST(QuotedForTerminal, TakesOutTheEndsOfEachRangeAndKeepsTheirNeighbours) {
  for (const char* harmful :
       {"\x1f", "\x7f", "\xC2\x80", "\xC2\x9f", "\xD8\x9C", "\xE2\x80\x8E", "\xE2\x80\x8F",
        "\xE2\x80\xA8", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xE2\x81\xA9"})
    EXPECT_EQ(quoted_for_terminal(harmful).find("\\x"), 0u) << quoted_for_terminal(harmful);
  for (const char* harmless :
       {" ", "~", "\xC2\xA0", "\xD8\x9B", "\xD8\x9D", "\xE2\x80\x8D", "\xE2\x80\x90",
        "\xE2\x80\xA7", "\xE2\x80\xAF", "\xE2\x81\xA5", "\xE2\x81\xAA"})
    EXPECT_EQ(quoted_for_terminal(harmless), harmless);
}

TEST(QuotedForTsv, LeavesNoFormula) {
  for (const char start : {'=', '+', '-', '@'})
    EXPECT_EQ(quoted_for_tsv(std::string(1, start) + "1"), "\\" + std::string(1, start) + "1");
  EXPECT_EQ(quoted_for_tsv("\t=1"), "\\t=1");
  EXPECT_EQ(quoted_for_tsv("a=1"), "a=1");
}

// What quoting promises to a reader of the cell.
std::string read_back(const std::string& cell) {
  std::string text;
  for (std::size_t k = 0; k < cell.size(); ++k) {
    if (cell[k] != '\\') {
      text += cell[k];
      continue;
    }
    const char kind = cell.at(++k);
    if (kind == 't' || kind == 'n' || kind == 'r') {
      text += kind == 't' ? '\t' : kind == 'n' ? '\n' : '\r';
    } else if (kind == 'x') {
      text += static_cast<char>(std::stoi(cell.substr(k + 1, 2), nullptr, 16));
      k += 2;
    } else {
      text += kind;
    }
  }
  return text;
}

TEST(QuotedForTsv, CanBeReadBackWhateverTheTextWas) {
  std::string all;
  for (int byte = 0; byte < 256; ++byte) all += static_cast<char>(byte);
  for (const std::string& text :
       {all, std::string("=\\t"), std::string("\\x41"), std::string("-\\-"), std::string()}) {
    const std::string cell = quoted_for_tsv(text);
    EXPECT_EQ(read_back(cell), text);
    EXPECT_EQ(cell.find_first_of("\t\n\r\x1b"), std::string::npos);
  }
}

Chain hostile_chain(const std::string& name, const std::string& source) {
  Chain chain;
  chain.name = name;
  chain.source = source;
  chain.points.resize(6);
  for (std::int32_t k = 0; k < 6; ++k) chain.residues.push_back({k - 2, ' ', "GLY"});
  return chain;
}

Location located() {
  KnotPlace place;
  place.type = "+3_1";
  place.core = {1, 4};
  place.longest = {0, 5};
  return {"+3_1", 1, {"+3_1"}, {place}};
}

std::string written(const Chain& chain, ReportFormat format) {
  std::ostringstream out;
  LocationReport report(format, out);
  report.add(chain, located());
  report.finish();
  return out.str();
}

TEST(Reports, HoldHostileNamesInOneCellAndOneLine) {
  const Chain chain = hostile_chain("A\tB\n+3_1", "=cmd\r\x1b]0;title\x07.pdb");
  Votes votes;
  votes.trials = 1;
  votes.types.push_back({"0_1", 1, 1, {0, 1}, 1});
  for (const ReportFormat format : {ReportFormat::kText, ReportFormat::kTsv}) {
    std::ostringstream out;
    VotesReport(format, out).add(chain, Closure::kRays, votes);
    for (const std::string& text : {out.str(), written(chain, format)}) {
      const std::string last = text.substr(text.find("cmd"));
      EXPECT_EQ(last.find_first_of("\r\x1b\x07"), std::string::npos);
      EXPECT_EQ(last.find("A\t"), std::string::npos);
      EXPECT_EQ(last.find("B\n"), std::string::npos);
    }
  }
  const std::string rows = written(chain, ReportFormat::kTsv);
  EXPECT_EQ(rows.substr(rows.find('\n') + 1)
                .rfind("\\=cmd\\r\\x1b]0;title\\x07.pdb\t1\tA\\tB\\n+3_1\t", 0),
            0u);
}

TEST(Scripts, RefuseNamesThatCouldBeCommands) {
  const std::vector<Chain> refused{
      hostile_chain("A; /open('f','w').write('x')#", "a.pdb"),
      hostile_chain("A\nquit", "a.pdb"),
      hostile_chain("A, all", "a.pdb"),
      hostile_chain("A or all", "a.pdb"),
      hostile_chain("A+B", "a.pdb"),
      hostile_chain("A", "a\"; quit;\".pdb"),
      hostile_chain("A", "a\nquit\n.pdb"),
      hostile_chain("A", "a\\.pdb"),
      hostile_chain("A", "$HOME.pdb"),
      hostile_chain("A", "a`.pdb"),
      hostile_chain("A", "a(.pdb"),
      hostile_chain("A", "a).pdb"),
      hostile_chain("A", "a[.pdb"),
      hostile_chain("A", "a].pdb"),
      hostile_chain("A", "a{.pdb"),
      hostile_chain("A", "a}.pdb"),
      hostile_chain("A", "~a.pdb"),
      hostile_chain("A", "script.py"),
      hostile_chain("A", "script.pml"),
      hostile_chain("A", ".pdb"),
      hostile_chain("A", "standard input"),
      hostile_chain("A", ""),
  };
  for (const ReportFormat format : {ReportFormat::kPymol, ReportFormat::kChimerax})
    for (const Chain& chain : refused)
      EXPECT_THROW(written(chain, format), Error) << chain.name << ' ' << chain.source;
  Chain chain = hostile_chain("A", "a.pdb");
  chain.residues[4].insertion_code = ';';
  EXPECT_THROW(written(chain, ReportFormat::kChimerax), Error);
}

TEST(Scripts, TakeCommandsOutOfComments) {
  for (const ReportFormat format : {ReportFormat::kPymol, ReportFormat::kChimerax}) {
    const std::string script = written(hostile_chain("A", "a; quit.pdb"), format);
    EXPECT_EQ(script.substr(0, script.find('\n')), "# a? quit.pdb chain A");
    EXPECT_NE(script.find(" \"a; quit.pdb\""), std::string::npos);
  }
}

TEST(Scripts, TakeFilesOfMoleculesWhateverTheCaseOfTheirEnding) {
  for (const ReportFormat format : {ReportFormat::kPymol, ReportFormat::kChimerax})
    for (const char* source : {"a.PDB", "a.cif.gz", "a.Gro", "a.xyz", "a.ent", "a.mmcif"})
      EXPECT_NE(written(hostile_chain("A", source), format).find(std::string(" \"") + source + '"'),
                std::string::npos);
}

TEST(PymolScripts, NameSelectionsInLettersDigitsAndUnderscores) {
  const auto selection = [](const Chain& chain, const char* type) {
    Location location = located();
    location.knots.front().type = type;
    std::ostringstream out;
    LocationReport(ReportFormat::kPymol, out).add(chain, location);
    const std::string text = out.str();
    const std::size_t begin = text.find("select ") + 7;
    return text.substr(begin, text.find(',', begin) - begin);
  };
  EXPECT_EQ(selection(hostile_chain("A", "a.pdb"), "+3_1#-5_2"), "core_a_A_p3_1_m5_2");
  EXPECT_EQ(selection(hostile_chain("A-1", "/x y.pdb"), "4_1"), "core_x_y_A_1_4_1");
  EXPECT_EQ(selection(hostile_chain("A_", "___.pdb"), "4_1"), "core_molecule_A__4_1");
  EXPECT_EQ(selection(hostile_chain("", "a.pdb"), "4_1"), "core_a_4_1");
}

TEST(PymolScripts, PutABackslashBeforeNegativeNumbers) {
  EXPECT_NE(written(hostile_chain("A", "a.pdb"), ReportFormat::kPymol).find("resi \\-1-2\n"),
            std::string::npos);
}

TEST(PymolScripts, LeaveOutInsertionCodesBesideTheStretch) {
  Chain chain = hostile_chain("A", "a.pdb");
  const std::pair<int, char> labels[] = {{5, ' '}, {5, 'A'}, {6, ' '},
                                         {7, ' '}, {8, ' '}, {8, 'B'}};
  for (std::size_t k = 0; k < 6; ++k)
    chain.residues[k] = {labels[k].first, labels[k].second, "GLY"};
  EXPECT_NE(written(chain, ReportFormat::kPymol).find("resi 5-8 and not resi 5+8B\n"),
            std::string::npos);
}

TEST(PymolScripts, NameEachResidueWhereNumbersDoNotRise) {
  Chain chain = hostile_chain("A", "a.pdb");
  const int numbers[] = {7, 8, 9, -1, 2, 3};
  for (std::size_t k = 0; k < 6; ++k) chain.residues[k].number = numbers[k];
  EXPECT_NE(written(chain, ReportFormat::kPymol).find("resi 8+9+\\-1+2\n"), std::string::npos);
}

TEST(Scripts, LoadEachFileOnceAndGiveEachNameOnce) {
  std::ostringstream out;
  LocationReport report(ReportFormat::kPymol, out);
  for (const char* source : {"a/x.pdb", "a/x.pdb", "a_x.cif"})
    for (const char* name : {"A", "B"}) report.add(hostile_chain(name, source), located());
  report.finish();
  std::istringstream lines(out.str());
  std::vector<std::string> loads;
  std::set<std::string> selections;
  std::size_t selected = 0;
  for (std::string line; std::getline(lines, line);) {
    if (line.starts_with("load ")) loads.push_back(line);
    if (!line.starts_with("select ")) continue;
    ++selected;
    selections.insert(line.substr(0, line.find(',')));
  }
  EXPECT_EQ(loads, (std::vector<std::string>{"load \"a/x.pdb\", a_x", "load \"a_x.cif\", a_x_2"}));
  EXPECT_EQ(selected, 6u);
  EXPECT_EQ(selections.size(), selected);
}

TEST(Reports, RefuseFormatsThatTheirAnswersHaveNot) {
  std::ostringstream out;
  EXPECT_THROW(VotesReport(ReportFormat::kPymol, out), Error);
  EXPECT_THROW(CatalogueReport(ReportFormat::kNpz, out), Error);
  EXPECT_THROW(LocationReport(ReportFormat::kMatrix, out), Error);
  EXPECT_EQ(out.str(), "");
}

TEST(Reports, OfNothingAreComplete) {
  const auto empty = [](ReportFormat format) {
    std::ostringstream out;
    VotesReport(format, out).finish();
    return out.str();
  };
  EXPECT_EQ(empty(ReportFormat::kText), "");
  EXPECT_EQ(empty(ReportFormat::kJson), "[]\n");
  EXPECT_EQ(empty(ReportFormat::kTsv),
            "source\tmodel\tchain\tresidues\tclosure\ttrials\ttype\tvotes\tshare\tlow\thigh\tgaps\t"
            "longest_gap\t"
            "mended\tends\tpart\ttime\tstep\tplddt\n");
}

TEST(Reports, TellTimeStepAndConfidence) {
  Chain chain;
  chain.points = {{0, 0, 0}, {1, 0, 0}};
  chain.residues.resize(2);
  chain.source = "file";
  chain.model = 3;
  chain.step = 500;
  EXPECT_EQ(title_of(chain), "file model 3 step 500");
  chain.time = 0.25;
  chain.plddt = {90, 95.5};
  EXPECT_EQ(title_of(chain), "file model 3 time 0.25");
  const auto report = [&](ReportFormat format) {
    std::ostringstream out;
    VotesReport written(format, out);
    Votes votes;
    votes.trials = 1;
    votes.types.push_back({"0_1", 1, 1.0, {}, 1});
    written.add(chain, Closure::kOut, votes);
    written.finish();
    return out.str();
  };
  EXPECT_NE(report(ReportFormat::kText).find(", mean pLDDT 92.75)"), std::string::npos);
  EXPECT_NE(report(ReportFormat::kTsv).find("\t0.25\t500\t92.75\n"), std::string::npos);
  const std::string json = report(ReportFormat::kJson);
  for (const char* part : {"\"time\": 0.25", "\"step\": 500", "\"plddt\": 92.75"})
    EXPECT_NE(json.find(part), std::string::npos) << json;
  chain.time.reset();
  chain.step.reset();
  chain.plddt.clear();
  EXPECT_NE(report(ReportFormat::kTsv).find("\t0\t\t\t\n"), std::string::npos);
  EXPECT_EQ(report(ReportFormat::kJson).find("time"), std::string::npos);
}

}  // namespace
}  // namespace korvex

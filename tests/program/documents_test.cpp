// README.md, the documents under docs/, the man page and what editors and shells know of the program: what they show is
// what the program does, and nothing is missing.
//
// A block that begins with ```kiln-as is a program, with its options after the word; it is assembled as main.asm. The
// blocks after it say what comes out: ```bytes the segments of a flat XEX file that runs at the first of them,
// ```image any file byte by byte, ```listing a part of the listing, and ```messages the lines on standard error, where
// the summary may be left out. A program without ```messages assembles in silence. ```file NAME is a file for all later
// programs of the document.
//
// ```memory is what a program leaves: recipes_test.cpp runs those.
//
// ```kiln-check is a program that is checked as main.asm, with options after the word, and ```findings what is printed
// on standard output; without it, nothing is. ```written NAME is a whole file that it writes.
//
// Lists that are made from the program's own tables are between markers. KILN_UPDATE_DOCS=1 rewrites them.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <regex>
#include <set>

#include "base/format.h"
#include "base/version.h"
#include "driver/options.h"
#include "driver/run.h"
#include "host/real_host.h"
#include "inspect/check_options.h"
#include "inspect/check_run.h"
#include "inspect/checks.h"
#include "isa/opcodes.h"
#include "source/kinds.h"
#include "source/seeds.h"
#include "support/program.h"

namespace kiln::test {
namespace {

const std::filesystem::path root = std::filesystem::path(KILN_EXAMPLES_DIR).parent_path();

std::string read(const std::filesystem::path& path) { return RealHost().readFile(path).value_or(""); }

// Every match of the pattern's group.
std::vector<std::string> findAll(const std::string& text, const std::string& pattern) {
  const std::regex expression(pattern);
  const std::sregex_token_iterator first(text.begin(), text.end(), expression, 1), end;
  return {first, end};
}

std::string replaced(const std::string& text, const std::string& pattern, const std::string& by = "") {
  return std::regex_replace(text, std::regex(pattern), by);
}

// "2000: A9 01", a line for each segment; a line that begins with a blank goes on with the segment above.
std::string flatFile(const std::string& block) {
  const auto addresses = findAll(block, "(....):"), contents = findAll(block, ":((?: [^\n]*\n)+)");
  Contents segments;
  for (size_t i = 0; i < addresses.size(); ++i)
    segments.emplace_back(std::stoul(addresses[i], nullptr, 16), contents.at(i));
  return xex(segments, segments.at(0).first);
}

// The examples of one document.
struct Examples {
  std::map<std::string, std::string> files;
  std::string file, listing, said;  // what is said on standard error, as long as it was not expected
  std::string found;                // by kiln-check, likewise
  std::map<std::string, std::string> written;

  void assemble(const std::string& options) {
    expectMessages("");
    MemoryHost host;
    host.files = files;
    run(host, findAll("kiln-as -l ~ " + options + " main.asm", "([^ ]+)"));
    said = host.standardError;
    listing = replaced(host.written["~"], " +(?=\n)");
    file = host.written.begin()->second;  // empty when there is none, for then there is no listing either
  }
  void check(const std::string& options) {
    expectFindings("");
    MemoryHost host;
    host.files = files;
    runCheck(host, findAll("kiln-check " + options + " main.asm", "([^ ]+)"), false);
    found = host.standardOutput;
    written = host.written;
    EXPECT_EQ(host.standardError, "");
  }
  void expectWritten(const std::string& path, const std::string& text) { EXPECT_EQ(written[path], text); }
  void expectFindings(const std::string& text) { EXPECT_EQ(std::exchange(found, ""), text); }
  void expectMessages(const std::string& text) {
    const bool hasSummary = text.find("kiln-as: assembled ") != std::string::npos;
    EXPECT_EQ(replaced(std::exchange(said, ""), hasSummary ? "^$" : "kiln-as: assembled [^\n]*\n"), text);
  }
  void read(const std::string& word, const std::string& argument, const std::string& text) {
    const std::string data = replaced(text, " *;[^\n]*");
    if (word == "findings") expectFindings(text);
    if (word == "file" || word == "kiln-as" || word == "kiln-check")
      files[word == "file" ? argument : "main.asm"] = text;
    if (word == "kiln-as") assemble(argument);
    if (word == "kiln-check") check(argument);
    if (word == "written") expectWritten(argument, text);
    if (word == "messages") expectMessages(text);
    if (word == "listing" && listing.find(text) == std::string::npos) ADD_FAILURE() << listing;
    EXPECT_EQ(hex(file), hex(word == "bytes" ? flatFile(data) : word == "image" ? bytes(data) : file));
    const std::regex known(
        "file|kiln-as|kiln-check|findings|written|messages|listing|memory|bytes|image|text|sh|make|json");
    EXPECT_TRUE(files.empty() || std::regex_match(word, known)) << word;
  }
};

TEST(Documents, ShowWhatIsAssembled) {
  std::vector<std::filesystem::path> paths = {root / "README.md"};
  for (const auto& entry : std::filesystem::directory_iterator(root / "docs")) {
    if (entry.path().extension() == ".md") paths.push_back(entry.path());
  }
  for (const std::filesystem::path& path : paths) {
    Examples examples;
    const std::string document = read(path);
    for (size_t end = 0, begin; (begin = document.find("\n```", end)) != std::string::npos; end += 4) {
      const size_t line = document.find('\n', begin + 4);
      end = document.find("\n```\n", line);
      ASSERT_NE(end, std::string::npos) << path;
      SCOPED_TRACE(path.string() + ":" + document.substr(begin, end - begin));
      const std::string head = document.substr(begin + 4, line - begin - 4);
      examples.read(replaced(head, " .*"), replaced(head, "^[^ ]* ?"), document.substr(line + 1, end - line));
    }
    examples.expectMessages("");
    examples.expectFindings("");
  }
}

// The pages keep their places when they are installed; only these are.
TEST(Documents, LinkToInstalledFiles) {
  const std::regex installed("(README|CHANGELOG|CONTRIBUTING)\\.md|(docs|examples)(/.*)?");
  std::vector<std::filesystem::path> pages = {"README.md", "CHANGELOG.md", "CONTRIBUTING.md"};
  for (const auto& entry : std::filesystem::directory_iterator(root / "docs"))
    if (entry.path().extension() == ".md") pages.push_back("docs" / entry.path().filename());
  for (const std::filesystem::path& page : pages) {
    for (const std::string& link : findAll(read(root / page), "\\]\\(([^)#:]+)[)#]")) {
      const std::string target = (page.parent_path() / link).lexically_normal();
      EXPECT_TRUE(std::regex_match(target, installed) && std::filesystem::exists(root / target)) << page << link;
    }
  }
}

// Compares with the list between the markers of this name in docs/language.md.
void expectGenerated(const std::string& name, const std::string& list) {
  const std::string text = replaced(list, " +(?=\n)");
  const std::string document = read(root / "docs/language.md");
  const std::string before = "<!-- " + name + " -->\n```text\n";
  const size_t begin = document.find(before) + before.size();
  const size_t end = document.find("```\n<!-- end of " + name + " -->", begin);
  ASSERT_TRUE(begin >= before.size() && end != std::string::npos) << "no markers for " << name;
  EXPECT_EQ(document.substr(begin, end - begin), text) << "KILN_UPDATE_DOCS=1 writes the list anew";
  if (std::getenv("KILN_UPDATE_DOCS") == nullptr) return;
  std::ofstream(root / "docs/language.md") << document.substr(0, begin) << text << document.substr(end);
}

TEST(Documents, ListInstructionsAndNames) {
  const std::string head =
      "     alone  #n  zp  zp,X  zp,Y  abs  abs,X  abs,Y  (abs)  (zp,X)  (zp),Y  rel  n,SP  SP,n  (n,SP),Y  n,SP,X";
  // The column of each mode, in their order; the first two share a column.
  constexpr size_t columns[modeCount] = {5, 5, 12, 16, 20, 26, 32, 37, 44, 51, 58, 66, 74, 79, 85, 91, 101};
  std::string table = head + "\n";
  for (size_t i = 1; i <= mnemonicCount; ++i) {
    const auto mnemonic = static_cast<Mnemonic>(i);
    std::string line = std::string(mnemonicText(mnemonic)).append(head.size() - 3, ' ') + "\n";
    for (size_t mode = 0; mode < modeCount; ++mode) {
      const int opcode = opcodeFor(mnemonic, static_cast<Mode>(mode));
      if (opcode >= 0) line.replace(columns[mode], 2, dollarHex(opcode, 2), 1, 2);
    }
    table += line;
  }
  expectGenerated("instructions", table);

  std::set<std::string> names;
  SymbolTable symbols;
  enterSeeds({}, symbols);
  for (const Symbol& equate : symbols.symbols()) {
    const std::string name = (std::string(equate.name) + "       ").substr(0, 8);
    names.insert((name + dollarHex(equate.value, equate.value > 0xFF ? 4 : 2) + "     ").substr(0, 16));
  }
  std::string list;
  for (const std::string& name : names)
    list += name + (list.size() % 97 == 80 ? "\n" : "");
  expectGenerated("built-in names", list + "\n");
}

// Texts of several words in the sources are messages, except for lines of assembly language and for directives.
TEST(Documents, ExplainEveryMessage) {
  const std::string document = read(root / "docs/messages.md");
  const std::regex severalWords("^(?!    | *[.;>]).*([a-z]{2}.* | .*[a-z]{2})");
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / "src")) {
    const std::set<std::string> others = {"inspect", "lsp", "library"};
    if (entry.path().extension() != ".cpp" || others.count(entry.path().parent_path().filename()) != 0) continue;
    // Without comments, quotes as characters, the usage text, line ends, and where a text continues in the next line.
    const std::string code = replaced(read(entry.path()), R"--(//[^\n]*|'"'|R"\([^"]*\)"|\\n|"\s*")--");
    for (const std::string& text : findAll(code, R"--("([^"\n]*)")--"))
      EXPECT_TRUE(!std::regex_search(text, severalWords) || document.find(text) != std::string::npos) << text;
  }
}

// docs/check.md shows a finding of every check, and its table is the program's own.
TEST(Documents, ShowEveryCheck) {
  const std::string document = read(root / "docs/check.md");
  for (const CheckRow& row : checkRows) {
    const std::string name(row.name);
    EXPECT_NE(document.find("\n### " + name + "\n"), std::string::npos) << name << " has no section";
    EXPECT_NE(document.find(" [" + name + "]\n"), std::string::npos) << "no finding of " << name << " is shown";
    const std::string line =
        "| `" + name + "` | " + (row.isExtra ? "extra | " : "| ") + std::string(row.summary) + " |";
    EXPECT_NE(document.find(line), std::string::npos) << line;
  }
}

std::set<std::string> options() {
  std::set<std::string> spellings;
  for (const OptionRow<Options>& row : optionRows())
    spellings.emplace(row.spelling);
  return spellings;
}

// Those that kiln-check has besides, or for itself, without the "=" or "-" at the end.
std::set<std::string> ownOptionsOfKilnCheck() {
  std::set<std::string> spellings;
  for (const OptionRow<CheckOptions>& row : checkOptionRows())
    spellings.insert(replaced(std::string(row.spelling), "[-=]$"));
  return spellings;
}

// The options that a man page describes.
std::set<std::string> optionsIn(const std::string& page) {
  std::set<std::string> described;
  for (const std::string& heading : findAll(page, R"(\.TP\n\.BI?R?( [^\n]*))"))
    for (const std::string& option : findAll(heading, R"([ "](-[-A-Za-z]*[A-Za-z]))"))
      described.insert(option);
  return described;
}

TEST(ManPages, HaveEveryOption) {
  EXPECT_EQ(optionsIn(replaced(read(root / "man/kiln-as.1"), R"(\\-)", "-")), options());
  EXPECT_EQ(optionsIn(replaced(read(root / "man/kiln-check.1"), R"(\\-)", "-")), ownOptionsOfKilnCheck());
  for (const std::string& option : findAll(std::string(usageText()), "(?:\n  |, )(-[-A-Za-z]+)"))
    EXPECT_EQ(options().count(option), 1U) << option;
}

// The words are in this part of a file.
void expectWords(const std::string& part, const std::set<std::string>& words) {
  const std::vector<std::string> list = findAll(part, "([-A-Za-z0-9_]*[A-Za-z0-9_])");
  const std::set<std::string> found(list.begin(), list.end());
  for (const std::string& word : words)
    EXPECT_EQ(found.count(word), 1U) << word << " is not in " << part;
}

void expectCompletions(const std::string& program, const std::set<std::string>& spellings) {
  const std::filesystem::path folder = root / "completions";
  expectWords(findAll(read(folder / (program + ".bash")), "options='([^']*)").at(0), spellings);
  expectWords(replaced(read(folder / ("_" + program)), "\\[[^\n]*"), spellings);
  const std::string fish = replaced(read(folder / (program + ".fish")), " -d [^\n]*");
  expectWords(replaced(replaced(fish, " -l ", " --"), " -o ", " -"), spellings);
}

TEST(Completions, HaveEveryOption) {
  std::set<std::string> all = ownOptionsOfKilnCheck();
  all.merge(options());
  expectCompletions("kiln-as", options());
  expectCompletions("kiln-check", all);
}

TEST(SyntaxFiles, HaveEveryInstructionAndDirective) {
  std::set<std::string> words = {"include", "macro"};
  for (const KindRow& row : kindRows)
    words.insert(replaced(std::string(row.spelling), "[. ]"));
  words.erase("");
  for (size_t i = 1; i <= mnemonicCount; ++i)
    words.emplace(mnemonicText(static_cast<Mnemonic>(i)));
  expectWords(replaced(read(root / "editors/vim/syntax/kiln.vim"), "\n(?!syntax)[^\n]*"), words);
  expectWords(replaced(read(root / "editors/textmate/kiln.tmLanguage.json"), "\n(?![^\n]*\"match\")[^\n]*"), words);
}

TEST(Version, IsTheSameEverywhere) {
  const std::string release = std::string(version);
  const std::vector<std::string> once = {release}, packaged = {release + ".0"};
  for (const char* page : {"man/kiln-as.1", "man/kiln-check.1", "man/kiln-lsp.1"})
    EXPECT_EQ(findAll(read(root / page), R"(\.TH [^\n]*kiln\\-as ([0-9.]+))"), once);
  EXPECT_EQ(findAll(read(root / "man/kiln-as.1"), "/opt/kiln/([0-9.]+)"), once);
  EXPECT_EQ(findAll(read(root / "README.md"), "kiln-as_([0-9.]+)"), once);
  for (const char* manifest : {"editors/textmate/package.json", "editors/vscode/package.json"})
    EXPECT_EQ(findAll(read(root / manifest), "\"version\": \"([^\"]+)"), packaged);
}

TEST(ManPages, HaveADateAndPointToEachOther) {
  const std::set<std::string> programs = {"kiln\\-as", "kiln\\-check", "kiln\\-lsp"};
  for (const std::string& program : programs) {
    const std::string page = read(root / "man" / replaced(program + ".1", R"(\\)"));
    EXPECT_EQ(findAll(page, R"(^\.TH [^ ]+ 1 (20\d\d-\d\d-\d\d) )").size(), 1u) << program;
    std::set<std::string> others = programs;
    others.erase(program);
    const auto named = findAll(page.substr(page.rfind(".SH ")), R"(\.BR ([^ ]+) \(1\))");
    EXPECT_EQ(std::set<std::string>(named.begin(), named.end()), others) << program;
  }
}

}  // namespace
}  // namespace kiln::test

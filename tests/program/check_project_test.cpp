// kiln-check without an input: the programs of ".kiln".
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "inspect/check_run.h"
#include "inspect/project.h"
#include "support/program.h"

namespace kiln::test {
namespace {

using Files = std::map<std::string, std::string>;

struct Outcome {
  int status = 0;
  std::string output;  // where and what, without the lines of the source
  std::string errors;
  std::vector<std::string> written;
};

std::vector<std::string> namesOf(const Files& files) {
  std::vector<std::string> names;
  for (const auto& [name, text] : files)
    names.push_back(name);
  return names;
}

Outcome check(const std::string& options, const Files& files) {
  MemoryHost host;
  host.files = files;
  const int status = runCheck(host, words("kiln-check" + options), false);
  return {status, host.standardOutput, host.standardError, namesOf(host.written)};
}

// The findings as "FILE:LINE CHECK".
std::vector<std::string> placesIn(const std::string& jsonLines) {
  std::vector<std::string> places;
  for (size_t at = 0, end = 0; (end = jsonLines.find('\n', at)) != std::string::npos; at = end + 1) {
    const auto finding = nlohmann::json::parse(jsonLines.substr(at, end - at));
    places.push_back(finding["file"].get<std::string>() + ":" + std::to_string(finding["line"].get<int>()) + " " +
                     finding["check"].get<std::string>());
  }
  return places;
}

using Places = std::vector<std::string>;

const std::string fine = " .org $2000\n RTS\n";
const std::string vanishes = " .org $2000\n LDZ #1\n RTS\n";
const std::string fails = " .org $2000\n LDA (5)\n";

TEST(CheckProject, HasTheHighestStatusOfItsLines) {
  const Files sources = {{"fine.asm", fine}, {"vanishes.asm", vanishes}, {"fails.asm", fails}};
  const auto statusOf = [&sources](const std::string& project) {
    Files files = sources;
    files[".kiln"] = project;
    return check("", files).status;
  };
  EXPECT_EQ(statusOf("fine.asm\n"), 0);
  EXPECT_EQ(statusOf("# two programs\n\nvanishes.asm\nfine.asm"), 1);
  EXPECT_EQ(statusOf("fails.asm\r\nvanishes.asm\r\n"), 2);
  EXPECT_EQ(statusOf("fine.asm\nmissing.asm\n"), 2);
}

TEST(CheckProject, ReportsAFindingOfSeveralProgramsOnce) {
  const Files files = {{".kiln", "one.asm\ntwo.asm\n"},
                       {"one.asm", " .org $2000\n .include \"lib.inc\"\n"},
                       {"two.asm", " .org $3000\n .include \"lib.inc\"\n LDQ #1\n"},
                       {"lib.inc", " LDZ #1\n RTS\n"}};
  EXPECT_EQ(placesIn(check(" --json", files).output), (Places{"lib.inc:1 vanished", "two.asm:3 vanished"}));
  const auto sarif = nlohmann::json::parse(check(" --sarif", files).output);
  EXPECT_EQ(sarif["runs"].size(), 1U);
  EXPECT_EQ(sarif["runs"][0]["results"].size(), 2U);
  EXPECT_EQ(placesIn(check(" --json -Wno-vanished", files).output), Places());
}

TEST(CheckProject, KeepsThePathsOfTheProjectAndOfTheCommandLineApart) {
  const Files files = {{"../../.kiln", "-I lib src/main.asm\n"},
                       {"../../src/main.asm", " .org $2000\n .include \"a.inc\"\n .include \"b.inc\"\n LDZ #1\n"},
                       {"../../lib/a.inc", " LDA #A\n"},
                       {"mine/b.inc", " RTS\n"}};
  const Outcome outcome = check(" --json -Wno-undefined -Wno-include-elsewhere -I mine", files);
  EXPECT_EQ(placesIn(outcome.output), Places{"../../src/main.asm:4 vanished"});
  EXPECT_EQ(outcome.errors, "");
}

TEST(CheckProject, PutsTheOptionsOfTheCommandLineBeforeThoseOfTheLines) {
  const Files files = {{".kiln", "main.asm\n-D size=1 main.asm\n"}, {"main.asm", " .org $2000\n LDA #size\n RTS\n"}};
  EXPECT_EQ(placesIn(check(" --json", files).output), Places{"main.asm:2 undefined"});
  EXPECT_EQ(check(" -D size=2", files).status, 0);
  EXPECT_EQ(placesIn(check(" --json -D size=300", files).output), Places{"main.asm:2 cut-value"});
}

TEST(CheckProject, Complains) {
  const Files two = {{".kiln", "fine.asm\nfine.asm\n"}, {"fine.asm", fine}};
  const auto errorsOf = [](const std::string& options, const Files& files) {
    const Outcome outcome = check(options, files);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.output, "");
    EXPECT_EQ(outcome.written, std::vector<std::string>());
    return outcome.errors;
  };
  EXPECT_EQ(errorsOf("", {}), "kiln-check: no input files, and no .kiln in this folder or above\n");
  EXPECT_EQ(errorsOf("", {{".kiln", "# nothing\n"}}), "kiln-check: '.kiln' has no program\n");
  EXPECT_EQ(errorsOf("", {{".kiln", "\n-Wextra fine.asm\n-h\n-V\nlost.asm\n"}, {"fine.asm", fine}}),
            "kiln-check: .kiln:2: unknown option '-Wextra'\n"
            "kiln-check: .kiln:3: this option makes no program\n"
            "kiln-check: .kiln:4: no input files\n"
            "kiln-check: .kiln:5: cannot read 'lost.asm': The file “lost.asm” couldn’t be opened because there is no "
            "such file.\n");
  for (const char* option : {" --map=m.txt", " --labels=vice:l", " --listing=l.txt", " --depfile=d"})
    EXPECT_EQ(errorsOf(option, two), "kiln-check: '.kiln' has 2 programs: files can be written about one only\n");
}

TEST(CheckProject, WritesFilesAboutItsOnlyProgram) {
  const Files files = {{".kiln", "-l list.txt -o game.xex main.asm\n"}, {"main.asm", fine}};
  EXPECT_EQ(check(" --map=m.txt --depfile=d", files).written, (std::vector<std::string>{"d", "m.txt"}));
}

TEST(Project, ReadsLines) {
  struct Row {
    std::string text;
    std::vector<std::vector<std::string>> lines;
  };
  const Row rows[] = {
      {"", {}},
      {"a.asm", {{"a.asm"}}},
      {"\n  # a comment\n\t-L  banks.lnk\tmain.asm \r\n", {{"-L", "banks.lnk", "main.asm"}}},
      {"a#b.asm\n\"my game.asm\" -I\"my lib\"\n", {{"a#b.asm"}, {"my game.asm", "-Imy lib"}}},
      {"-e \"\" a\"b\n", {{"-e", "", "ab"}}},
  };
  for (const auto& [text, lines] : rows) {
    std::vector<std::vector<std::string>> read;
    for (const ProjectLine& line : readProjectLines(text))
      read.push_back(line.arguments);
    EXPECT_EQ(read, lines) << text;
  }
  EXPECT_EQ(readProjectLines("# one\n\nthree.asm\n").front().number, 3U);
}

TEST(Project, IsFoundInTheNearestFolder) {
  MemoryHost host;
  host.files = {{"/a/.kiln", ""}, {"/a/b/c/.kiln", ""}, {"../.kiln", ""}};
  host.directories = {"/a/b/.kiln"};
  EXPECT_EQ(findProject(host, "/a/b/c/d"), "/a/b/c/.kiln");
  EXPECT_EQ(findProject(host, "/a/b"), "/a/.kiln");
  EXPECT_EQ(findProject(host, "/x"), std::nullopt);
  EXPECT_EQ(findProject(host, ""), "../.kiln");
  EXPECT_EQ(findProject(host, "src"), "../.kiln");
}

TEST(Project, MovesRelativePathsOnly) {
  Options options;
  options.inputs = {"main.asm", "/abs/two.asm"};
  options.includePaths = {"lib", "."};
  options.layout = "banks.lnk";
  options.entry = "start";
  moveToProject(options, "../game/.kiln");
  EXPECT_EQ(options.inputs, (std::vector<std::string>{"../game/main.asm", "/abs/two.asm"}));
  EXPECT_EQ(options.includePaths, (std::vector<std::string>{"../game/lib", "../game/."}));
  EXPECT_EQ(options.layout, "../game/banks.lnk");
  EXPECT_EQ(options.entry, "start");
}

}  // namespace
}  // namespace kiln::test

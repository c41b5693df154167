#include "support/findings.h"

#include <gtest/gtest.h>

#include <memory>

#include "base/format.h"
#include "inspect/check_options.h"
#include "inspect/checker.h"
#include "inspect/program.h"
#include "support/memory_host.h"
#include "support/program.h"

namespace kiln::test {
namespace {

// The findings, and the program that owns the texts in their places.
struct Result {
  std::unique_ptr<Program> program;
  std::vector<Finding> findings;
};

Result check(const CheckedSource& checked) {
  MemoryHost host;
  host.files = checked.files;
  host.files["main.asm"] = checked.source;
  const std::vector<std::string> arguments =
      words("kiln-check " + checked.options + (checked.options.empty() ? "main.asm" : " main.asm"));
  CheckOptions options;
  EXPECT_FALSE(scanCheckArguments(std::span(arguments).subspan(1), host, options).has_value()) << host.standardError;
  Result result;
  result.program = assembleProgram(host, arguments, options.assembler);
  EXPECT_EQ(result.program->error, "");
  if (result.program->error.empty()) result.findings = checkProgram(*result.program, options.levels);
  return result;
}

std::string placeText(const Place& place) {
  if (place.line == 0) return "";
  const std::string file = place.file->path == "main.asm" ? "" : place.file->path + ":";
  return concat({file, decimal(place.line), ":", decimal(place.column), " "});
}

// Where a line of a text begins; lines count from 1.
size_t startOfLine(const std::string& text, uint32_t line) {
  size_t start = 0;
  for (uint32_t i = 1; i < line; ++i)
    start = text.find('\n', start) + 1;
  return start;
}

}  // namespace

std::vector<std::string> findingsIn(const CheckedSource& checked) {
  std::vector<std::string> list;
  for (const Finding& finding : check(checked).findings)
    list.push_back(placeText(finding.place) + std::string(rowOf(finding.check).name));
  return list;
}

std::vector<std::string> findingTextsIn(const CheckedSource& checked) {
  std::vector<std::string> list;
  for (const Finding& finding : check(checked).findings) {
    list.push_back(finding.text);
    for (const Note& note : finding.notes)
      list.push_back(note.text);
  }
  return list;
}

std::string fixedSource(const CheckedSource& checked) {
  const Result result = check(checked);
  std::string source = checked.source;
  // From the end, so that the places before stay.
  for (auto finding = result.findings.rbegin(); finding != result.findings.rend(); ++finding) {
    for (auto edit = finding->fix.rbegin(); edit != finding->fix.rend(); ++edit) {
      const size_t at = startOfLine(source, edit->place.line) + edit->place.column - 1;
      source.replace(at, edit->place.endColumn - edit->place.column, edit->text);
    }
  }
  return source;
}

void expectFindings(const CheckedSource& checked, const std::vector<std::string>& expected) {
  SCOPED_TRACE("source:\n" + checked.source.substr(0, 2000));
  EXPECT_EQ(findingsIn(checked), expected);
}

}  // namespace kiln::test

#include "inspect/file_checks.h"

#include <string>
#include <string_view>

#include "base/format.h"
#include "base/text.h"
#include "inspect/carriage_returns.h"
#include "source/line_text.h"

namespace kiln {
namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";

// The line that has the character, without its line end.
std::string_view lineAround(std::string_view text, size_t at) {
  const size_t before = at == 0 ? std::string_view::npos : text.rfind('\n', at - 1);
  const size_t begin = before == std::string_view::npos ? 0 : before + 1;
  return text.substr(begin, text.find('\n', at) - begin);
}

struct SpoiledLines {
  int64_t count = 0;
  std::string_view first;  // the carriage return in the first of them
};

SpoiledLines findSpoiledLines(std::string_view text) {
  SpoiledLines spoiled;
  for (size_t at = text.find('\r'); at != std::string_view::npos;) {
    const std::string_view line = lineAround(text, at);
    if (isSpoiledByReturn(line) && spoiled.count++ == 0) spoiled.first = text.substr(at, 1);
    at = text.find('\r', static_cast<size_t>(line.data() - text.data()) + line.size());
  }
  return spoiled;
}

void checkReturns(const SourceNotes::File& file, Findings& findings) {
  const SpoiledLines spoiled = findSpoiledLines(file.text);
  if (spoiled.count == 0) return;
  const std::string lines = spoiled.count == 1 ? "a line" : decimal(spoiled.count) + " lines";
  findings.add(Check::CarriageReturn,
               {.at = spoiled.first,
                .text = concat({"carriage returns at the line ends spoil the last word of ", lines}),
                .notes = {{{}, concat({"save the file with line feeds alone: sed -i 's/\\r$//' ", file.path})}}});
}

void checkMark(const SourceNotes::File& file, Findings& findings) {
  if (!file.text.starts_with(byteOrderMark)) return;
  const std::string_view line = file.text.substr(byteOrderMark.size(), file.text.find('\n') - byteOrderMark.size());
  if (trimWhitespace(withoutComment(line)).empty()) return;
  findings.add(Check::ByteOrderMark, {.at = file.text.substr(0, byteOrderMark.size()),
                                      .text = "the file begins with a byte order mark: its first line makes nothing",
                                      .notes = {{{}, "save the file without it"}},
                                      .fix = {{file.text.substr(0, byteOrderMark.size()), ""}}});
}

void explainReturns(const MessageList& messages, Findings& findings) {
  for (size_t i = 0; i < messages.size(); ++i) {
    if (messages[i].find('\r') != std::string_view::npos) findings.explain(messages[i]);
  }
}

}  // namespace

void checkFiles(const Program& program, Findings& findings) {
  for (const SourceNotes::File& file : program.notes.files) {
    checkReturns(file, findings);
    checkMark(file, findings);
  }
  if (!findings.wants(Check::CarriageReturn)) return;
  explainReturns(program.assembler.diagnostics.errors, findings);
  explainReturns(program.assembler.diagnostics.warnings, findings);
}

}  // namespace kiln

#include "inspect/report.h"

#include <algorithm>

#include "base/format.h"

namespace kiln {
namespace {

// Escape sequences, all empty without colour.
struct Colours {
  explicit Colours(bool areOn) {
    if (!areOn) return;
    bold = "\x1b[1m";
    error = "\x1b[1;31m";
    warning = "\x1b[1;35m";
    note = "\x1b[1;36m";
    mark = "\x1b[1;32m";
    end = "\x1b[0m";
  }

  std::string_view bold, error, warning, note, mark, end;
};

constexpr size_t numberWidth = 5;

void appendPlace(std::string& out, const Place& place, const Colours& colours) {
  out += colours.bold;
  if (place.line == 0) {
    out += "kiln-check: ";
  } else {
    out += concat({place.file->path, ":", decimal(place.line), ":", decimal(place.column), ": "});
  }
  out += colours.end;
}

// What a terminal would take for a command, and what is no text, is shown as a question mark.
void appendVisible(std::string& out, std::string_view text) {
  for (char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    out.push_back((byte < 0x20 && c != '\t') || byte == 0x7F ? '?' : c);
  }
}

// The line, and below it "^" for the first byte and "~" for the others. A tab stays a tab, so that the mark is below
// its text on every terminal.
void appendLine(std::string& out, std::string_view line, const Place& place, const Colours& colours) {
  const std::string number = decimal(place.line);
  out.append(number.size() < numberWidth ? numberWidth - number.size() : 0, ' ');
  out += number + " | ";
  appendVisible(out, line);
  out.push_back('\n');
  out.append(std::max(numberWidth, number.size()), ' ');
  out += " | ";
  const auto isContinuation = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; };
  for (char c : line.substr(0, place.column - 1)) {
    if (!isContinuation(c)) out.push_back(c == '\t' ? '\t' : ' ');
  }
  out += colours.mark;
  out.push_back('^');
  for (uint32_t at = place.column + 1; at < place.endColumn && at <= line.size(); ++at) {
    if (!isContinuation(line[at - 1])) out.push_back('~');
  }
  out += colours.end;
  out.push_back('\n');
}

void appendFinding(std::string& out, const Finding& finding, const SourceMap& map, const Colours& colours) {
  const bool isError = finding.severity == Severity::Error;
  appendPlace(out, finding.place, colours);
  out += concat({isError ? colours.error : colours.warning, isError ? "error: " : "warning: ", colours.end});
  appendVisible(out, finding.text);
  out += concat({" [", rowOf(finding.check).name, "]\n"});
  if (finding.place.line != 0) {
    appendLine(out, map.lineOf(*finding.place.file, finding.place.line), finding.place, colours);
  }
  for (const Note& note : finding.notes) {
    appendPlace(out, note.place.line != 0 ? note.place : finding.place, colours);
    out += concat({colours.note, "note: ", colours.end});
    appendVisible(out, note.text);
    out.push_back('\n');
  }
}

}  // namespace

std::string renderText(const std::vector<Finding>& findings, const SourceMap& map, bool inColour) {
  const Colours colours(inColour);
  std::string out;
  for (const Finding& finding : findings)
    appendFinding(out, finding, map, colours);
  return out;
}

}  // namespace kiln

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

// Of a longer line a part is shown, in bytes.
constexpr size_t mostShown = 200;
constexpr size_t shownBefore = 80;

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

bool isContinuation(char c) { return (static_cast<unsigned char>(c) & 0xC0) == 0x80; }

// The part of a line that is shown: bytes [begin, end).
struct Extract {
  size_t begin;
  size_t end;
};

// All of the line, unless a line of millions of statements would be shown for each finding in it.
Extract extractOf(std::string_view line, const Place& place) {
  Extract extract{0, line.size()};
  if (line.size() <= mostShown) return extract;
  if (place.column > shownBefore) extract.begin = place.column - shownBefore;
  extract.end = std::min(line.size(), extract.begin + mostShown);
  while (extract.begin < place.column - 1 && isContinuation(line[extract.begin]))
    ++extract.begin;
  while (extract.end < line.size() && isContinuation(line[extract.end]))
    ++extract.end;
  return extract;
}

// The line, and below it "^" for the first byte and "~" for the others. A tab stays a tab, so that the mark is below
// its text on every terminal.
void appendLine(std::string& out, std::string_view line, const Place& place, const Colours& colours) {
  const auto [begin, end] = extractOf(line, place);
  const std::string_view cutOff = begin == 0 ? "" : "...";
  const std::string number = decimal(place.line);
  out.append(number.size() < numberWidth ? numberWidth - number.size() : 0, ' ');
  out += concat({number, " | ", cutOff});
  appendVisible(out, line.substr(begin, end - begin));
  out += end == line.size() ? "\n" : "...\n";
  out.append(std::max(numberWidth, number.size()), ' ');
  out += " | ";
  out.append(cutOff.size(), ' ');
  for (char c : line.substr(begin, place.column - 1 - begin)) {
    if (!isContinuation(c)) out.push_back(c == '\t' ? '\t' : ' ');
  }
  out += colours.mark;
  out.push_back('^');
  for (size_t at = place.column; at + 1 < place.endColumn && at < end; ++at) {
    if (!isContinuation(line[at])) out.push_back('~');
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

std::string renderText(std::span<const Finding> findings, const SourceMap& map, bool inColour) {
  const Colours colours(inColour);
  std::string out;
  for (const Finding& finding : findings)
    appendFinding(out, finding, map, colours);
  return out;
}

}  // namespace kiln

// What the checks find, with places.
#pragma once

#include <array>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/text_store.h"
#include "inspect/checks.h"
#include "inspect/source_map.h"
#include "source/symbols.h"

namespace kiln {

enum class Severity : uint8_t { Warning, Error };

struct Note {
  Place place;  // line 0: none
  std::string text;
};

// A replacement of the text at the place.
struct Edit {
  Place place;
  std::string text;
};

struct Finding {
  Check check = Check::Assembler;
  Severity severity = Severity::Warning;
  Place place;  // line 0: none
  std::string text;
  std::vector<Note> notes;
  std::vector<Edit> fix;                  // empty: none
  std::vector<std::string> alternatives;  // one of which may be meant in place of the text at the place
};

// Which checks are on, and what they are worth.
struct CheckLevels {
  CheckLevels();

  std::array<bool, checkRows.size()> isOn;
  std::array<bool, checkRows.size()> isError{};
};

// True when a comment in the line allows the check: "; check: allow NAME, NAME".
bool isAllowedIn(std::string_view line, Check check);

// Collects findings. A finding about a line that a macro or a rewriter made is reported at the line it stands for.
class Findings {
 public:
  Findings(const SourceMap& map, const CheckLevels& levels) : map_(map), levels_(levels) {}

  // A finding as the checks report it: `at` and the texts in notes and fix are views into the expanded source, with
  // null data for no place.
  struct Report {
    std::string_view at = {};
    std::string text = {};
    std::vector<std::pair<std::string_view, std::string>> notes = {};
    std::vector<std::pair<std::string_view, std::string>> fix = {};
    std::vector<std::string> alternatives = {};

    // Adds a note without a place of its own; an empty text adds none.
    void addNote(std::string_view note) {
      if (!note.empty()) notes.emplace_back(std::string_view(), note);
    }
  };

  // True when the check is on. Ask before work that is done for it alone.
  bool wants(Check check) const { return levels_.isOn[static_cast<size_t>(check)]; }

  // Keeps the finding unless its check is off, or a comment "; check: allow NAME" in its line allows it.
  void add(Check check, Report report);
  // Says that a finding explains this message of the assembler, which is not reported then. The text is the message as
  // recorded, without "kiln-as: warning: ".
  void explain(std::string_view message);
  bool isExplained(std::string_view message) const { return explained_.find(message) != nullptr; }
  // The same for all messages about a line of the expanded source; lines count from 1.
  void explainLine(size_t line) { explainedLines_.insert(line); }
  bool isLineExplained(size_t line) const { return explainedLines_.contains(line); }
  // An error of the assembler, in its own words or in those of the check that explains it.
  void addError(Report report, Check check = Check::Assembler) { add(check, std::move(report), Severity::Error); }
  // Says that a finding explains this text: later warnings about any part of it, or about a line that a macro makes of
  // it, are dropped.
  void explainText(std::string_view text);

  // In the order of the files and lines, each once; those without a place come first.
  std::vector<Finding> take();

 private:
  // What counts for all findings of a line.
  struct LineFacts {
    std::string_view line;
    std::string_view comment;
    bool isSpoiled;  // by a carriage return
  };
  // What a line of a macro causes in every call, whatever its arguments: the place in the body, check and text.
  using RepeatKey = std::tuple<const char*, Check, std::string>;
  // A finding that is reported at the first call of a macro only.
  struct Repeats {
    size_t finding;  // index
    size_t count;    // of the other calls
  };

  void add(Check check, Report report, Severity severity);
  const LineFacts& factsOf(const Place& place);
  static std::optional<RepeatKey> repeatKey(Check check, const Report& report, const SourceNotes::Made* made);
  bool isAllowed(const Finding& finding, const SourceNotes::Made* made);
  void noteRepeats();
  Finding resolve(Check check, Report report) const;
  bool isExplainedText(std::string_view text) const;
  bool overlapsExplained(std::string_view text) const;

  const SourceMap& map_;
  const CheckLevels& levels_;
  std::vector<Finding> findings_;
  TextStore texts_;
  SymbolTable explained_;  // messages, in texts_; faster than a set, as there may be a million
  std::unordered_set<size_t> explainedLines_;
  std::map<const char*, const char*, std::less<>> explainedTexts_;  // begin and end; none overlaps the next
  LineFacts facts_ = {};                                            // of the line asked about last
  std::map<RepeatKey, Repeats> repeats_;
};

}  // namespace kiln

#include "inspect/macro_bodies.h"

#include <algorithm>
#include <array>
#include <string>

#include "base/format.h"
#include "isa/opcodes.h"

namespace kiln {
namespace {

// What ends a macro for other assemblers.
constexpr std::array<std::string_view, 9> endWords = {".endm", ".endmacro", ".endmac", ".mend",    ".macend",
                                                      "endm",  "endmacro",  "mend",    ".macroend"};

bool isEndWord(std::string_view word) {
  return std::any_of(endWords.begin(), endWords.end(),
                     [word](std::string_view endWord) { return equalIgnoringCase(word, endWord); });
}

class BodyChecker {
 public:
  BodyChecker(const MacroUse& use, std::string_view after, Findings& findings)
      : use_(use), body_(use.macro->body), after_(after), findings_(findings) {}

  bool check() {
    bool hasCode = false;
    bool hasEndWord = false;
    for (size_t i = 0; i < body_.size(); ++i) {
      const BodyLine line(body_[i].text);
      if (line.code.empty()) continue;
      if (isEndWord(line.word)) {
        reportEndWord(i, line);
        hasEndWord = true;
      }
      // All that follows is there by mistake.
      if (hasEndWord) continue;
      if (line.word == use_.name() && mnemonicOf(line.word) == Mnemonic::None) {
        reportOwnCall(line);
        break;
      }
      if (equalIgnoringCase(line.word, ".org") && hasCode) checkOrigin(i, line);
      hasCode = true;
    }
    return isBroken_;
  }

 private:
  void reportEndWord(size_t index, const BodyLine& line) {
    Findings::Report report{.at = line.word,
                            .text = concat({"'", line.word, "' is a line of the macro '", use_.name(),
                                            "' and makes nothing: leave the line blank to end the macro"})};
    const std::string_view taken = codeAfter(index);
    if (taken.data() != nullptr) report.notes.emplace_back(taken, "this line belongs to the macro, too");
    if (trim(body_[index].text) == line.word) report.fix.emplace_back(body_[index].text, "");
    findings_.add(Check::MacroEnd, std::move(report));
    taken.data() != nullptr ? explainBody() : findings_.explainText(body_[index].text);
  }

  // A macro cannot call itself, as nothing would end that.
  void reportOwnCall(const BodyLine& line) {
    findings_.add(Check::MacroEnd, {.at = line.word,
                                    .text = concat({"this call is a line of the macro '", use_.name(),
                                                    "' itself: leave a blank line above it to end the macro"})});
    explainBody();
  }

  // A macro may well move to an address. But one that has code, then an address, and ends there, has taken in the first
  // line of the program.
  void checkOrigin(size_t index, const BodyLine& line) {
    if (use_.mayReplaceIn(line.code)) return;
    const bool isAfterBlanks = trim(body_[index - 1].text).empty();
    const bool isLast = codeAfter(index).data() == nullptr && !after_.empty() && after_.front() != ';';
    if (!isAfterBlanks && !isLast) return;
    Findings::Report report{.at = line.code,
                            .text = concat({"this is a line of the macro '", use_.name(),
                                            "', each call of which moves here: leave a blank line above it"})};
    if (isAfterBlanks) {
      report.notes.emplace_back(body_[index - 1].text, "this line has blanks, so it does not end the macro");
      report.fix.emplace_back(body_[index - 1].text, "");
    }
    findings_.add(Check::MacroEnd, std::move(report));
    explainBody();
  }

  // What lines do that are in the wrong place says nothing.
  void explainBody() {
    findings_.explainText(use_.body());
    isBroken_ = true;
  }

  // The code of the next line that has any; null data without one.
  std::string_view codeAfter(size_t index) const {
    for (++index; index < body_.size(); ++index) {
      const std::string_view code = BodyLine(body_[index].text).code;
      if (!code.empty()) return code;
    }
    return {};
  }

  const MacroUse& use_;
  const std::vector<Macro::Line>& body_;
  const std::string_view after_;  // the line that ends the macro
  Findings& findings_;
  bool isBroken_ = false;
};

}  // namespace

bool checkMacroBody(const Program& program, const MacroUse& use, Findings& findings) {
  if (!findings.wants(Check::MacroEnd)) return false;
  return BodyChecker(use, linesAfter(*use.macro, *program.map).next(), findings).check();
}

}  // namespace kiln

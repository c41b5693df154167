// Where macros end: too early, or not where they seem to.
#pragma once

#include <string_view>
#include <unordered_map>
#include <vector>

#include "inspect/findings.h"
#include "inspect/macro_uses.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class MacroEnds {
 public:
  MacroEnds(const Program& program, Findings& findings) : program_(program), findings_(findings) {}

  // True when the macro has ended where it should not.
  bool check(const MacroUse& use);
  // Looks for code that the early end of a macro has left behind. To be called once for each statement, in order,
  // after the last check().
  void visit(const Statement& statement) {
    if (!left_.empty()) findLeft(statement);
  }

 private:
  // An end of a macro, and what is below it.
  struct End {
    const MacroUse* use;
    std::vector<std::string_view> lines;  // blank lines and comments, the first of which ends the macro
  };

  void checkNested(const MacroUse& use, std::string_view line);
  // Both give the first line that is left of the body; empty when nothing is wrong.
  std::string_view checkStatement(const MacroUse& use, std::string_view line);
  std::string_view checkGap(const MacroUse& use, std::string_view line, TextLines lines);
  void findLeft(const Statement& statement);

  void collectParameters(const MacroUse& use);
  bool isParameter(std::string_view word) const;
  std::string_view unknownParameterIn(std::string_view code) const;
  void explainLeft(const MacroUse& use, std::string_view left);
  bool isOutdented(std::string_view line);
  bool hasOrigin() const;
  void report(const End& end, std::string_view left, std::string_view reason);

  const Program& program_;
  Findings& findings_;
  std::vector<std::string_view> parameters_;                       // of the macro in question
  std::unordered_map<const char*, End> left_;                      // by the begin of the first statement after the end
  std::unordered_map<const SourceNotes::File*, size_t> atMargin_;  // instructions that are not indented
  bool isReached_ = false;  // the next statement, by a label or from the one before it
  bool hasBytes_ = false;   // before the next statement
};

}  // namespace kiln

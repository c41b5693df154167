// The statements of a program beside the text that each was read from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

#include "passes/assembler.h"
#include "source/line_text.h"

namespace kiln {

// Texts are views into the expanded source, so that a place can be found for each, but for `scope`, `symbol` and the
// texts of `parsed`. A part that is not there is empty.
struct Statement {
  const AsLine* parsed = nullptr;  // never null
  size_t index = 0;                // of `parsed` among the statements of the iteration
  HashedName symbol;               // the label's real name
  std::string_view scope;          // the full label that local ones belong to, this statement's own included
  std::string_view line;           // the whole line
  std::string_view code;           // the line without its comment
  std::string_view text;           // this statement, trimmed
  std::string_view label;          // as written, with "." or ">" and without its colon
  std::string_view rest;           // the text after the label's colon, trimmed
  std::string_view word;           // the first word of that
  std::string_view argument;       // what follows the word, trimmed
  bool isFirst = false;            // of its line
  bool isLast = false;             // of its line
  bool hasQuote = false;           // false only when the line's code has no double quote
  bool isMisread = false;          // set when a check has found that it is not what its writer meant
};

// Walks all statements in order, but for those that a code-region spill has inserted, which no line has.
class StatementWalk {
 public:
  explicit StatementWalk(const Assembler& assembler);

  // Moves to the next statement; false when there is none left.
  bool next(Statement& statement);

 private:
  void openLine(uint32_t lineNumber, Statement& statement);

  const std::vector<AsLine>& statements_;
  LabelReader labels_;
  LineReader lines_;
  size_t next_ = 0;
  uint32_t lineNumber_ = 0;
  std::optional<StatementTexts> texts_;  // of a line with several statements
  std::optional<std::string_view> ahead_;
  std::string_view scope_;
};

}  // namespace kiln

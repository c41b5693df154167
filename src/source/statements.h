// Physical lines to statements.
#pragma once

#include <string>
#include <string_view>

#include "base/text_store.h"
#include "source/expression.h"
#include "source/line.h"
#include "source/line_text.h"

namespace kiln {

// The operand in the text of an instruction as it is written there, label and mnemonic cut off.
std::string_view writtenOperand(std::string_view statement);

// The value expression in the operand of an instruction: a view of the operand, or of `scratch`.
std::string_view instructionExpression(const AsLine& line, std::string& scratch);

// Begins the labels that the long-branch rewriter makes; they open no scope.
inline constexpr std::string_view longBranchLabel = "_klb_";

// Parses the lines of one iteration in order. It carries the scope: the last global label, which qualifies the local
// ones after it.
class StatementParser {
 public:
  // `texts` takes the texts that have to be put together; the statements hold views of them.
  StatementParser(Evaluator& evaluator, TextStore& texts) : evaluator_(evaluator), texts_(texts) {}

  // Appends the statements of one physical line, a text of a TextStore. `lineNumber` counts from 1. A line without any
  // text has none, except one with the mark of the long-branch rewriter, which has an empty one. Throws
  // std::length_error for a line of 4 GB.
  void parseLine(std::string_view line, uint32_t lineNumber, Statements& statements);

 private:
  void parseSeveral(std::string_view code, const LineShape& shape, uint32_t lineNumber, Statements& statements);
  void append(std::string_view text, const LineShape& shape, uint32_t lineNumber, Statements& statements);
  void parseStatement(std::string_view text, const LineShape& shape, AsLine& line, std::vector<HashedName>& labels);
  void parseInstruction(std::string_view text, const LineShape& shape, AsLine& line);
  void parseOperand(std::string_view words, uint8_t specials, AsLine& line);
  std::string_view joinWords(std::string_view words);
  HashedName openScope(std::string_view label, bool isLocal);
  void qualifyOperand(AsLine& line);

  Evaluator& evaluator_;
  TextStore& texts_;
  std::string_view scope_;
  std::string scratch_;
};

}  // namespace kiln

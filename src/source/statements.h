// Physical lines to statements.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/text_store.h"
#include "source/expression.h"
#include "source/line.h"

namespace kiln {

// The line before its first ";" outside double quotes. A quote toggles; nothing escapes it.
std::string_view withoutComment(std::string_view line);

// What the long-branch rewriter puts behind the branches that it makes.
inline constexpr std::string_view longBranchComment = "; longbr";
// How the labels begin that it makes; they open no scope.
inline constexpr std::string_view longBranchLabel = "_klb_";

// Parses the lines of one iteration in order. It carries the scope: the last global label, which qualifies the local
// ones behind it.
class StatementParser {
 public:
  // `texts` takes the texts that had to be put together; views to them stand in the statements.
  StatementParser(Evaluator& evaluator, TextStore& texts) : evaluator_(evaluator), texts_(texts) {}

  // Appends the statements of one physical line, at least one. `lineNumber` counts from 1.
  void parseLine(std::string_view line, uint32_t lineNumber, std::vector<AsLine>& statements);

 private:
  AsLine parseStatement(std::string_view text);
  void parseInstruction(std::string_view text, AsLine& line);
  void parseOperand(std::string_view words, AsLine& line);
  std::string_view joinWords(std::string_view words);
  void applyScope(AsLine& line);

  Evaluator& evaluator_;
  TextStore& texts_;
  std::string_view scope_;
  std::string scratch_;
};

}  // namespace kiln

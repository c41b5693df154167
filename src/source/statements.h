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

// Walks the statements of a line without its comment: the trimmed texts between the separators " : ", empty ones left
// out. A line that has nothing else is one empty statement, or one that consists of the separator's colon.
class StatementTexts {
 public:
  explicit StatementTexts(std::string_view code) : code_(code), rest_(code) {}

  // Moves to the next statement; false when there is none left.
  bool next(std::string_view& text);

  // How many statements lie ahead, if the `count` that next() has given are anything to go by.
  size_t estimateAhead(size_t count) const { return count * rest_.size() / (code_.size() - rest_.size()); }

 private:
  std::string_view code_;
  std::string_view rest_;
  bool found_ = false;
};

// The operand in the text of an instruction as it is written there, label and mnemonic cut off.
std::string_view writtenOperand(std::string_view statement);

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
  // Throws std::length_error for a line of 4 GB.
  void parseLine(std::string_view line, uint32_t lineNumber, std::vector<AsLine>& statements);

  // How many of the statements so far define a label or assign a value.
  size_t definitionCount() const { return definitionCount_; }

 private:
  void parseStatement(std::string_view text, uint8_t specials, AsLine& line);
  void parseInstruction(std::string_view text, AsLine& line);
  void parseOperand(std::string_view words, AsLine& line);
  std::string_view joinWords(std::string_view words);
  void openScope(AsLine& line);
  void qualifyOperand(AsLine& line);

  Evaluator& evaluator_;
  TextStore& texts_;
  std::string_view scope_;
  size_t definitionCount_ = 0;
  std::string scratch_;
};

}  // namespace kiln

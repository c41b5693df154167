// What is being typed. The statement at the cursor is not complete, so its line is looked at up to there, with the
// functions that the assembler reads lines with.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "source/macros.h"

namespace kiln {

enum class Slot : uint8_t {
  Nothing,      // comments, texts, numbers, new names
  Statement,    // the first word of a statement
  Operand,      // a name in an expression
  IncludePath,  // the path of a file
  BankName,     // the name after ".bank"
};

// Texts are views into the line.
struct TypedText {
  Slot slot = Slot::Nothing;
  std::string_view word;      // the name around the cursor, which a choice takes the place of; may be empty
  std::string_view typed;     // its part before the cursor
  std::string_view folder;    // IncludePath: the path before the word, with its last "/"
  bool isFirst = true;        // Statement: the first of its line, perhaps after a label
  bool isAfterLabel = false;  // Statement
  bool isScoped = false;      // Operand: a local name gets the scope in front
};

// `cursor` is an index into the line, or its size.
TypedText typedAt(std::string_view line, size_t cursor, const MacroTable& macros);

}  // namespace kiln

// A physical line as text: where its code ends, which special characters it has, and the statements in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiln {

// The line before its first ";" outside double quotes. A quote toggles; nothing escapes it.
std::string_view withoutComment(std::string_view line);

// Characters with a meaning of their own, before anything else is known about a line or an operand.
enum Special : uint8_t { Quote = 1, Semicolon = 2, Colon = 4, Equals = 8, Comma = 16, Dot = 32, Space = 64, Tab = 128 };

// All kinds of special characters in the text.
uint8_t specialsOf(std::string_view text);

// What one look at a physical line finds out.
struct LineShape {
  std::string_view code;  // without its comment, trimmed
  uint8_t specials = 0;   // at least those in the code
  bool splits = false;    // it may be more than one statement
  bool marked = false;    // the long-branch rewriter wrote it
};

LineShape shapeOf(std::string_view line);

// Follows the instructions that the long-branch rewriter writes.
inline constexpr std::string_view longBranchComment = "; longbr";

// Cuts a line without its comment into statements: the trimmed texts between the separators " : ", empty ones left out.
// A line that has nothing else is one empty statement, or one that consists of the separator's colon.
class StatementTexts {
 public:
  explicit StatementTexts(std::string_view code) : code_(code), rest_(code) {}

  // The next statement; absent at the end.
  std::optional<std::string_view> next();

  // An estimate of the statements that follow, after next() has given `count` of them.
  size_t estimateAhead(size_t count) const { return count * rest_.size() / (code_.size() - rest_.size()); }

 private:
  std::string_view code_;
  std::string_view rest_;
  bool found_ = false;
};

}  // namespace kiln

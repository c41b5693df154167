// A physical line as text: where its code ends, which special characters it has, and the statements in it.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kiln {

// The line before its first ";" outside double quotes. A quote toggles; nothing escapes it.
std::string_view withoutComment(std::string_view line);

// Characters with a meaning of their own, before anything else is known about a line or an operand.
enum Special : uint8_t { Quote = 1, Semicolon = 2, Colon = 4, Equals = 8, Comma = 16, Dot = 32, Blank = 64 };

// What one look at a physical line finds out.
class LineShape {
 public:
  // The line is a text of a TextStore, or a view into one: up to 64 bytes after it are read, but not used.
  explicit LineShape(std::string_view line);

  std::string_view code() const { return code_; }             // without its comment, trimmed
  bool has(Special c) const { return (specials_ & c) != 0; }  // false only when the code has none
  bool splits() const { return splits_; }                     // it may be more than one statement
  bool marked() const { return marked_; }                     // the long-branch rewriter wrote it

  // Which of Blank and Comma a part of the code has; other bits mean nothing.
  uint8_t specialsIn(std::string_view part) const;

 private:
  template <int Parts>
  bool lookAtOnce(std::string_view line);
  void walk(std::string_view line);

  std::string_view code_;
  uint8_t specials_ = 0;
  bool splits_ = false;
  bool marked_ = false;
  const char* masked_ = nullptr;  // the line, when there are masks of it, else null
  // One bit for each of its first 64 bytes that is the character, the first byte's at the lower end.
  uint64_t blanks_;
  uint64_t commas_;
};

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

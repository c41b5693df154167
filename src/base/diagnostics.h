// What a run has to say: two lists of finished messages, and the two kinds of line prefix, made here alone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

// Messages in the order recorded, kept in one block of text: a million of them cost a million short copies.
class MessageList {
 public:
  // Appends one message, given in pieces.
  void add(std::initializer_list<std::string_view> pieces);

  bool empty() const { return ends_.empty(); }
  size_t size() const { return ends_.size(); }
  std::string_view operator[](size_t index) const;

  // Messages recorded so far survive every later clear().
  void keepRecorded() { kept_ = ends_.size(); }
  // Drops all messages but the kept ones.
  void clear();

 private:
  std::string text_;
  std::vector<size_t> ends_;
  size_t kept_ = 0;
};

struct Diagnostics {
  MessageList errors;
  MessageList warnings;
  std::string mainSourcePath;  // the first input, as written; it stands in every located message

  // An error that begins with "<main source path>:<line>: ". `line` counts from 1 in the expanded source.
  void errorAt(uint32_t line, std::initializer_list<std::string_view> pieces);
};

// "line <line>: ", the prefix of everything the instruction encoder says.
std::string linePrefix(uint32_t line);

}  // namespace kiln

// The messages of a run: two lists, and all prefixes that a message may have.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

// Messages in the order recorded. They are kept as the lines that will be printed, in large blocks: there may be
// millions (a third of the time of a source of warnings).
class MessageList {
 public:
  // Each printed line begins with the prefix, a literal.
  explicit MessageList(std::string_view linePrefix = "") : prefix_(linePrefix) {}
  MessageList(const MessageList&) = delete;
  MessageList& operator=(const MessageList&) = delete;

  // Appends one message, given in pieces.
  void add(std::initializer_list<std::string_view> pieces);

  bool empty() const { return messages_.empty(); }
  size_t size() const { return messages_.size(); }
  // A message without its prefix and line end.
  std::string_view operator[](size_t index) const { return messages_[index]; }

  // All lines in order, in pieces.
  const std::vector<std::string>& lines() const { return blocks_; }

  // Messages recorded so far survive every later clear().
  void keepRecorded();
  // Drops all messages but the kept ones.
  void clear();

 private:
  std::string_view prefix_;
  std::vector<std::string> blocks_;  // filled up to their capacity, so that nothing in them moves
  std::deque<std::string_view> messages_;
  size_t keptMessages_ = 0;
  size_t keptBlocks_ = 0;
  size_t keptSize_ = 0;  // of the last kept block
};

struct Diagnostics {
  MessageList errors{"kiln-as: error: "};
  MessageList warnings{"kiln-as: warning: "};
  std::string mainSourcePath;  // the first input, as written; part of every located message

  // An error that begins with "<main source path>:<line>: ". `line` counts from 1 in the expanded source.
  void errorAt(uint32_t line, std::initializer_list<std::string_view> pieces);
};

// "line <line>: ", the prefix of all messages of the instruction encoder.
std::string linePrefix(uint32_t line);

}  // namespace kiln

// What lines of a source are made into.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "lsp/analysis.h"

namespace kiln {

// The bytes that a statement makes; none when the program does not assemble.
std::span<const uint8_t> bytesOf(const Analysis& analysis, size_t statement);

// Its address, 0..65535; the program must be assembled.
uint32_t addressOf(const Analysis& analysis, size_t statement);

inline constexpr size_t mostBytesShown = 8;

// "A9 05", and "..." when there are more than that.
std::string bytesText(std::span<const uint8_t> bytes);

// True for a label that begins the code that the program calls other banks through.
bool isStagerLabel(const AsLine& line, std::string_view name);

// The time of instructions that are executed one after the other.
class CycleSum {
 public:
  explicit CycleSum(const Analysis& analysis) : analysis_(analysis) {}

  // Takes the next statement, by its index among all statements of the program.
  void add(size_t statement);

  // False when no number can be given: after an instruction that the 6502 lacks, or when something follows an
  // instruction that may go elsewhere.
  bool isKnown() const { return isKnown_ && count_ != 0; }
  uint32_t least() const { return least_; }
  uint32_t most() const { return most_; }
  bool hasCalls() const { return hasCalls_; }
  bool hasBranch() const { return hasBranch_; }

  // "4", "4+" for one more on another page, "2/3" for a branch that is not taken and taken; "6-8" for several
  // instructions. Empty when it is not known.
  std::string text() const;

 private:
  void addBranch(size_t statement, uint32_t notTaken);

  const Analysis& analysis_;
  size_t count_ = 0;
  uint32_t least_ = 0;
  uint32_t most_ = 0;
  bool isKnown_ = true;
  bool hasLeft_ = false;   // an instruction that may go elsewhere
  bool hasCalls_ = false;  // the time of what is called is not in it
  bool hasBranch_ = false;
};

// A statement of the program and the line of a file that it comes from: its own, the call of its macro, or the line in
// whose place a rewriter has made it.
struct OriginatedStatement {
  std::string_view origin;  // a view into the line
  const Statement* statement;
};

// The statements that come from the lines of a part of a file, in the order of the program. Code that the program calls
// other banks through comes from no line.
std::vector<OriginatedStatement> statementsFrom(const Analysis& analysis, std::string_view part);

}  // namespace kiln

// Code that execution does not come to.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <unordered_set>

#include "inspect/findings.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

// True for the instructions after which the next one is not executed.
bool endsFlow(Mnemonic mnemonic);

class FlowChecks {
 public:
  FlowChecks(const Program& program, Findings& findings);

  // To be called once for each statement, in order.
  void visit(const Statement& statement) {
    if (isWanted_) follow(statement);
  }

 private:
  // Addresses that the program names in other ways than by a label in front of a statement.
  struct Named {
    std::unordered_set<uint32_t> uses;    // operands and words, and the addresses after them: tables may hold one less
    std::unordered_set<uint32_t> stores;  // operands of what writes to memory
  };

  void follow(const Statement& statement);
  void check(const Statement& statement);
  const Named& named();

  const Program& program_;
  Findings& findings_;
  bool isWanted_;
  bool isAfterData_ = false;    // the statement before it placed data, which may begin an instruction
  std::string_view end_;        // what ended the flow; null data when the next statement is reached
  uint32_t endAddress_ = 0;     // of that
  std::optional<Named> named_;  // on first need
};

}  // namespace kiln

// Calls and branches into other banks that go there directly.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

// For banked output.
class BankCalls {
 public:
  BankCalls(const Program& program, const PlacedSegments& segments, Findings& findings);

  // To be called once for each statement, in order, before its bytes are placed.
  void visit(const Statement& statement) {
    if (!isWanted_) return;
    const AsLine& line = *statement.parsed;
    if (line.hasLabel) defineLabel(statement.symbol);
    if (line.kind == Kind::Org || line.kind == Kind::Bank) moves_.push_back(statement.text);
    if (line.kind == Kind::Instruction && isCall(line)) addCall(statement);
  }
  // After the last statement.
  void finish();

 private:
  // Where a label is: numbers of a segment and of an ".org" or ".bank", from 1; 0 = none.
  struct LabelPlace {
    uint32_t segment = 0;
    uint32_t move = 0;
  };

  struct Call {
    std::string_view at;
    uint32_t symbol;   // its index
    uint32_t segment;  // with the call, as in LabelPlace
    bool isBranch;
  };

  static bool isCall(const AsLine& line) {
    const bool isJump = line.mnemonic == Mnemonic::JSR || line.mnemonic == Mnemonic::JMP;
    return line.mode == Mode::Relative || (isJump && line.mode == Mode::Absolute);
  }
  void defineLabel(HashedName label);
  void addCall(const Statement& statement);
  void check(const Call& call);
  std::optional<BankValue> bankOf(uint32_t segment) const;
  bool switchesBanks();
  bool storesToRegister(const AsLine& line, Evaluator& evaluator, std::string& scratch) const;

  const Program& program_;
  const BankedSettings settings_;
  const PlacedSegments& segments_;
  Findings& findings_;
  const bool isWanted_;
  std::vector<LabelPlace> labels_;  // by Symbol::index
  std::vector<std::string_view> moves_;
  std::vector<Call> calls_;
  std::optional<bool> switchesBanks_;  // whether the program stores to a bank register itself, when that is known
};

}  // namespace kiln

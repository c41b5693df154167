// A branch reaches 128 bytes back and 127 forward, counted from the next instruction. One that does not reach is
// replaced, as source text, by the inverted branch over a JMP:
//
//     2000  BEQ far            2000  BNE _klb_0 ; longbr
//                              2002  JMP far
//                              2005  _klb_0:
//
// and a BRA by the JMP alone. The whole source line goes: its label, its other statements and its comment are dropped.
// The longer code may push other targets out of reach, so the next iteration checks again.
//
// This ends: a rewritten line has no branch that could be rewritten again (the inverted one jumps over three bytes,
// which a code-region spill keeps together), so there are at most as many rewrites as branches; and the pipeline stops
// after eight iterations in any case.
//
// Addresses are counted anew here, from origins and banks only. So code in cloaked segments has other addresses here
// than its labels have.
#include "passes/long_branches.h"

#include "base/arithmetic.h"
#include "base/format.h"
#include "passes/look_ahead.h"
#include "source/statements.h"

namespace kiln {
namespace {

// A branch at its address, 0..65535. The copy of its operand saves a look at the statement, which may have left the
// caches.
struct Branch {
  HashedName target;   // the operand with its nameHash
  uint32_t statement;  // index
  uint32_t address;
};

// The branches with an operand. All origins are evaluated here, before any branch is: their warnings come first.
std::vector<Branch> findBranches(Iteration& iteration, uint32_t bankOrigin) {
  std::vector<Branch> branches;
  branches.reserve(iteration.statements.branches);
  uint32_t address = 0;
  const std::vector<AsLine>& lines = iteration.statements.lines;
  for (uint32_t i = 0; i < lines.size(); ++i) {
    const AsLine& line = lines[i];
    fetchAhead(line);
    if (line.kind == Kind::Org) {
      address = low16(iteration.evaluator.evaluate(line.operand()));
    } else if (line.kind == Kind::Bank) {
      address = bankOrigin;
    } else {
      if (line.kind == Kind::Instruction && line.mode == Mode::Relative) {
        branches.push_back({HashedName(line.operand(), line.nameHash), i, address});
      }
      address = (address + line.size) & 0xFFFF;
    }
  }
  return branches;
}

bool reaches(int64_t target, uint32_t address) {
  const int32_t distance = low16Signed(wrappingSubtract(target, int64_t{address} + 2));
  return distance >= -128 && distance <= 127;
}

std::vector<std::string_view> replacement(const AsLine& branch, RewriteState& state) {
  const std::string_view jump = state.texts.join({"    JMP ", branch.operand()});
  const Mnemonic inverted = invertBranch(branch.mnemonic);
  if (inverted == Mnemonic::None) return {jump};
  const std::string_view label = state.texts.join({longBranchLabel, decimal(state.longBranchLabels++), ":"});
  const std::string_view name = label.substr(0, label.size() - 1);
  return {state.texts.join({"    ", mnemonicText(inverted), " ", name, " ", longBranchComment}), jump, label};
}

}  // namespace

Rewrite rewriteLongBranches(Iteration& iteration, uint32_t bankOrigin, RewriteState& state) {
  Rewrite rewrite;
  const std::vector<Branch> branches = findBranches(iteration, bankOrigin);
  LookAhead ahead(iteration.symbols, branches, [](const Branch& branch) { return branch.target; });
  for (const auto& [target, statement, address] : branches) {
    ahead.stepToFind();
    if (reaches(iteration.evaluator.evaluate(target.text(), target.hash()), address)) continue;
    const AsLine& line = iteration.statements.lines[statement];
    const size_t index = line.lineNumber - 1;
    if (!rewrite.edits.empty() && rewrite.edits.back().index == index) continue;
    rewrite.edits.push_back({index, replacement(line, state)});
  }
  rewrite.count = rewrite.edits.size();
  return rewrite;
}

}  // namespace kiln

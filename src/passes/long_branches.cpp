// A branch reaches 128 bytes back and 127 forward, counted from the instruction behind it. One that does not reach is
// replaced, as source text, by the inverted branch over a JMP:
//
//     2000  BEQ far            2000  BNE _klb_0 ; longbr
//                              2002  JMP far
//                              2005  _klb_0:
//
// and a BRA by the JMP alone. The whole source line goes: its label, further statements and comment are not carried
// over. The longer code may push other targets out of reach, so the next iteration looks again.
//
// That comes to an end: a rewritten line holds no branch that could be rewritten again (the inverted one jumps over
// three bytes, which a code-region spill keeps together), so there are at most as many rewrites as branches; and the
// pipeline stops after eight iterations in any case.
//
// Addresses are counted in a model of their own that knows origins and banks only. Code in cloaked segments is
// therefore seen at other addresses than its labels have.
#include "passes/long_branches.h"

#include "base/arithmetic.h"
#include "base/format.h"
#include "passes/look_ahead.h"

namespace kiln {
namespace {

// A branch at its address, 0..65535.
struct Branch {
  const AsLine* line;
  uint32_t address;
};

// The branches with an operand. All origins are evaluated here, before any branch is: their warnings come first.
std::vector<Branch> findBranches(Iteration& iteration, uint32_t bankOrigin) {
  std::vector<Branch> branches;
  uint32_t address = 0;
  for (const AsLine& line : iteration.statements) {
    if (line.kind == Kind::Org) {
      address = low16(iteration.evaluator.evaluate(line.operand));
    } else if (line.kind == Kind::Bank) {
      address = bankOrigin;
    } else {
      if (line.kind == Kind::Instruction && line.mode == Mode::Relative) branches.push_back({&line, address});
      address = (address + line.size) & 0xFFFF;
    }
  }
  return branches;
}

bool reaches(int64_t target, uint32_t address) {
  const int32_t distance = low16Signed(wrappingSubtract(target, int64_t{address} + 2));
  return distance >= -128 && distance <= 127;
}

std::vector<std::string_view> replacement(const AsLine& branch, uint32_t& labelCount, TextStore& texts) {
  const std::string_view jump = texts.join({"    JMP ", branch.operand});
  const Mnemonic inverted = invertBranch(branch.mnemonic);
  if (inverted == Mnemonic::None) return {jump};
  const std::string_view label = texts.join({"_klb_", decimal(labelCount++), ":"});
  const std::string_view name = label.substr(0, label.size() - 1);
  return {texts.join({"    ", mnemonicText(inverted), " ", name, " ; longbr"}), jump, label};
}

}  // namespace

std::vector<LineEdit> rewriteLongBranches(Iteration& iteration, uint32_t bankOrigin, uint32_t& labelCount,
                                          TextStore& texts) {
  std::vector<LineEdit> edits;
  const std::vector<Branch> branches = findBranches(iteration, bankOrigin);
  LookAhead ahead(iteration.symbols, branches, [](const Branch& branch) { return branch.line->operand; });
  for (const auto& [line, address] : branches) {
    ahead.step();
    if (reaches(iteration.evaluator.evaluate(line->operand, line->operand.hash()), address)) continue;
    const size_t index = line->lineNumber - 1;
    if (!edits.empty() && edits.back().index == index) continue;
    edits.push_back({index, replacement(*line, labelCount, texts)});
  }
  return edits;
}

}  // namespace kiln

#include "inspect/flow_checks.h"

#include <string>
#include <utility>

#include "base/arithmetic.h"
#include "base/format.h"
#include "source/data_items.h"
#include "source/statements.h"

namespace kiln {
namespace {

bool writesMemory(Mnemonic mnemonic) {
  switch (mnemonic) {
    case Mnemonic::STA:
    case Mnemonic::STX:
    case Mnemonic::STY:
    case Mnemonic::INC:
    case Mnemonic::DEC:
    case Mnemonic::ASL:
    case Mnemonic::LSR:
    case Mnemonic::ROL:
    case Mnemonic::ROR:
      return true;
    default:
      return false;
  }
}

bool isData(Kind kind) { return emitsBytes(kind) && kind != Kind::Instruction; }

}  // namespace

bool endsFlow(Mnemonic mnemonic) {
  return mnemonic == Mnemonic::JMP || mnemonic == Mnemonic::RTS || mnemonic == Mnemonic::RTI ||
         mnemonic == Mnemonic::BRA;
}

FlowChecks::FlowChecks(const Program& program, Findings& findings)
    : program_(program), findings_(findings), isWanted_(findings.wants(Check::Unreachable) && program.isAssembled) {}

void FlowChecks::follow(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  if (line.hasLabel || rowOf(line.kind).moves || isData(line.kind)) end_ = {};
  if (line.kind == Kind::Instruction) {
    if (end_.data() != nullptr) check(statement);
    if (endsFlow(line.mnemonic) && !isAfterData_) {
      end_ = statement.rest;
      endAddress_ = line.address;
    }
  }
  if (emitsBytes(line.kind)) isAfterData_ = isData(line.kind);
}

// Reports the first of several lines. A JMP may be an entry of a table of them, and a NOP may fill such an entry up.
void FlowChecks::check(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  if (line.mnemonic == Mnemonic::JMP || line.mnemonic == Mnemonic::NOP || line.mnemonic == Mnemonic::BRK) return;
  const std::string_view end = std::exchange(end_, {});
  const SourceNotes::Made* const made = program_.map->madeLine(statement.text);
  const bool isRewritten = made != nullptr && made->pattern.data() == nullptr;
  if (isRewritten || named().uses.contains(line.address) || named().stores.contains(endAddress_)) return;
  findings_.add(Check::Unreachable,
                {.at = statement.rest,
                 .text = concat({"this is never executed, as '", end, "' is before it: remove it, or give it a label"}),
                 .notes = {{end, "the code before it ends here"}}});
}

const FlowChecks::Named& FlowChecks::named() {
  if (named_.has_value()) return *named_;
  named_.emplace();
  MessageList ignored;
  Evaluator evaluator(program_.iteration().symbols, ignored);
  std::string scratch;
  const auto add = [this, &evaluator](std::string_view expression) {
    // Half an address is as good as a whole one.
    if (!expression.empty() && (expression.front() == '<' || expression.front() == '>')) expression.remove_prefix(1);
    const int64_t value = evaluator.evaluate(expression);
    named_->uses.insert({low16(value), low16(wrappingAdd(value, 1))});
    return low16(value);
  };
  for (const AsLine& line : program_.iteration().statements.lines) {
    if (line.kind == Kind::Instruction && instructionSize(line.mode) > 1) {
      const uint32_t address = add(instructionExpression(line, scratch));
      if (writesMemory(line.mnemonic)) named_->stores.insert(address);
    }
    if (line.kind != Kind::Byte && line.kind != Kind::Word) continue;
    DataItems items(line.operand());
    while (const std::optional<std::string_view> item = items.next())
      add(*item);
  }
  return *named_;
}

}  // namespace kiln

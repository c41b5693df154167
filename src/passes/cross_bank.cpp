// What a staged call does at run time is told in stage_code.cpp; this file finds the calls and edits the lines. A line
//
//     again: JSR draw : INX   ; twice
//
// whose `draw` lies in another bank becomes
//
//     again: JSR _kxb_0 : INX   ; twice ; xbank
//
// and the routine _kxb_0 is written into main memory: behind the label __bank_stage when the source has one, else
// behind the largest stretch of code and data there that has room behind it. The routines name their targets through
// symbols
// (_kxb_0a is the address of draw less one, _kxb_0v its bank), which are set anew in each iteration once the layout
// stands: so they are right however the code has moved, and nothing of the operand's text has to be understood.
//
// That comes to an end: a staged operand is a label in main memory, and calls to main memory are direct.
#include "passes/cross_bank.h"

#include <algorithm>

#include "base/arithmetic.h"
#include "base/format.h"
#include "passes/bank_map.h"
#include "passes/look_ahead.h"
#include "passes/stage_code.h"
#include "source/statements.h"

namespace kiln {
namespace {

// A call to be staged: the statement's number among those of its source line, and its target.
struct Call {
  size_t line;  // index of the source line
  size_t ordinal;
  std::string_view operand;
};

// The symbol that the operand of a call begins with, as the evaluator finds it.
Symbol* findTarget(SymbolTable& symbols, HashedText operand) {
  const std::string_view name = leadingSymbol(operand);
  if (name.empty()) return nullptr;
  const uint32_t hash = operand.hash() != 0 ? operand.hash() : symbolHash(name);
  Symbol* const exact = symbols.find(name, hash);
  return exact != nullptr ? exact : symbols.findIgnoringCase(name, hash);
}

bool mayCall(const AsLine& line) {
  return line.kind == Kind::Instruction && line.mode == Mode::Absolute &&
         (line.mnemonic == Mnemonic::JSR || line.mnemonic == Mnemonic::JMP);
}

class CallStager {
 public:
  CallStager(Assembler& assembler, std::vector<LineEdit>& edits)
      : assembler_(assembler),
        iteration_(*assembler.iteration),
        settings_(assembler.settings.banking),
        mainMemory_(settings_, assembler.shadowPlan),
        map_(mapBanks(iteration_, settings_, mainMemory_)),
        edits_(edits),
        reader_(assembler.lines.pieces()) {}

  void dropUnbanked(std::vector<Call>& calls);
  void setSymbols();
  void stage(const std::vector<Call>& calls);

 private:
  const BankValue* bankOf(std::string_view operand);
  BankRegisters registers() const;
  size_t targetNumber(std::string_view operand);
  std::string_view editLine(std::string_view line, const Call* begin, const Call* end);
  void putRoutines(size_t firstTarget);
  size_t choosePlace(uint32_t size, std::vector<std::string_view>& lead);
  bool hasRoom(const MainRun& run, uint32_t size, const std::vector<uint32_t>& starts) const;
  LineEdit& editAt(size_t line);

  Assembler& assembler_;
  Iteration& iteration_;
  const BankedSettings& settings_;
  const MainMemory mainMemory_;
  const BankMap map_;
  std::vector<LineEdit>& edits_;
  LineReader reader_;
};

const BankValue* CallStager::bankOf(std::string_view operand) {
  const Symbol* const symbol = findTarget(iteration_.symbols, operand);
  if (symbol == nullptr) return nullptr;
  // What the stager has entered itself since the map was made is behind no ".bank".
  const size_t index = static_cast<size_t>(symbol - iteration_.symbols.symbols().data());
  if (index >= map_.symbols.size() || !map_.symbols[index].bank.has_value()) return nullptr;
  return &*map_.symbols[index].bank;
}

// Where the writer switches no bank, there is none to be switched to.
void CallStager::dropUnbanked(std::vector<Call>& calls) {
  const auto isUnbanked = [this](const Call& call) { return bankOf(call.operand) == nullptr; };
  calls.erase(std::remove_if(calls.begin(), calls.end(), isUnbanked), calls.end());
}

void CallStager::setSymbols() {
  const std::vector<std::string_view>& operands = assembler_.stageTargets.operands;
  for (size_t i = 0; i < operands.size(); ++i) {
    const BankValue* const bank = bankOf(operands[i]);
    const uint32_t value = bank == nullptr ? 0U : bank->value;
    const int64_t target = iteration_.evaluator.evaluate(operands[i]);
    iteration_.symbols.set(stageSymbolName(i, 'a', iteration_.texts), wrappingSubtract(target, 1));
    iteration_.symbols.set(stageSymbolName(i, 'v', iteration_.texts), value & 0xFF);
    iteration_.symbols.set(stageSymbolName(i, 'h', iteration_.texts), value >> 8);
  }
}

// Code behind ".bank" begins at the start of the bank window, so all of it is banked by the same registers.
BankRegisters CallStager::registers() const {
  BankCounters counters(settings_);
  const std::optional<BankValue> bank = counters.next(low16(settings_.bankWindowLow), -1);
  const std::optional<uint32_t> none;
  switch (bank.has_value() ? bank->kind : BankKind::Plain) {
    case BankKind::Regc: {
      const bool hasHigh = settings_.regcRegisterHigh != 0;
      return {settings_.regcRegisterLow, hasHigh ? std::optional(settings_.regcRegisterHigh) : none};
    }
    case BankKind::DataHalf:
      return {settings_.dataBankRegister, none};
    case BankKind::CodeHalf:
      return {settings_.codeBankRegister, none};
    case BankKind::Plain:
      break;
  }
  return {settings_.codeBankRegister, map_.usesHighByte ? std::optional(settings_.dataBankRegister) : none};
}

size_t CallStager::targetNumber(std::string_view operand) {
  StageTargets& targets = assembler_.stageTargets;
  const auto known = targets.numbers.find(operand);
  if (known != targets.numbers.end()) return known->second;
  // The statement's operand goes with its iteration.
  targets.operands.push_back(assembler_.texts.join({operand}));
  targets.numbers.emplace(targets.operands.back(), targets.operands.size() - 1);
  return targets.operands.size() - 1;
}

void CallStager::stage(const std::vector<Call>& calls) {
  const size_t known = assembler_.stageTargets.operands.size();
  for (size_t i = 0; i < calls.size();) {
    size_t end = i;
    while (end < calls.size() && calls[end].line == calls[i].line)
      ++end;
    const size_t line = calls[i].line;
    edits_.push_back({line, {editLine(reader_.at(line), &calls[i], calls.data() + end)}});
    i = end;
  }
  if (assembler_.stageTargets.operands.size() != known) putRoutines(known);
}

// The line with the operands of calls [begin, end) replaced. A quote that is still open at the end of the line would
// swallow the mark; an empty statement closes it.
std::string_view CallStager::editLine(std::string_view line, const Call* begin, const Call* end) {
  std::string edited;
  const char* copied = line.data();
  StatementTexts statements(withoutComment(line));
  std::string_view statement;
  for (size_t ordinal = 0; begin != end && statements.next(statement); ++ordinal) {
    if (ordinal != begin->ordinal) continue;
    const std::string_view operand = writtenOperand(statement);
    edited.append(copied, operand.data()).append(stageRoutineName(targetNumber(begin->operand), assembler_.texts));
    copied = operand.data() + operand.size();
    ++begin;
  }
  edited.append(copied, line.data() + line.size());
  const bool quoteIsOpen =
      withoutComment(edited).size() == edited.size() && std::count(edited.begin(), edited.end(), '"') % 2 != 0;
  return assembler_.texts.join({edited, quoteIsOpen ? " : \"" : "", stageComment});
}

LineEdit& CallStager::editAt(size_t line) {
  const auto at = std::lower_bound(edits_.begin(), edits_.end(), line,
                                   [](const LineEdit& edit, size_t index) { return edit.index < index; });
  if (at != edits_.end() && at->index == line) return *at;
  return *edits_.insert(at, {line, {reader_.at(line)}});
}

// The routines of the targets from number `firstTarget` on, and with the first of all the code that they share.
void CallStager::putRoutines(size_t firstTarget) {
  const BankRegisters bankRegisters = registers();
  const size_t count = assembler_.stageTargets.operands.size();
  std::vector<std::string_view> code;
  size_t place = 0;
  if (firstTarget == 0) {
    const uint32_t routineSize = stageRoutineSize(bankRegisters) * static_cast<uint32_t>(count);
    place = choosePlace(routineSize + stageCommonSize(bankRegisters), code);
  } else {
    // The source may have a label of that name; the stager's own line carries its mark.
    const auto isCommon = [this](const AsLine& line) {
      return line.label == stageCommonLabel && line.labelLocal &&
             reader_.at(line.lineNumber - 1).ends_with(stageComment);
    };
    const auto common = std::find_if(iteration_.statements.begin(), iteration_.statements.end(), isCommon);
    place = common->lineNumber - 2U;
  }
  for (size_t i = firstTarget; i < count; ++i)
    appendStageRoutine(i, bankRegisters, assembler_.texts, code);
  if (firstTarget == 0) appendStageCommon(bankRegisters, assembler_.texts, code);
  std::vector<std::string_view>& lines = editAt(place).lines;
  lines.insert(lines.end(), code.begin(), code.end());
}

// The index of the line behind which `size` bytes are put. `lead` gets the lines that must come first.
size_t CallStager::choosePlace(uint32_t size, std::vector<std::string_view>& lead) {
  if (map_.stageLine.has_value()) {
    if (!map_.stageInMain) {
      assembler_.diagnostics.errorAt(static_cast<uint32_t>(*map_.stageLine) + 1,
                                     {"'", stageLabel, "' must lie in main memory"});
    }
    return *map_.stageLine;
  }
  std::vector<uint32_t> starts;
  for (const MainRun& run : map_.mainRuns)
    starts.push_back(run.start);
  std::sort(starts.begin(), starts.end());
  const MainRun* best = nullptr;
  bool bestHasRoom = false;
  for (const MainRun& run : map_.mainRuns) {
    if (run.isSplit) continue;
    const bool room = hasRoom(run, size, starts);
    const bool isBetter = best == nullptr || (room != bestHasRoom ? room : run.size > best->size);
    if (!isBetter) continue;
    best = &run;
    bestHasRoom = room;
  }
  if (best != nullptr) return best->lastLine;
  if (map_.endsCloaked) lead.push_back(assembler_.texts.join({"    .cloaked_segment_end", stageComment}));
  const std::string origin = dollarHex(withDefaults(settings_).mainRegionLow);
  lead.push_back(assembler_.texts.join({"    .org ", origin, stageComment}));
  return assembler_.lines.count() - 1;
}

// True when nothing else begins in the `size` bytes behind the run, and all of them are main memory.
bool CallStager::hasRoom(const MainRun& run, uint32_t size, const std::vector<uint32_t>& starts) const {
  const uint64_t end = run.start + run.size;
  if (end > 0xFFFF || !mainMemory_.holds(static_cast<uint32_t>(end), size)) return false;
  const auto next = std::lower_bound(starts.begin(), starts.end(), static_cast<uint32_t>(end));
  return next == starts.end() || *next >= end + size;
}

std::vector<Call> findCalls(Iteration& iteration) {
  std::vector<Call> calls;
  uint32_t currentBank = 0;
  uint32_t lineNumber = 0;
  size_t ordinal = 0;
  LookAhead ahead(iteration.symbols, iteration.statements,
                  [](const AsLine& line) { return mayCall(line) ? line.operand : HashedText(); });
  for (const AsLine& line : iteration.statements) {
    ahead.step();
    if (line.kind == Kind::Org) currentBank = 0;
    if (line.kind == Kind::Bank) currentBank = iteration.bankNumbers.at(line.operand);
    if (line.autoSpill) continue;
    ordinal = line.lineNumber == lineNumber ? ordinal + 1 : 0;
    lineNumber = line.lineNumber;
    if (!mayCall(line)) continue;
    const Symbol* const target = findTarget(iteration.symbols, line.operand);
    if (target == nullptr || target->bank == 0 || target->bank == currentBank) continue;
    calls.push_back({lineNumber - 1, ordinal, line.operand});
  }
  return calls;
}

}  // namespace

size_t stageCrossBankCalls(Assembler& assembler, std::vector<LineEdit>& edits) {
  Iteration& iteration = *assembler.iteration;
  if (assembler.settings.banking.codeBankRegister == 0 || iteration.bankNumbers.empty()) return 0;
  std::vector<Call> calls = findCalls(iteration);
  if (calls.empty() && assembler.stageTargets.operands.empty()) return 0;
  CallStager stager(assembler, edits);
  stager.dropUnbanked(calls);
  stager.setSymbols();
  stager.stage(calls);
  return calls.size();
}

}  // namespace kiln

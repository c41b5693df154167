// stage_code.cpp says what a staged call does at run time; this file finds the calls and edits the lines. A line
//
//     again: JSR draw : INX   ; twice
//
// whose `draw` is in another bank becomes
//
//     again: JSR _kxb_0 : INX   ; twice ; xbank
//
// and the routine _kxb_0 is written into main memory: after the label __bank_stage when the source has one, else after
// the largest run of code and data with enough free space after it. The routines name their targets through symbols
// (_kxb_0a is the address of draw less one, _kxb_0v its bank), which every iteration sets anew once the layout is
// fixed. So they are right wherever the code has moved, and the text of the operand need not be understood.
//
// This ends: a staged operand is a label in main memory, and calls to main memory are direct.
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

// A JSR or JMP: the statement's number among those of its source line, and its target.
struct Call {
  uint32_t line;  // index of the source line
  uint32_t ordinal;
  uint32_t bank;       // that it comes from, 0 = none
  HashedName operand;  // with its nameHash
};

// The symbol that the operand of a call begins with, as the evaluator finds it. `hash` is the nameHash() of the
// operand, or 0.
const Symbol* findTarget(const SymbolTable& symbols, std::string_view operand, uint32_t hash) {
  const std::string_view name = leadingSymbol(operand);
  if (name.empty()) return nullptr;
  return symbols.resolve(name, hash != 0 ? hash : symbolHash(name));
}

bool mayCall(const AsLine& line) {
  return (line.mnemonic == Mnemonic::JSR || line.mnemonic == Mnemonic::JMP) && line.mode == Mode::Absolute;
}

// The calls to labels anywhere.
std::vector<Call> findCalls(const Iteration& iteration) {
  std::vector<Call> calls;
  uint32_t currentBank = 0;
  uint32_t lineNumber = 0;
  uint32_t ordinal = 0;
  for (const AsLine& line : iteration.statements.lines) {
    fetchAhead(line);
    if (line.kind == Kind::Org) currentBank = 0;
    if (line.kind == Kind::Bank) currentBank = iteration.bankNumbers.at(line.operand());
    if (line.autoSpill) continue;
    ordinal = line.lineNumber == lineNumber ? ordinal + 1 : 0;
    lineNumber = line.lineNumber;
    if (!mayCall(line)) continue;
    calls.push_back({lineNumber - 1, ordinal, currentBank, HashedName(line.operand(), line.nameHash)});
  }
  return calls;
}

// Those into another bank.
std::vector<Call> findCrossing(const SymbolTable& symbols, const std::vector<Call>& calls) {
  std::vector<Call> crossing;
  LookAhead ahead(symbols, calls, [](const Call& call) { return call.operand; });
  for (const Call& call : calls) {
    ahead.stepToFind();
    const Symbol* const target = findTarget(symbols, call.operand.text(), call.operand.hash());
    if (target != nullptr && target->bank != 0 && target->bank != call.bank) crossing.push_back(call);
  }
  return crossing;
}

// Lines to be put after a source line.
struct Addition {
  size_t line;  // index of the source line
  std::vector<std::string_view> lines;
};

class CallStager {
 public:
  CallStager(Iteration& iteration, const SourceLines& lines, const BankedSettings& settings,
             const ShadowPlan& shadowPlan, RewriteState& state)
      : iteration_(iteration),
        lineCount_(lines.count()),
        settings_(settings),
        state_(state),
        mainMemory_(settings_, shadowPlan),
        map_(mapBanks(iteration_, settings_, mainMemory_)),
        reader_(lines.pieces()) {}

  Rewrite run(std::vector<Call> calls);

 private:
  const BankValue* bankOf(std::string_view operand) const;
  void setSymbols();
  void stage(const std::vector<Call>& calls);
  BankRegisters registers() const;
  size_t targetNumber(std::string_view operand);
  std::string_view editLine(std::string_view line, const Call* begin, const Call* end);
  void putRoutines(size_t firstTarget);
  Addition choosePlace(uint32_t size);
  size_t lineBeforeCommon();
  const MainRun* largestRun(uint32_t size) const;
  bool hasRoom(const MainRun& run, uint32_t size, const std::vector<uint32_t>& starts) const;
  LineEdit& editAt(size_t line);

  Iteration& iteration_;
  const size_t lineCount_;
  const BankedSettings& settings_;
  RewriteState& state_;
  const MainMemory mainMemory_;
  const BankMap map_;
  LineReader reader_;
  Rewrite rewrite_;
};

Rewrite CallStager::run(std::vector<Call> calls) {
  // Where the writer switches no bank, there is none to switch to.
  const auto isUnbanked = [this](const Call& call) { return bankOf(call.operand.text()) == nullptr; };
  calls.erase(std::remove_if(calls.begin(), calls.end(), isUnbanked), calls.end());
  setSymbols();
  stage(calls);
  rewrite_.count = calls.size();
  return std::move(rewrite_);
}

const BankValue* CallStager::bankOf(std::string_view operand) const {
  const Symbol* const symbol = findTarget(iteration_.symbols, operand, 0);
  // Symbols that setSymbols() has entered since the map was made are in no bank.
  if (symbol == nullptr || symbol->index >= map_.symbols.size()) return nullptr;
  const std::optional<BankValue>& bank = map_.symbols[symbol->index].bank;
  return bank.has_value() ? &*bank : nullptr;
}

void CallStager::setSymbols() {
  const std::vector<std::string_view>& operands = state_.stageTargets.operands;
  for (size_t i = 0; i < operands.size(); ++i) {
    const BankValue* const bank = bankOf(operands[i]);
    const uint32_t value = bank == nullptr ? 0U : bank->value;
    const int64_t target = iteration_.evaluator.evaluate(operands[i]);
    const auto set = [this, i](StageSymbol symbol, int64_t to) {
      iteration_.symbols.set(stageSymbolName(i, symbol, iteration_.texts), to);
    };
    set(StageSymbol::AddressLessOne, wrappingSubtract(target, 1));
    set(StageSymbol::BankLow, value & 0xFF);
    set(StageSymbol::BankHigh, value >> 8);
  }
}

// Code after ".bank" begins at the start of the bank window, so all of it is banked by the same registers.
BankRegisters CallStager::registers() const {
  BankCounters counters(settings_);
  const std::optional<BankValue> bank = counters.next(low16(settings_.bankWindowLow), -1);
  const BankKind kind = bank.has_value() ? bank->kind : BankKind::Plain;
  BankRegisters registers{bankRegister(settings_, kind), {}};
  if (kind == BankKind::Regc && settings_.regcRegisterHigh != 0) registers.high = settings_.regcRegisterHigh;
  if (kind == BankKind::Plain && map_.usesHighByte) registers.high = settings_.dataBankRegister;
  return registers;
}

size_t CallStager::targetNumber(std::string_view operand) {
  StageTargets& targets = state_.stageTargets;
  const auto known = targets.numbers.find(operand);
  if (known != targets.numbers.end()) return known->second;
  // The statement's operand lives no longer than its iteration.
  targets.operands.push_back(state_.texts.join({operand}));
  targets.numbers.emplace(targets.operands.back(), targets.operands.size() - 1);
  return targets.operands.size() - 1;
}

void CallStager::stage(const std::vector<Call>& calls) {
  const size_t known = state_.stageTargets.operands.size();
  for (size_t i = 0; i < calls.size();) {
    size_t end = i;
    while (end < calls.size() && calls[end].line == calls[i].line)
      ++end;
    const size_t line = calls[i].line;
    rewrite_.edits.push_back({line, {editLine(reader_.at(line), &calls[i], calls.data() + end)}});
    i = end;
  }
  if (state_.stageTargets.operands.size() != known) putRoutines(known);
}

// The line with the operands of calls [begin, end) replaced. A quote that is still open at the end of the line would
// swallow the mark; an empty statement closes it.
std::string_view CallStager::editLine(std::string_view line, const Call* begin, const Call* end) {
  std::string edited;
  const char* copied = line.data();
  StatementTexts statements(withoutComment(line));
  for (size_t ordinal = 0; begin != end; ++ordinal) {
    const std::optional<std::string_view> statement = statements.next();
    if (!statement.has_value()) break;
    if (ordinal != begin->ordinal) continue;
    const std::string_view operand = writtenOperand(*statement);
    edited.append(copied, operand.data()).append(stageRoutineName(targetNumber(begin->operand.text()), state_.texts));
    copied = operand.data() + operand.size();
    ++begin;
  }
  edited.append(copied, line.data() + line.size());
  const bool quoteIsOpen =
      withoutComment(edited).size() == edited.size() && std::count(edited.begin(), edited.end(), '"') % 2 != 0;
  return state_.texts.join({edited, quoteIsOpen ? " : \"" : "", stageComment});
}

LineEdit& CallStager::editAt(size_t line) {
  std::vector<LineEdit>& edits = rewrite_.edits;
  const auto at = std::lower_bound(edits.begin(), edits.end(), line,
                                   [](const LineEdit& edit, size_t index) { return edit.index < index; });
  if (at != edits.end() && at->index == line) return *at;
  return *edits.insert(at, {line, {reader_.at(line)}});
}

// The routines of the targets from number `firstTarget` on, and with the first of all the code that they share.
void CallStager::putRoutines(size_t firstTarget) {
  const BankRegisters bankRegisters = registers();
  const size_t count = state_.stageTargets.operands.size();
  const uint32_t routineSize = stageRoutineSize(bankRegisters) * static_cast<uint32_t>(count);
  Addition code =
      firstTarget == 0 ? choosePlace(routineSize + stageCommonSize(bankRegisters)) : Addition{lineBeforeCommon(), {}};
  for (size_t i = firstTarget; i < count; ++i)
    appendStageRoutine(i, bankRegisters, state_.texts, code.lines);
  if (firstTarget == 0) appendStageCommon(bankRegisters, state_.texts, code.lines);
  std::vector<std::string_view>& lines = editAt(code.line).lines;
  lines.insert(lines.end(), code.lines.begin(), code.lines.end());
}

// The index of the line before the shared code, which earlier routines end with. The source may have a label of that
// name, too; the stager's own line carries its mark.
size_t CallStager::lineBeforeCommon() {
  LabelReader labels(iteration_.statements.labels);
  for (const AsLine& line : iteration_.statements.lines) {
    const HashedName label = labels.of(line);
    if (!line.labelLocal || label.text() != stageCommonLabel) continue;
    const size_t index = line.lineNumber - 1;
    if (reader_.at(index).ends_with(stageComment)) return index - 1;
  }
  return 0;
}

// Where `size` bytes of code are put, with the lines that have to come before them.
Addition CallStager::choosePlace(uint32_t size) {
  if (map_.stageLine.has_value()) {
    if (!map_.stageInMain) {
      rewrite_.error = {static_cast<uint32_t>(*map_.stageLine) + 1,
                        concat({"'", stageLabel, "' must lie in main memory"})};
    }
    return {*map_.stageLine, {}};
  }
  if (const MainRun* const run = largestRun(size)) return {run->lastLine, {}};
  std::vector<std::string_view> lead;
  if (map_.endsCloaked) lead.push_back(state_.texts.join({"    .cloaked_segment_end", stageComment}));
  const std::string origin = dollarHex(withDefaults(settings_).mainRegionLow);
  lead.push_back(state_.texts.join({"    .org ", origin, stageComment}));
  return {lineCount_ - 1, std::move(lead)};
}

// The largest run with room after it, or the largest of all when none has; null when there is no run.
const MainRun* CallStager::largestRun(uint32_t size) const {
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
  return best;
}

// True when nothing else begins in the `size` bytes after the run, and all of them are main memory.
bool CallStager::hasRoom(const MainRun& run, uint32_t size, const std::vector<uint32_t>& starts) const {
  const uint64_t end = run.start + run.size;
  if (end > 0xFFFF || !mainMemory_.holds(static_cast<uint32_t>(end), size)) return false;
  const auto next = std::lower_bound(starts.begin(), starts.end(), static_cast<uint32_t>(end));
  return next == starts.end() || *next >= end + size;
}

}  // namespace

Rewrite stageCrossBankCalls(Iteration& iteration, const SourceLines& lines, const BankedSettings& settings,
                            const ShadowPlan& shadowPlan, RewriteState& state) {
  if (settings.codeBankRegister == 0 || iteration.bankNumbers.empty()) return {};
  std::vector<Call> calls = findCrossing(iteration.symbols, findCalls(iteration));
  if (calls.empty() && state.stageTargets.operands.empty()) return {};
  return CallStager(iteration, lines, settings, shadowPlan, state).run(std::move(calls));
}

}  // namespace kiln

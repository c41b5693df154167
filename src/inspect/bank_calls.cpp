// The assembler stages a JSR or JMP to a label after a ".bank". Everything else goes to the address in the bank that is
// selected at the time. From one bank to another of the same window that is always wrong, since the caller's own code
// goes with its bank. From main memory it is right when the program has selected the bank itself, so it is reported
// only if the program never stores to a bank register.
#include "inspect/bank_calls.h"

#include "base/arithmetic.h"
#include "base/format.h"
#include "passes/stage_code.h"
#include "source/statements.h"

namespace kiln {
namespace {

bool areSame(const BankValue& a, const BankValue& b) { return a.kind == b.kind && a.value == b.value; }

bool changesMemory(Mnemonic mnemonic) {
  return mnemonic == Mnemonic::STA || mnemonic == Mnemonic::STX || mnemonic == Mnemonic::STY ||
         mnemonic == Mnemonic::INC || mnemonic == Mnemonic::DEC;
}

}  // namespace

BankCalls::BankCalls(const Program& program, const PlacedSegments& segments, Findings& findings)
    : program_(program),
      settings_(withDefaults(program.assembler.settings.banking)),
      segments_(segments),
      findings_(findings),
      isWanted_(program.options.banked && program.isAssembled && settings_.codeBankRegister != 0 &&
                program.assembler.settings.banking.bankWindowLow != 0 && findings.wants(Check::CallNotStaged)) {
  if (isWanted_) labels_.resize(program.iteration().symbols.symbols().size());
}

void BankCalls::defineLabel(HashedName label) {
  const Symbol* const symbol = program_.iteration().symbols.find(label.text(), label.hash());
  if (symbol == nullptr) return;
  labels_[symbol->index] = {static_cast<uint32_t>(segments_.size()), static_cast<uint32_t>(moves_.size())};
}

void BankCalls::addCall(const Statement& statement) {
  const AsLine& line = *statement.parsed;
  const std::string_view name = leadingSymbol(line.operand());
  if (name.empty()) return;
  const SymbolTable& symbols = program_.iteration().symbols;
  const Symbol* const symbol = symbols.resolve(name, line.nameHash != 0 ? line.nameHash : symbolHash(name));
  if (symbol == nullptr || low16(symbol->value) < settings_.bankWindowLow ||
      low16(symbol->value) > settings_.bankWindowHigh) {
    return;
  }
  // A statement before the first origin has no segment yet.
  calls_.push_back({statement.text, symbol->index, static_cast<uint32_t>(segments_.size()), isBranch(line.mnemonic)});
}

void BankCalls::finish() {
  for (const Call& call : calls_)
    check(call);
}

std::optional<BankValue> BankCalls::bankOf(uint32_t segment) const {
  return segment == 0 ? std::nullopt : segments_[segment - 1].written;
}

void BankCalls::check(const Call& call) {
  const LabelPlace& place = labels_[call.symbol];
  const std::optional<BankValue> from = bankOf(call.segment);
  const std::optional<BankValue> to = bankOf(place.segment);
  if (!to.has_value() || (from.has_value() && areSame(*from, *to))) return;
  const bool isSameWindow = from.has_value() && from->kind == to->kind;
  if (!isSameWindow && switchesBanks()) return;
  const std::string_view move = place.move == 0 ? segments_[place.segment - 1].at : moves_[place.move - 1];
  const Symbol& target = program_.iteration().symbols.symbols()[call.symbol];
  Findings::Report report{.at = call.at,
                          .text = concat({"this ", call.isBranch ? "branch" : "call", " does not select bank ",
                                          decimal(to->value), ", where '", target.name, "' is"})};
  if (call.isBranch) {
    report.addNote("branch over a JMP, which selects the bank of a label after a .bank");
  }
  if (target.bank == 0) {
    report.notes.emplace_back(
        move, "labels after an .org are in no bank: begin the bank with .bank, and leave gaps in it with .space");
  }
  findings_.add(Check::CallNotStaged, std::move(report));
}

bool BankCalls::switchesBanks() {
  if (switchesBanks_.has_value()) return *switchesBanks_;
  switchesBanks_ = false;
  MessageList ignored;
  Evaluator evaluator(program_.iteration().symbols, ignored);
  LineReader lines(program_.assembler.lines.pieces());
  std::string scratch;
  for (const AsLine& line : program_.iteration().statements.lines) {
    if (line.kind != Kind::Instruction || !changesMemory(line.mnemonic)) continue;
    if (!storesToRegister(line, evaluator, scratch)) continue;
    // The routines of the stager put the old bank back.
    if (lines.at(line.lineNumber - 1).ends_with(stageComment)) continue;
    switchesBanks_ = true;
    break;
  }
  return *switchesBanks_;
}

bool BankCalls::storesToRegister(const AsLine& line, Evaluator& evaluator, std::string& scratch) const {
  const int64_t address = evaluator.evaluate(instructionExpression(line, scratch), line.nameHash);
  if (address == 0) return false;
  return address == settings_.codeBankRegister || address == settings_.dataBankRegister ||
         address == settings_.regcRegisterLow;
}

}  // namespace kiln

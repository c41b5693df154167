#include "inspect/bank_checks.h"

#include <algorithm>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "base/format.h"
#include "base/text.h"
#include "inspect/name_definitions.h"

namespace kiln {
namespace {

constexpr uint32_t portB = 0xD301;

// The names of all banks whose numbers the program uses.
std::unordered_set<std::string_view> findUsedBanks(const std::vector<AsLine>& statements) {
  std::unordered_set<std::string_view> names;
  for (const AsLine& line : statements) {
    std::string_view rest = line.operand();
    for (size_t at = rest.find(bankPrefix); at != std::string_view::npos; at = rest.find(bankPrefix)) {
      rest.remove_prefix(at);
      const std::string_view name = leadingSymbol(rest);
      names.insert(name.substr(bankPrefix.size()));
      rest.remove_prefix(name.size());
    }
  }
  return names;
}

// The name in the statement that opens a bank.
std::string_view nameOf(const PlacedSegment& segment) {
  std::string_view statement = segment.at;
  if (const size_t colon = statement.find(':'); colon != std::string_view::npos) statement.remove_prefix(colon + 1);
  takeWord(statement);
  return trim(statement);
}

bool isBanked(const PlacedSegment& segment) { return segment.written.has_value(); }

bool usesDataRegister(const PlacedSegment& segment) {
  if (!isBanked(segment) || segment.size == 0) return false;
  return segment.written->kind == BankKind::Plain || segment.written->kind == BankKind::DataHalf;
}

}  // namespace

void BankChecks::finish() {
  const PlacedSegment* const named = firstNamed();
  if (output_ != OutputKind::BankedXex) {
    if (named != nullptr) checkFlatBanks();
  } else if (named != nullptr && banking_.bankWindowLow == 0) {
    findings_.add(Check::MissingWindow,
                  {.at = named->at,
                   .text = "no bank window is known, so the bank begins at $0000: give the option -L "
                           "and a layout file with a window"});
  } else {
    checkBanks();
  }
}

void BankChecks::checkBanks() {
  const auto bank = std::find_if(segments_.begin(), segments_.end(), isBanked);
  if (bank == segments_.end()) return;
  checkRegisters(*bank);
  checkPortB(*bank);
  checkBankTwice();
  checkBankCounts();
}

// The first segment that a ".bank" opens, null when there is none.
const PlacedSegment* BankChecks::firstNamed() const {
  const auto named =
      std::find_if(segments_.begin(), segments_.end(), [](const PlacedSegment& segment) { return segment.bank >= 0; });
  return named == segments_.end() ? nullptr : &*named;
}

// A single bank at the address of a window is loaded well.
void BankChecks::checkFlatBanks() {
  const PlacedSegment* first = nullptr;
  size_t count = 0;
  for (const PlacedSegment& segment : segments_) {
    if (segment.bank < 0 || segment.size == 0) continue;
    if (first == nullptr) first = &segment;
    ++count;
  }
  if (count == 0 || (count == 1 && banking_.bankWindowLow != 0)) return;
  const bool isPrg = output_ == OutputKind::Prg;
  findings_.add(Check::FlatBank,
                {.at = first->at,
                 .text = concat({isPrg ? "a PRG file has" : "without banked output there are", " no banks, so ",
                                 count == 1 ? "this one is" : "all of them are", " at ", dollarHex(first->start),
                                 isPrg ? "" : ": give the option -L and a layout file with a section [banking]"})});
}

void BankChecks::checkRegisters(const PlacedSegment& bank) {
  if (banking_.codeBankRegister == 0) {
    findings_.addError({.at = bank.at,
                        .text = "there is no register for the number of this bank, so kiln-as writes no file: give "
                                "the layout file a line 'registers = LOW, HIGH'"},
                       Check::MissingRegister);
    return;
  }
  const auto data = std::find_if(segments_.begin(), segments_.end(), usesDataRegister);
  if (banking_.dataBankRegister != 0 || data == segments_.end()) return;
  const bool isHalf = data->written->kind == BankKind::DataHalf;
  findings_.add(Check::MissingRegister,
                {.at = data->at,
                 .text = concat({"there is no data bank register, so the ", isHalf ? "" : "high byte of the ",
                                 "number of this bank is stored to $0000: name one in the layout file"})});
}

void BankChecks::checkPortB(const PlacedSegment& bank) {
  const bool hasPortB = banking_.codeBankRegister == portB || banking_.dataBankRegister == portB ||
                        bankRegister(banking_, bank.written->kind) == portB;
  if (!hasPortB) return;
  findings_.add(Check::PortbRegister,
                {.at = bank.at,
                 .text = "the plain number of this bank is stored to PORTB ($D301), whose other bits switch the ROM "
                         "and more: use a register of its own"});
}

// In the other kinds of window each segment gets a number of its own.
void BankChecks::checkBankTwice() {
  std::unordered_map<int32_t, const PlacedSegment*> begun;
  for (const PlacedSegment& segment : segments_) {
    const bool isPlain = segment.written.has_value() && segment.written->kind == BankKind::Plain;
    if (segment.bank < 0 || segment.size == 0 || !isPlain) continue;
    const auto [first, isNew] = begun.emplace(segment.bank, &segment);
    if (isNew) continue;
    findings_.add(Check::BankTwice,
                  {.at = segment.at,
                   .text = concat({"bank '", nameOf(segment), "' begins again at ", dollarHex(segment.start),
                                   " and overwrites itself: keep its code together"}),
                   .notes = {{first->second->at, "it begins here"}}});
  }
}

// Only the names of banks that the program uses can be wrong.
void BankChecks::checkBankCounts() {
  const auto differs = [](const PlacedSegment& segment) {
    return segment.bank >= 0 && segment.size != 0 && segment.written.has_value() &&
           segment.written->value != (segment.bank & 0xFFFF);
  };
  if (std::none_of(segments_.begin(), segments_.end(), differs)) return;
  const std::unordered_set<std::string_view> used = findUsedBanks(program_.iteration().statements.lines);
  for (const PlacedSegment& segment : segments_) {
    if (!differs(segment) || !used.contains(nameOf(segment))) continue;
    findings_.add(
        Check::BankCount,
        {.at = segment.at,
         .text = concat({"this is bank ", decimal(segment.written->value), " in the file, but '", bankPrefix,
                         nameOf(segment), "' is ", decimal(segment.bank), ": put the named banks first, each once"})});
  }
}

}  // namespace kiln

#include "output/bank_values.h"

namespace kiln {
namespace {

bool isWithin(uint32_t address, uint32_t low, uint32_t high) { return low <= address && address <= high; }

}  // namespace

BankedSettings withDefaults(BankedSettings settings) {
  if (settings.bankWindowLow == 0) settings.bankWindowLow = 0x4000;
  if (settings.bankWindowHigh == 0) settings.bankWindowHigh = 0x7FFF;
  if (settings.mainRegionLow == 0) settings.mainRegionLow = 0xA000;
  if (settings.mainRegionHigh == 0) settings.mainRegionHigh = 0xBFFF;
  return settings;
}

uint32_t bankRegister(const BankedSettings& settings, BankKind kind) {
  if (kind == BankKind::Regc) return settings.regcRegisterLow;
  return kind == BankKind::DataHalf ? settings.dataBankRegister : settings.codeBankRegister;
}

BankCounters::BankCounters(const BankedSettings& settings) : settings_(withDefaults(settings)) {}

std::optional<BankValue> BankCounters::next(uint32_t start, int32_t bank) {
  if (!isWithin(start, settings_.bankWindowLow, settings_.bankWindowHigh)) return std::nullopt;
  const BankKind kind = kindAt(start);
  // A segment with its own number uses up a number, too.
  const uint16_t counted = counters_[static_cast<size_t>(kind)]++;
  const bool hasOwn = kind == BankKind::Plain && bank >= 0;
  return BankValue{kind, hasOwn ? static_cast<uint16_t>(bank & 0xFFFF) : counted};
}

BankKind BankCounters::kindAt(uint32_t start) const {
  const bool hasRegc = settings_.regcWindowLow != 0 && settings_.regcRegisterLow != 0;
  if (hasRegc && isWithin(start, settings_.regcWindowLow, settings_.regcWindowHigh)) return BankKind::Regc;
  if (!settings_.splitBank) return BankKind::Plain;
  const bool isData = isWithin(start, settings_.dataWindowLow, settings_.dataWindowHigh);
  return isData ? BankKind::DataHalf : BankKind::CodeHalf;
}

}  // namespace kiln

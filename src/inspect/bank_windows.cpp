#include "inspect/bank_windows.h"

#include <algorithm>
#include <set>

#include "base/arithmetic.h"

namespace kiln {
namespace {

constexpr uint32_t lastAddress = 0xFFFF;

uint32_t highRegisterOf(BankKind kind, const BankedSettings& settings) {
  if (kind == BankKind::Plain) return settings.dataBankRegister;
  return kind == BankKind::Regc ? settings.regcRegisterHigh : 0;
}

}  // namespace

AddressRange windowOf(BankKind kind, const BankedSettings& settings) {
  const BankedSettings known = withDefaults(settings);
  uint32_t low = known.bankWindowLow;
  uint32_t high = known.bankWindowHigh;
  if (kind == BankKind::DataHalf || kind == BankKind::Regc) {
    low = kind == BankKind::Regc ? known.regcWindowLow : known.dataWindowLow;
    high = kind == BankKind::Regc ? known.regcWindowHigh : known.dataWindowHigh;
  } else if (kind == BankKind::CodeHalf && known.dataWindowLow > low) {
    high = std::min(high, known.dataWindowLow - 1);
  }
  low = std::min(low, lastAddress);
  return {low, std::clamp(high, low, lastAddress)};
}

std::vector<SwitchedWindow> switchedWindows(const Program& program, const Placements& placements) {
  std::set<BankKind> kinds;
  for (const SegmentBank& segment : placements.segments) {
    if (segment.value.has_value()) kinds.insert(segment.value->kind);
  }
  const BankedSettings& settings = program.assembler.settings.banking;
  std::vector<SwitchedWindow> windows;
  windows.reserve(kinds.size());
  for (const BankKind kind : kinds)
    windows.push_back(
        {windowOf(kind, settings), low16(bankRegister(settings, kind)), low16(highRegisterOf(kind, settings))});
  return windows;
}

}  // namespace kiln

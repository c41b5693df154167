#include "layout/layout_keys.h"

#include <cstdint>
#include <iterator>
#include <optional>

#include "base/arithmetic.h"
#include "base/text.h"
#include "layout/layout_values.h"

namespace kiln {
namespace {

enum class Form : uint8_t { Number, Range, RangeOrNumber };

// A row with an `end` is for all keys with this beginning and end, a row without for one key. A value without a field
// is not kept.
struct BankingKey {
  std::string_view begin;
  std::string_view end;
  Form form;
  uint32_t AsLayout::*low;
  uint32_t AsLayout::*high;
};

// clang-format off
constexpr BankingKey bankingKeys[] = {
    {"code",           "-window", Form::Range,         &AsLayout::codeWindowLo, &AsLayout::codeWindowHi},
    {"data",           "-window", Form::Range,         &AsLayout::dataWindowLo, &AsLayout::dataWindowHi},
    {"code",           "-reg",    Form::Number,        &AsLayout::codeReg,      nullptr},
    {"data",           "-reg",    Form::Number,        &AsLayout::dataReg,      nullptr},
    {"window",         "",        Form::Range,         &AsLayout::codeWindowLo, &AsLayout::codeWindowHi},
    {"codewindow",     "",        Form::Range,         &AsLayout::codeHalfLo,   &AsLayout::codeHalfHi},
    {"datawindow",     "",        Form::Range,         &AsLayout::dataWindowLo, &AsLayout::dataWindowHi},
    {"codereg",        "",        Form::Number,        &AsLayout::codeReg,      nullptr},
    {"datareg",        "",        Form::Number,        &AsLayout::dataReg,      nullptr},
    {"regcwindow",     "",        Form::Range,         &AsLayout::regcWindowLo, &AsLayout::regcWindowHi},
    {"regcpagesize",   "",        Form::Number,        &AsLayout::regcPageSize, nullptr},
    {"regcreg",        "",        Form::RangeOrNumber, &AsLayout::regcRegLo,    &AsLayout::regcRegHi},
    {"regcregion",     "",        Form::Range,         nullptr,                 nullptr},
    {"regcregionspan", "",        Form::Range,         nullptr,                 nullptr},
};
// clang-format on

bool matches(const BankingKey& row, std::string_view key) {
  return row.end.empty() ? key == row.begin : key.starts_with(row.begin) && key.ends_with(row.end);
}

const BankingKey* findBankingKey(std::string_view key) {
  for (const BankingKey& row : bankingKeys) {
    if (matches(row, key)) return &row;
  }
  return nullptr;
}

// The value in this form. A single number is the low end of a range whose high end is 0.
std::optional<LayoutRange> parseValue(Form form, std::string_view value) {
  if (form != Form::Number) {
    const std::optional<LayoutRange> range = findLayoutRange(value);
    if (range.has_value() || form == Form::Range) return range;
  }
  const std::optional<uint32_t> number = parseLayoutNumber(value);
  return number.has_value() ? std::optional(LayoutRange{*number, 0}) : std::nullopt;
}

// The code window then extends from the start of the code half to the end of the data window, if an earlier line has
// set that. The end of the code half has no effect, on purpose.
void splitCodeWindow(AsLayout& layout) {
  layout.codeWindowSplit = true;
  if (layout.codeHalfLo != 0) layout.codeWindowLo = layout.codeHalfLo;
  if (layout.dataWindowHi != 0) layout.codeWindowHi = layout.dataWindowHi;
}

struct BankRegister {
  uint32_t address = 0;
  uint8_t mask = 0xFF;
};

// "address" or "address:mask". Only the low 8 bits of the mask count.
std::optional<BankRegister> parseRegister(std::string_view item) {
  const size_t colon = item.find(':');
  const std::optional<uint32_t> address = parseLayoutNumber(item.substr(0, colon));
  if (!address.has_value()) return std::nullopt;
  if (colon == std::string_view::npos) return BankRegister{*address};
  const std::optional<uint32_t> mask = parseLayoutNumber(item.substr(colon + 1));
  if (!mask.has_value()) return std::nullopt;
  return BankRegister{*address, lowByte(*mask)};
}

// The first valid item is the code register, the second the data register. One with a partial mask counts but is not
// used: bank switches write whole bytes.
void readRegisters(AsLayout& layout, std::string_view value) {
  uint32_t* const targets[] = {&layout.codeReg, &layout.dataReg};
  size_t kept = 0;
  Fields items(value, ',');
  std::string_view item;
  while (kept < std::size(targets) && items.next(item)) {
    const std::optional<BankRegister> parsed = parseRegister(item);
    if (!parsed.has_value()) continue;
    if (parsed->mask == 0xFF) *targets[kept] = parsed->address;
    ++kept;
  }
}

}  // namespace

void readMemoryKey(AsLayout& layout, std::string_view key, std::string_view value) {
  if (key != "main") return;
  layout.mainRegion.clear();
  Fields items(value, ',');
  std::string_view item;
  while (items.next(item)) {
    const std::optional<LayoutRange> range = findLayoutRange(item);
    if (range.has_value()) layout.mainRegion.insert(layout.mainRegion.end(), {range->low, range->high});
  }
}

void readBankingKey(AsLayout& layout, std::string_view key, std::string_view value) {
  layout.hasBanking = true;
  if (key == "registers") return readRegisters(layout, value);
  const BankingKey* const row = findBankingKey(key);
  if (row == nullptr) return;
  const std::optional<LayoutRange> parsed = parseValue(row->form, value);
  if (!parsed.has_value()) return;
  if (row->low != nullptr) layout.*row->low = parsed->low;
  if (row->high != nullptr) layout.*row->high = parsed->high;
  if (key.starts_with("regc")) layout.hasRegc = true;
  if (key == "codewindow") splitCodeWindow(layout);
}

}  // namespace kiln

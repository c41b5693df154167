// The 6502 code that carries calls from bank to bank, as source lines.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "base/text_store.h"

namespace kiln {

// The end of every line that the stager writes or changes.
inline constexpr std::string_view stageComment = " ; xbank";

// The addresses of the registers that select a bank.
struct BankRegisters {
  uint32_t low;                  // takes the low byte of a bank's number
  std::optional<uint32_t> high;  // takes the high byte; absent when that is not needed
};

// The bytes that one target's routine takes, and those of the code and data that all of them share.
uint32_t stageRoutineSize(const BankRegisters& registers);
uint32_t stageCommonSize(const BankRegisters& registers);

// The symbols that a target's routine needs. Their values are the last letters of their names.
enum class StageSymbol : char { AddressLessOne = 'a', BankLow = 'v', BankHigh = 'h' };

// The names of a target's routine and of its symbols.
std::string_view stageRoutineName(size_t target, TextStore& texts);
std::string_view stageSymbolName(size_t target, StageSymbol symbol, TextStore& texts);

// Appends the routine of one target, and the code and data that all of them share.
void appendStageRoutine(size_t target, const BankRegisters& registers, TextStore& texts,
                        std::vector<std::string_view>& lines);
void appendStageCommon(const BankRegisters& registers, TextStore& texts, std::vector<std::string_view>& lines);

// The label before which further routines are put.
inline constexpr std::string_view stageCommonLabel = "_kxb_call";

}  // namespace kiln

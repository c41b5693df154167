// The table of checks: what kiln-check can find. `kiln-check --list-checks` and the manual print it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace kiln {

enum class Check : uint8_t {
  Assembler,
  // Files
  CarriageReturn,
  ByteOrderMark,
  IncludeCircle,
  IncludeElsewhere,
  // Lines
  Vanished,
  MissingArgument,
  TabAfterDirective,
  MissingColon,
  Separator,
  GreedyColon,
  GreedyEquals,
  OddQuote,
  TextInList,
  CutText,
  NonAsciiText,
  // Names
  Undefined,
  LetterCase,
  LabelTwice,
  ReservedLocal,
  LocalInList,
  LabelBeforeMove,
  AssignedTwice,
  UsedTooEarly,
  EarlyCount,
  NumberLikeName,
  DefineOverridden,
  // Numbers and operands
  NumberEndsEarly,
  CharacterLiteral,
  MinusSign,
  ForeignOperator,
  LowHighAll,
  CutValue,
  FirstNumber,
  ThreeBytes,
  AccidentalIndirect,
  PageWrapJump,
  AddressZero,
  OtherOpcode,
  // Macros
  MacroEnd,
  MacroParameter,
  MacroArguments,
  MacroLabel,
  MacroInMacro,
  MacroLine,
  // Memory
  PastEnd,
  Overlap,
  BeforeOrigin,
  RunAddress,
  LostWithBranch,
  SkippedBranch,
  CutTable,
  LabelLeft,
  RegionBridge,
  HalfShadow,
  ShadowPieces,
  StageInUse,
  MissingWindow,
  MissingRegister,
  BankTwice,
  CallNotStaged,
  FlatBank,
  PortbRegister,
  BankCount,
  // What may be unwanted
  Unreachable,
  Unused,
};

struct CheckRow {
  Check check;
  std::string_view name;
  bool isExtra;  // off without -Wextra
  std::string_view summary;
};

// clang-format off
inline constexpr std::array checkRows = {
    CheckRow{Check::Assembler,          "assembler",           false, "every message of the assembler that no other check explains"},
    CheckRow{Check::CarriageReturn,     "carriage-return",     false, "Windows line ends, which spoil the last word of each line"},
    CheckRow{Check::ByteOrderMark,      "byte-order-mark",     false, "a byte order mark, which makes the first line vanish"},
    CheckRow{Check::IncludeCircle,      "include-circle",      false, "a file that includes itself"},
    CheckRow{Check::IncludeElsewhere,   "include-elsewhere",   false, "an include that is not the file of that name beside the including one"},
    CheckRow{Check::Vanished,           "vanished",            false, "a word that is no instruction, directive or macro"},
    CheckRow{Check::MissingArgument,    "missing-argument",    false, "a directive without its argument, which vanishes"},
    CheckRow{Check::TabAfterDirective,  "tab-after-directive", false, "a directive followed by a tab, which vanishes"},
    CheckRow{Check::MissingColon,       "missing-colon",       false, "a name alone in its line: a label without its colon"},
    CheckRow{Check::Separator,          "separator",           false, "a colon that separates no statements because a space is missing"},
    CheckRow{Check::GreedyColon,        "greedy-colon",        false, "a statement that becomes a label because a colon follows"},
    CheckRow{Check::GreedyEquals,       "greedy-equals",       false, "a statement that becomes an assignment because of an equals sign"},
    CheckRow{Check::OddQuote,           "odd-quote",           false, "an odd number of quotes: the comment belongs to the statement"},
    CheckRow{Check::TextInList,         "text-in-list",        false, "a text in .byte, .word or .long"},
    CheckRow{Check::CutText,            "cut-text",            false, "a .string that a colon or an equals sign cuts"},
    CheckRow{Check::NonAsciiText,       "non-ascii-text",      false, "characters beyond ASCII in a text, which shift the labels after it"},
    CheckRow{Check::Undefined,          "undefined",           false, "a name that nothing defines, which counts as 0"},
    CheckRow{Check::LetterCase,         "letter-case",         true,  "a name that is found in another letter case only"},
    CheckRow{Check::LabelTwice,         "label-twice",         false, R"(two local labels, or two labels with ">", of one name: the last counts)"},
    CheckRow{Check::ReservedLocal,      "reserved-local",      false, "a local label with one of the five words that never get a scope"},
    CheckRow{Check::LocalInList,        "local-in-list",       false, "a local label in a list or an assignment, where it gets no scope"},
    CheckRow{Check::LabelBeforeMove,    "label-before-move",   false, "a label in the line of an .org or a .bank"},
    CheckRow{Check::AssignedTwice,      "assigned-twice",      false, "a name with two values: the last counts everywhere"},
    CheckRow{Check::UsedTooEarly,       "used-too-early",      false, "an assignment or an .org that uses a name from further down"},
    CheckRow{Check::EarlyCount,         "early-count",         false, "a .space whose count uses names of the source"},
    CheckRow{Check::NumberLikeName,     "number-like-name",    false, "a name that looks like a number, or a number that is a name"},
    CheckRow{Check::DefineOverridden,   "define-overridden",   false, "an assignment that replaces a -D"},
    CheckRow{Check::NumberEndsEarly,    "number-ends-early",   false, "a number that ends before its text does, or is missing"},
    CheckRow{Check::CharacterLiteral,   "character-literal",   false, "a character in quotes, which is an unknown name"},
    CheckRow{Check::MinusSign,          "minus-sign",          false, "a minus sign before a number: there are no negative numbers"},
    CheckRow{Check::ForeignOperator,    "foreign-operator",    false, "an operator of other assemblers, such as & or <<"},
    CheckRow{Check::LowHighAll,         "low-high-all",        false, R"("<" or ">" before a sum, all of which it takes)"},
    CheckRow{Check::CutValue,           "cut-value",           false, "a value that does not fit and loses its high bytes"},
    CheckRow{Check::FirstNumber,        "first-number",        false, "a sum in the zero page because of its first number alone"},
    CheckRow{Check::ThreeBytes,         "three-bytes",         true,  "three bytes where the zero page would take two"},
    CheckRow{Check::AccidentalIndirect, "accidental-indirect", false, "parentheses that make an operand indirect, or are no mode at all"},
    CheckRow{Check::PageWrapJump,       "page-wrap-jump",      false, "a JMP through a vector that crosses a page"},
    CheckRow{Check::AddressZero,        "address-zero",        false, "an operand of names that comes to the address 0"},
    CheckRow{Check::OtherOpcode,        "other-opcode",        true,  "instructions of the pell machine, with other opcodes than on the 65C02"},
    CheckRow{Check::MacroEnd,           "macro-end",           false, "a macro that ends early, has no body, or takes in what follows"},
    CheckRow{Check::MacroParameter,     "macro-parameter",     false, "a parameter that is replaced inside a longer word"},
    CheckRow{Check::MacroArguments,     "macro-arguments",     false, "a call with too few or too many arguments"},
    CheckRow{Check::MacroLabel,         "macro-label",         false, "a label in a macro that is called more than once"},
    CheckRow{Check::MacroInMacro,       "macro-in-macro",      false, "a call, an .include or a .macro in a macro"},
    CheckRow{Check::MacroLine,          "macro-line",          false, "a macro call that shares its line with another statement"},
    CheckRow{Check::PastEnd,            "past-end",            false, "bytes that run past $FFFF"},
    CheckRow{Check::Overlap,            "overlap",             false, "two segments at the same addresses"},
    CheckRow{Check::BeforeOrigin,       "before-origin",       false, "bytes before the first .org"},
    CheckRow{Check::RunAddress,         "run-address",         false, "a run or init address without effect, or one that cannot work"},
    CheckRow{Check::LostWithBranch,     "lost-with-branch",    false, "a label or a statement lost with the line of a long branch"},
    CheckRow{Check::SkippedBranch,      "skipped-branch",      false, "a branch after .byte $2C or $24 that becomes a long branch"},
    CheckRow{Check::CutTable,           "cut-table",           false, "data that the JMP of a code region cuts"},
    CheckRow{Check::LabelLeft,          "label-left",          false, "the label of data that stays behind when the data moves to the next region"},
    CheckRow{Check::RegionBridge,       "region-bridge",       true,  "a JMP between regions that is never reached"},
    CheckRow{Check::HalfShadow,         "half-shadow",         false, "shadow ranges without a stage"},
    CheckRow{Check::ShadowPieces,       "shadow-pieces",       false, "more than 41 pieces of shadow code"},
    CheckRow{Check::StageInUse,         "stage-in-use",        false, "a stage over bytes of the program"},
    CheckRow{Check::MissingWindow,      "missing-window",      false, "a .bank without a window"},
    CheckRow{Check::MissingRegister,    "missing-register",    false, "banked output without both bank registers"},
    CheckRow{Check::BankTwice,          "bank-twice",          false, "a bank that begins a second time and overwrites itself"},
    CheckRow{Check::CallNotStaged,      "call-not-staged",     false, "a call into a bank that goes there directly"},
    CheckRow{Check::FlatBank,           "flat-bank",           false, "a .bank without banked output"},
    CheckRow{Check::PortbRegister,      "portb-register",      false, "PORTB as a bank register"},
    CheckRow{Check::BankCount,          "bank-count",          false, "a bank whose number in the file differs from its __bank_ name"},
    CheckRow{Check::Unreachable,        "unreachable",         true,  "code after a JMP, RTS, RTI or BRA that no label leads to"},
    CheckRow{Check::Unused,             "unused",              true,  "a label that nothing uses"},
};
// clang-format on

constexpr bool checkRowsAreInOrder() {
  for (size_t i = 0; i < checkRows.size(); ++i) {
    if (checkRows[i].check != static_cast<Check>(i)) return false;
  }
  return true;
}
static_assert(checkRowsAreInOrder());

constexpr const CheckRow& rowOf(Check check) { return checkRows[static_cast<size_t>(check)]; }

}  // namespace kiln

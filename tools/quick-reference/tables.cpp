// Prints the program's tables as JSON, for make.py: the quick reference is made from what the program knows.
#include <iostream>
#include <nlohmann/json.hpp>

#include "base/version.h"
#include "inspect/cycles.h"
#include "isa/opcodes.h"
#include "lsp/directive_texts.h"
#include "lsp/hardware.h"
#include "lsp/mnemonics.h"

namespace kiln {
namespace {

using Json = nlohmann::ordered_json;

Json modes() {
  Json list;
  for (const ModeRow& row : modeRows)
    list.push_back({{"name", nameOf(row.mode)}, {"before", row.before}, {"after", row.after}, {"bytes", row.size}});
  return list;
}

// The number of the mode, and what the instruction is there. Cycles are absent for what a 6502 does not have.
Json opcode(const OpcodeRow& row) {
  Json entry = {{"mode", static_cast<int>(row.mode)}, {"opcode", row.opcode}};
  if (const std::optional<Cycles> cycles = cyclesOf(row.mnemonic, row.mode)) {
    entry["cycles"] = cycles->count;
    entry["mayGrow"] = cycles->mayGrow;
  }
  return entry;
}

Json instructions() {
  Json list;
  for (size_t i = 0; i < opcodeRowCount; ++i) {
    const OpcodeRow& row = opcodeRows()[i];
    if (i == 0 || row.mnemonic != opcodeRows()[i - 1].mnemonic) {
      const MnemonicText& text = textOf(row.mnemonic);
      list.push_back({{"name", mnemonicText(row.mnemonic)}, {"does", text.does}, {"flags", text.flags}});
    }
    list.back()["opcodes"].push_back(opcode(row));
  }
  return list;
}

Json directives() {
  Json list;
  for (const DirectiveText& text : directiveTexts())
    list.push_back({{"form", text.form}, {"does", text.does}});
  return list;
}

Json names() {
  Json list;
  for (const HardwareName& row : hardwareNames())
    list.push_back({{"name", row.name}, {"address", row.address}, {"chip", row.chip}});
  return list;
}

}  // namespace
}  // namespace kiln

int main() {
  using namespace kiln;
  const Json tables = {{"version", version},
                       {"modes", modes()},
                       {"instructions", instructions()},
                       {"directives", directives()},
                       {"names", names()}};
  std::cout << tables.dump(1) << '\n';
}

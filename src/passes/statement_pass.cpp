#include "passes/statement_pass.h"

#include "source/statements.h"

namespace kiln {

void enterInitialSymbols(const Settings& settings, SymbolTable& symbols) {
  for (const NamedValue& seed : settings.seeds) {
    bool isNew = false;
    Symbol& symbol = symbols.enter(seed.name, isNew);
    symbol.value = seed.value;
    symbol.seed = true;
  }
  const BankedSettings& banking = settings.banking;
  if (banking.codeBankRegister != 0) symbols.set("__bank_code_reg", banking.codeBankRegister);
  if (banking.dataBankRegister != 0) symbols.set("__bank_data_reg", banking.dataBankRegister);
  for (const NamedValue& define : settings.defines)
    symbols.set(define.name, define.value);
}

void parseStatements(const std::vector<std::string_view>& lines, Iteration& iteration) {
  StatementParser parser(iteration.evaluator, iteration.texts);
  iteration.statements.reserve(lines.size() + lines.size() / 16);
  uint32_t lineNumber = 0;
  for (std::string_view line : lines)
    parser.parseLine(line, ++lineNumber, iteration.statements);
}

}  // namespace kiln

#include "passes/statement_pass.h"

#include <algorithm>

#include "source/statements.h"

namespace kiln {
namespace {

// For a statement on each line, and a few more; less when most lines are empty. A list that has nearly as much stays.
void makeRoom(const SourceLines& lines, std::vector<AsLine>& statements) {
  const size_t expected = std::min(lines.count() + lines.count() / 16, lines.size() / 8) + 1;
  if (statements.capacity() >= expected - expected / 32) return;
  statements = {};
  statements.reserve(expected);
}

}  // namespace

void enterInitialSymbols(const Settings& settings, SymbolTable& symbols) {
  enterSeeds(settings.seeds, symbols);
  const BankedSettings& banking = settings.banking;
  if (banking.codeBankRegister != 0) symbols.set("__bank_code_reg", banking.codeBankRegister);
  if (banking.dataBankRegister != 0) symbols.set("__bank_data_reg", banking.dataBankRegister);
  for (const NamedValue& define : settings.defines)
    symbols.set(define.name, define.value);
}

void parseStatements(const SourceLines& lines, Iteration& iteration) {
  StatementParser parser(iteration.evaluator, iteration.texts);
  makeRoom(lines, iteration.statements.lines);
  LineReader reader(lines.pieces());
  std::string_view line;
  uint32_t lineNumber = 0;
  while (reader.next(line))
    parser.parseLine(line, ++lineNumber, iteration.statements);
}

}  // namespace kiln

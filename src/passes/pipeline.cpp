#include "passes/pipeline.h"

#include <utility>

#include "base/arithmetic.h"
#include "base/format.h"
#include "passes/cross_bank.h"
#include "passes/emission_pass.h"
#include "passes/layout_pass.h"
#include "passes/line_edits.h"
#include "passes/long_branches.h"
#include "passes/statement_pass.h"

namespace kiln {
namespace {

constexpr int iterationLimit = 8;

// An empty iteration that has the memory of the one before (a twelfth of the time of a large program with long
// branches).
Iteration& beginIteration(Assembler& assembler) {
  Statements statements;
  SymbolTable symbols;
  if (assembler.iteration.has_value()) {
    statements = std::move(assembler.iteration->statements);
    symbols = std::move(assembler.iteration->symbols);
  }
  statements.lines.clear();
  statements.labels.clear();
  statements.branches = 0;
  symbols.clear();
  Iteration& iteration = assembler.iteration.emplace(assembler.diagnostics.warnings);
  iteration.statements = std::move(statements);
  iteration.symbols = std::move(symbols);
  return iteration;
}

void parseAndLayOut(Assembler& assembler) {
  assembler.diagnostics.errors.clear();
  assembler.diagnostics.warnings.clear();
  Iteration& iteration = beginIteration(assembler);
  enterInitialSymbols(assembler.settings, iteration.symbols);
  parseStatements(assembler.lines, iteration);
  // All statements exist and have their sizes; none has an address.
  layOut(assembler.settings, assembler.diagnostics, assembler.shadowPlan, iteration);
}

// A progress line is a warning of its iteration. The next iteration drops it, so only the last one is printed.
void noteProgress(Assembler& assembler, int round, std::string_view verb, size_t count, std::string_view noun,
                  std::string_view plural) {
  if (!assembler.settings.verbose) return;
  assembler.diagnostics.warnings.add({"iteration ", decimal(round), ": ", verb, " ",
                                      decimal(static_cast<int64_t>(count)), " ", count == 1 ? noun : plural});
}

// The edits of one rewriter: the stager's, or, when it has none, those of the long-branch rewriter.
Rewrite findRewrite(Assembler& assembler, uint32_t bankOrigin, int round) {
  Iteration& iteration = *assembler.iteration;
  Rewrite staged = stageCrossBankCalls(iteration, assembler.lines, assembler.settings.banking, assembler.shadowPlan,
                                       assembler.rewriteState);
  if (staged.count != 0) {
    noteProgress(assembler, round, "staged", staged.count, "cross-bank call", "cross-bank calls");
    return staged;
  }
  Rewrite rewritten = rewriteLongBranches(iteration, bankOrigin, assembler.rewriteState);
  if (rewritten.count != 0) {
    noteProgress(assembler, round, "rewrote", rewritten.count, "long branch", "long branches");
  }
  return rewritten;
}

}  // namespace

bool assemble(Assembler& assembler) {
  Diagnostics& diagnostics = assembler.diagnostics;
  diagnostics.errors.keepRecorded();
  diagnostics.warnings.keepRecorded();
  const uint32_t bankOrigin = low16(assembler.settings.banking.bankWindowLow);
  for (int round = 1; round <= iterationLimit; ++round) {
    parseAndLayOut(assembler);
    if (!diagnostics.errors.empty()) return false;
    const Rewrite rewrite = findRewrite(assembler, bankOrigin, round);
    if (rewrite.error.has_value()) {
      diagnostics.errorAt(rewrite.error->line, {rewrite.error->text});
      return false;
    }
    if (rewrite.count == 0) break;
    // After the last round the lines must match the statements.
    if (round < iterationLimit) applyEdits(assembler.lines, rewrite.edits, assembler.notes);
  }
  // The layout is fixed below this line.
  assembler.segments = emit(*assembler.iteration, bankOrigin, diagnostics);
  return diagnostics.errors.empty();
}

}  // namespace kiln

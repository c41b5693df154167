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

void parseAndLayOut(Assembler& assembler) {
  assembler.diagnostics.errors.clear();
  assembler.diagnostics.warnings.clear();
  // A fresh iteration, but for the room that its statements take: to get 50 MB anew takes a tenth of a round's time.
  std::vector<AsLine> room;
  if (assembler.iteration.has_value()) room = std::move(assembler.iteration->statements);
  room.clear();
  Iteration& iteration = assembler.iteration.emplace(assembler.diagnostics.warnings);
  iteration.statements = std::move(room);
  enterInitialSymbols(assembler.settings, iteration.symbols);
  parseStatements(assembler.lines, iteration);
  // All statements stand, with their sizes; none has an address.
  layOut(assembler.settings, assembler.diagnostics, assembler.shadowPlan, iteration);
}

// A progress line goes with the warnings of its iteration, and the next iteration drops those: only the last one that
// is allowed ever shows.
void noteProgress(Assembler& assembler, int round, std::string_view verb, size_t count, std::string_view noun,
                  std::string_view plural) {
  if (!assembler.settings.verbose) return;
  assembler.diagnostics.warnings.add({"iteration ", decimal(round), ": ", verb, " ",
                                      decimal(static_cast<int64_t>(count)), " ", count == 1 ? noun : plural});
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
    std::vector<LineEdit> edits;
    if (const size_t staged = stageCrossBankCalls(assembler, edits); staged != 0) {
      if (!diagnostics.errors.empty()) return false;
      noteProgress(assembler, round, "staged", staged, "cross-bank call", "cross-bank calls");
    } else {
      edits = rewriteLongBranches(*assembler.iteration, bankOrigin, assembler.rewriteCount, assembler.texts);
      if (edits.empty()) break;
      noteProgress(assembler, round, "rewrote", edits.size(), "long branch", "long branches");
    }
    // The lines stay as the statements know them when there is no iteration left to read them anew.
    if (round < iterationLimit) applyEdits(assembler.lines, edits);
  }
  // The layout is fixed below this line.
  assembler.segments = emit(*assembler.iteration, bankOrigin, diagnostics);
  return diagnostics.errors.empty();
}

}  // namespace kiln

// The state of a run, split by how long each part of it lives.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "base/diagnostics.h"
#include "base/text_store.h"
#include "output/bank_values.h"
#include "output/segment.h"
#include "passes/code_regions.h"
#include "source/expression.h"
#include "source/line.h"
#include "source/seeds.h"
#include "source/source_lines.h"
#include "source/source_notes.h"
#include "source/symbols.h"

namespace kiln {

// A symbol defined before the first line is read.
struct NamedValue {
  std::string name;
  int64_t value;
};

// Written by the driver before the run, constant afterwards.
struct Settings {
  bool verbose = false;
  Seeds seeds;
  std::vector<NamedValue> defines;  // "-D", in order
  BankedSettings banking;           // the bank window is the code window: both ends 0 = none
};

// The results of one iteration. Each iteration starts with an empty one, so nothing but memory is left over from the
// one before.
struct Iteration {
  explicit Iteration(MessageList& warnings) : evaluator(symbols, warnings) {}
  Iteration(const Iteration&) = delete;
  Iteration& operator=(const Iteration&) = delete;

  TextStore texts;  // made by parsing and layout
  SymbolTable symbols;
  Evaluator evaluator;
  Statements statements;
  RegionList codeRegions;                                      // as the last ".code_regions" declared them
  std::unordered_map<std::string_view, uint32_t> bankNumbers;  // by the operand of ".bank"
};

// The targets of the calls staged so far: operands as in their statements, qualified.
struct StageTargets {
  std::vector<std::string_view> operands;
  std::unordered_map<std::string_view, size_t> numbers;
};

// What the rewriters carry from iteration to iteration.
struct RewriteState {
  TextStore texts;                // the lines that they write
  uint32_t longBranchLabels = 0;  // used so far
  StageTargets stageTargets;
};

// One run.
struct Assembler {
  Settings settings;
  Diagnostics diagnostics;
  TextStore texts;
  SourceLines lines;             // the expanded source; the rewriters change it between iterations
  SourceNotes* notes = nullptr;  // where its lines come from; null when that is not wanted
  RewriteState rewriteState;
  ShadowPlan shadowPlan;               // from the last directives, of any iteration
  std::optional<Iteration> iteration;  // the last one
  std::vector<AsSegment> segments;     // filled by the emission pass
};

}  // namespace kiln

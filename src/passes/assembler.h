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
#include "source/source_lines.h"
#include "source/symbols.h"

namespace kiln {

// A symbol that stands before the first line is read.
struct NamedValue {
  std::string name;
  int64_t value;
};

// Written by the driver before the run, constant from there on.
struct Settings {
  bool verbose = false;
  std::vector<NamedValue> seeds;    // platform equates; a label may take the place of one
  std::vector<NamedValue> defines;  // "-D", in order
  BankedSettings banking;           // the bank window is the code window: both ends 0 = none
};

// What one iteration finds out. Each iteration has its own, so that nothing of the one before is left in it.
struct Iteration {
  explicit Iteration(MessageList& warnings) : evaluator(symbols, warnings) {}
  Iteration(const Iteration&) = delete;
  Iteration& operator=(const Iteration&) = delete;

  TextStore texts;  // put together while parsing and laying out
  SymbolTable symbols;
  Evaluator evaluator;
  std::vector<AsLine> statements;
  size_t definitionCount = 0;                                  // labels and assignments among the statements
  RegionList codeRegions;                                      // as the last ".code_regions" declared them
  std::unordered_map<std::string_view, uint32_t> bankNumbers;  // by the operand of ".bank"
};

// The targets that calls have been staged for so far: operands as their statements have them, qualified.
struct StageTargets {
  std::vector<std::string_view> operands;
  std::unordered_map<std::string_view, size_t> numbers;
};

// One run.
struct Assembler {
  Settings settings;
  Diagnostics diagnostics;
  TextStore texts;
  SourceLines lines;                   // the expanded source; the rewriters change it between iterations
  uint32_t rewriteCount = 0;           // numbers the labels of the long-branch rewriter, never reset
  StageTargets stageTargets;           // of the cross-bank stager, numbered on likewise
  ShadowPlan shadowPlan;               // what the directives said last, in whichever iteration
  std::optional<Iteration> iteration;  // the last one
  std::vector<AsSegment> segments;     // filled by the emission pass
};

}  // namespace kiln

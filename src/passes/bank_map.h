// Where the statements of an iteration go when they are written: to which bank, or to main memory.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "output/bank_values.h"
#include "output/segment.h"
#include "passes/assembler.h"

namespace kiln {

// The memory outside every bank window and every range of shadow code.
class MainMemory {
 public:
  MainMemory(const BankedSettings& settings, const ShadowPlan& shadowPlan);

  // True when all of `size` bytes from `address` (0..65535) are in main memory.
  bool holds(uint32_t address, uint64_t size) const;

 private:
  std::vector<uint32_t> taken_;  // how many addresses below the index are not in main memory
};

// A run of main memory that statements fill one after the other, without an origin between them.
struct MainRun {
  uint32_t start = 0;
  uint64_t size = 0;
  size_t lastLine = 0;   // index of the source line with its last byte
  bool isSplit = false;  // that line continues somewhere else, so nothing can be put after it
};

// Whether a symbol is a label after a ".bank", or a name assigned from one, and its bank then.
struct SymbolBank {
  bool isAfterBank = false;
  std::optional<BankValue> bank = {};  // absent when the writer does not bank the segment
};

struct BankMap {
  std::vector<SymbolBank> symbols;  // by Symbol::index
  std::vector<MainRun> mainRuns;
  bool usesHighByte = false;        // some bank's number does not fit a byte
  bool endsCloaked = false;         // the source ends inside a cloaked segment
  std::optional<size_t> stageLine;  // index of the source line with the label "__bank_stage"
  bool stageInMain = false;         // code inserted after that line is in main memory
};

// The label that says where generated code goes.
inline constexpr std::string_view stageLabel = "__bank_stage";

// The statements must be laid out. Gives no warnings.
BankMap mapBanks(Iteration& iteration, const BankedSettings& settings, const MainMemory& mainMemory);

}  // namespace kiln

// Keeps code inside the address ranges that a program declares: code that would reach the end of one region moves to
// the start of the next, with a JMP between them where execution would fall through.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "base/diagnostics.h"
#include "base/text_store.h"
#include "source/line.h"

namespace kiln {

// The declared regions, in the order written. They may overlap, and be in any order.
class RegionList {
 public:
  // Start and end of each region in turn, inclusive, 0..65535.
  void declare(std::vector<uint32_t> bounds);

  size_t count() const { return bounds_.size() / 2; }
  uint32_t start(size_t region) const { return bounds_[2 * region]; }
  uint32_t end(size_t region) const { return bounds_[2 * region + 1]; }

  // The first region that holds the address; -1 when none does.
  int32_t find(uint32_t address) const;

 private:
  // From this address to the next cut, this region is the first one, or none (-1).
  struct Cut {
    uint32_t address;
    int32_t region;
  };

  static bool isBefore(const Cut& a, const Cut& b) { return a.address < b.address; }

  std::vector<uint32_t> bounds_;
  std::vector<Cut> cuts_;
};

// A statement to be inserted before the statement that has this index in the parsed list.
struct Insertion {
  size_t before;
  AsLine line;
};

// Follows one layout pass through the regions.
class RegionGuard {
 public:
  RegionGuard(Diagnostics& diagnostics, TextStore& texts) : diagnostics_(diagnostics), texts_(texts) {}

  const RegionList& regions() const { return regions_; }
  void declare(std::vector<uint32_t> bounds) { regions_.declare(std::move(bounds)); }

  // The program counter has been set: finds the region that holds it.
  void locate(uint32_t pc);
  // The program counter has been set to the start of the next region, which becomes the current one.
  void enterNext();
  // Code in a cloaked segment is not checked.
  void suspend() { suspended_ = true; }
  void resume() { suspended_ = false; }

  // Reports a statement at `pc` that runs past the last region, once per pass.
  void checkOverflow(const AsLine& line, uint32_t pc);

  // Statements to be inserted: none, the ".org" of the next region, or a bridge and the ".org".
  struct Spill {
    std::optional<AsLine> bridge;
    std::optional<AsLine> origin;
  };

  // What has to come before `line`, which would be at `pc` after `previous` (null after a line without a statement).
  Spill spill(const AsLine& line, const AsLine* previous, uint32_t pc);

  // Decides at a ".spill_point" whether the block after it stays in the region. If not, the statement becomes the
  // ".org" of the next region, and the result is true: the program counter is then nextStart().
  bool moveBlock(std::vector<AsLine>& statements, size_t spillPoint, uint32_t pc);

  uint32_t nextStart() const { return regions_.start(current_ + 1); }

 private:
  bool watches(const AsLine& line) const;
  bool isLast() const { return current_ + 1 >= regions_.count(); }
  size_t current() const;
  std::string_view nextStartText();

  Diagnostics& diagnostics_;
  TextStore& texts_;
  RegionList regions_;
  size_t current_ = 0;
  bool inRegion_ = false;
  bool overflowReported_ = false;
  bool suspended_ = false;
};

}  // namespace kiln

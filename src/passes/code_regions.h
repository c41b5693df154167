// Keeps code inside the address ranges that a program declares: what would run into the end of one region moves to the
// start of the next, with a JMP between them where execution would fall through.
#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

#include "base/diagnostics.h"
#include "base/text_store.h"
#include "source/line.h"

namespace kiln {

// The declared regions, in the order written. They may overlap and stand in any order.
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
  void indexAddresses() const;

  std::vector<uint32_t> bounds_;
  // A walk over few regions is quick. Once the walks together have cost as much as an index of all addresses would,
  // there is one.
  mutable size_t steps_ = 0;
  mutable std::vector<int32_t> byAddress_;
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
  // The program counter has been set to the start of the next region, which thereby is the current one.
  void enterNext();
  // Code in a cloaked segment is nobody's business here.
  void suspend(bool suspended) { suspended_ = suspended; }

  // Reports a statement at `pc` that runs past the last region; once a pass.
  void checkOverflow(const AsLine& line, uint32_t pc);

  // What must be inserted before `line`, which would stand at `pc` behind `previous` (null for the first statement):
  // nothing, the ".org" of the next region, or a bridge and the ".org". Returns how many statements `inserted` has.
  size_t spill(const AsLine& line, const AsLine* previous, uint32_t pc, AsLine (&inserted)[2]);

  // Decides at a ".spill_point" whether the block behind it stays in the region. If not, the statement becomes the
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

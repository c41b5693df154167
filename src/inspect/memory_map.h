// What is where in memory when the program has been loaded.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "inspect/bank_windows.h"
#include "inspect/placements.h"
#include "inspect/program.h"
#include "inspect/routines.h"

namespace kiln {

// What an address is used for.
enum class Use : uint8_t {
  Free,
  Stage,     // filled while the program loads, free afterwards
  Reserved,  // zeros of .space, and those between two origins
  Data,
  Code,
  Shadow,  // code and data under the OS ROM
  Cloaked,
  Overlap,  // filled more than once
};
inline constexpr size_t useCount = 8;

inline constexpr std::string_view codeRegionName = "code region";

// Ordinary memory, a bank, or a cloaked segment that the program's file leaves out.
struct Space {
  std::string name;        // "main memory", "bank 1 (pictures)"
  AddressRange window;     // what it shows of memory
  uint32_t usedBytes = 0;  // addresses that are neither free nor a stage
  bool isCloaked = false;
};

// A run of addresses with one use. Free ones are in no block.
struct Block {
  size_t space = 0;
  AddressRange range;
  Use use = Use::Free;
};

// A segment with at least a byte.
struct MappedSegment {
  size_t space = 0;
  uint32_t start = 0;
  uint64_t size = 0;  // may lead past $FFFF
  bool isCloaked = false;
};

struct Overlap {
  size_t space = 0;
  AddressRange range;
  uint32_t segments = 0;  // that fill each of these addresses
};

// A range of ordinary memory that the program or the layout declares.
struct Region {
  std::string_view name;
  AddressRange range;
  uint32_t usedBytes = 0;
};

// A routine that has a place in a space.
struct MappedRoutine {
  Routine routine;
  size_t space = 0;
  AddressRange range;  // its bytes up to the end of its segment
};

struct MemoryMap {
  std::string program;                  // the path of its file
  std::vector<Space> spaces;            // ordinary memory comes first
  std::vector<Block> blocks;            // by space and address
  std::vector<MappedSegment> segments;  // in the order of the source
  std::vector<Overlap> overlaps;        // by space and address
  std::vector<Region> regions;
  std::vector<AddressRange> shadow;     // by segment
  std::optional<AddressRange> stage;    // of the shadow code
  std::vector<MappedRoutine> routines;  // in the order of the source
  bool isForAtari = false;              // the file is for the Atari, whose hardware is at $D000-$D7FF
  std::optional<AddressRange> bankWindow;
};

// Those of code, the largest first.
std::vector<const MappedRoutine*> largestRoutines(const MemoryMap& map);

// "$2000-$2FFF". The last address may be past $FFFF.
std::string rangeText(uint64_t first, uint64_t last);
inline std::string rangeText(const AddressRange& range) { return rangeText(range.first, range.last); }

// The program must be assembled.
MemoryMap mapMemory(const Program& program, const Placements& placements);

}  // namespace kiln

// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/console.h"

namespace kiln {

// An address range, both ends inclusive; both 0 = not set.
struct Window {
  uint32_t start = 0;
  uint32_t end = 0;
};

// What the command line asks for. Options given twice hold the later value.
struct Options {
  std::vector<std::string> inputs;
  std::vector<std::string> includePaths;
  std::vector<std::pair<std::string, std::string>> defines;  // name and the wording of its value
  std::optional<std::string> output;
  std::optional<std::string> listing;
  std::optional<std::string> layout;
  std::optional<std::string> symbolFile;
  std::optional<std::string> entry;
  std::optional<std::string> format;  // lower-cased
  bool verbose = false;
  bool banked = false;
  bool shortSplit = false;  // "-split-bank"
  bool longSplit = false;   // "--split-bank"
  Window codeWindow;
  Window dataWindow;       // "-data-window"
  Window splitDataWindow;  // "--data-window", each end 0..65535
  uint32_t codeRegister = 0;
  uint32_t dataRegister = 0;
};

enum class OptionId : uint8_t {
  Help,
  Version,
  Verbose,
  Banked,
  LongSplit,
  SplitDataWindow,
  Layout,
  Format,
  SymbolFile,
  Output,
  Listing,
  IncludePath,
  Define,
  Entry,
  ShortSplit,
  CodeWindow,
  DataWindow,
  CodeRegister,
  DataRegister,
};

struct OptionRow {
  std::string_view spelling;
  bool takesValue;  // the next argument; an option that finds none is no option
  OptionId id;
};

// Every option, in the order in which an argument is tested against them.
std::span<const OptionRow> optionRows();

std::string_view usageText();

// Scans the arguments behind the program's path, left to right. The result is an exit status when the run ends with the
// scan (its message has been printed then), and absent when it goes on.
std::optional<int> scanArguments(std::span<const std::string> arguments, Console& console, Options& options);

}  // namespace kiln

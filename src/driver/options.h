// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/console.h"

namespace kiln {

// An address range, both ends inclusive. Not set when its end is 0.
struct Window {
  uint32_t start = 0;
  uint32_t end = 0;
};

enum class Format : uint8_t { Xex, Prg };

// A symbol from "-D name=value".
struct Definition {
  std::string name;
  std::string value;  // as written
};

// What the command line asks for. The last of several values counts.
struct Options {
  std::vector<std::string> inputs;
  std::vector<std::string> includePaths;
  std::vector<Definition> defines;
  std::optional<std::string> output;
  std::optional<std::string> listing;
  std::optional<std::string> layout;
  std::optional<std::string> symbolFile;
  std::optional<std::string> entry;
  std::optional<Format> format;
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

// Where an option has its value: in the next argument, or joined to the option itself.
enum class OptionValue : uint8_t { None, Next, JoinedOrNext };

struct OptionRow {
  std::string_view spelling;
  OptionValue value;
  // Applies the option; the value is empty when there is none. The result is the exit status if the run ends here.
  std::optional<int> (*apply)(const std::string& value, Console& console, Options& options);
};

// All options, in the order in which an argument is compared with them.
std::span<const OptionRow> optionRows();

std::string_view usageText();

// Reads the arguments after the program's path, left to right, up to the first that ends the run. The result is then
// the exit status, and the message has been printed; absent when the run continues.
std::optional<int> scanArguments(std::span<const std::string> arguments, Console& console, Options& options);

}  // namespace kiln

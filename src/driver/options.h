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
  std::string_view program = "kiln-as";  // which complains
};

// Where an option has its value: in the next argument, joined to the option itself, or either.
enum class OptionValue : uint8_t { None, Next, Joined, JoinedOrNext };

// An option that changes a Target.
template <typename Target>
struct OptionRow {
  std::string_view spelling;
  OptionValue value;
  // Applies the option; the value is empty when there is none. The result is the exit status if the run ends here.
  std::optional<int> (*apply)(const std::string& value, Console& console, Target& target);
};

// All options, in the order in which an argument is compared with them.
std::span<const OptionRow<Options>> optionRows();

std::string_view usageText();

// Walks the arguments after the program's path, left to right.
class ArgumentReader {
 public:
  explicit ArgumentReader(std::span<const std::string> arguments) : arguments_(arguments) {}

  bool atEnd() const { return next_ == arguments_.size(); }
  const std::string& argument() const { return arguments_[next_]; }
  void skip() { ++next_; }

  // Takes the argument, and its value, if it is an option of the table. The result of its apply() goes to `status`.
  template <typename Target>
  bool takeOption(std::span<const OptionRow<Target>> rows, Console& console, Target& target,
                  std::optional<int>& status) {
    for (const OptionRow<Target>& row : rows) {
      if (!matches(row.spelling, row.value)) continue;
      status = row.apply(takeValue(row.spelling, row.value), console, target);
      return true;
    }
    return false;
  }

 private:
  bool matches(std::string_view spelling, OptionValue value) const;
  std::string takeValue(std::string_view spelling, OptionValue value);

  std::span<const std::string> arguments_;
  size_t next_ = 0;
};

// Takes an option of kiln-as or an input. The result is the exit status if the run ends here, and the message has been
// printed; absent when the run continues.
std::optional<int> takeArgument(ArgumentReader& arguments, Console& console, Options& options);

// Reads the arguments after the program's path up to the first that ends the run, likewise.
std::optional<int> scanArguments(std::span<const std::string> arguments, Console& console, Options& options);

}  // namespace kiln

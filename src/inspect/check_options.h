// The command line of kiln-check: that of kiln-as, and options of its own.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "driver/options.h"
#include "inspect/findings.h"

namespace kiln {

enum class ReportFormat : uint8_t { Text, Json, Sarif };

// A file that `--labels` asks for.
struct LabelFile {
  std::string format;
  std::string path;
};

struct CheckOptions {
  Options assembler;
  CheckLevels levels;
  ReportFormat report = ReportFormat::Text;
  std::vector<LabelFile> labels;
  std::optional<std::string> depfile;
  std::optional<std::string> listing;  // "--listing", with cycles
  std::optional<std::string> map;
};

// The options that kiln-as lacks, or for which kiln-check has another meaning, in the order in which an argument is
// compared with them. Those of kiln-as come after them.
std::span<const OptionRow<CheckOptions>> checkOptionRows();

// Reads the arguments after the program's path, up to the first that ends the run. The result is then the exit status,
// and the message has been printed; absent when the run continues.
std::optional<int> scanCheckArguments(std::span<const std::string> arguments, Console& console, CheckOptions& options);

}  // namespace kiln

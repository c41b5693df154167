#include "inspect/check_options.h"

#include <algorithm>

#include "base/format.h"
#include "base/text.h"
#include "base/version.h"

namespace kiln {
namespace {

constexpr std::string_view usage = R"(kiln-check — checks programs for kiln-as
Usage: kiln-check [options] [options of kiln-as] [input.asm ...]
Assembles the inputs as kiln-as would, writes no program, and prints what may be a mistake.
Without inputs, all programs of .kiln are checked, in this folder or the nearest one above.
Options:
  -WNAME, -Wno-NAME      Switch a check on, off
  -Wall                  All checks but the extra ones (default)
  -Wextra                The extra checks, too
  -Werror=NAME           Report this check as an error
  --list-checks          Print all checks
  --json                 One JSON object a line
  --sarif                A SARIF 2.1.0 document
  --labels=FORMAT:FILE   Write the labels; FORMAT is vice, mads or json
  --depfile=FILE         Write what the output depends on, for make and ninja
  --listing=FILE         Write a listing with bytes and cycles
  --map=FILE             Write a map of the memory, .txt or .svg
  -v, --version          Print version
  -h                     Show this help
A comment "; check: allow NAME" allows a finding in its line.
Exit status: 0 nothing found, 1 findings, 2 kiln-as would write no program.
)";

constexpr int failure = 2;

std::optional<int> printUsage(const std::string&, Console& console, CheckOptions&) {
  console.printOutput(usage);
  return 0;
}

std::optional<int> printVersion(const std::string&, Console& console, CheckOptions&) {
  console.printOutput(concat({"kiln-check ", version, "\n"}));
  return 0;
}

std::optional<int> listChecks(const std::string&, Console& console, CheckOptions&) {
  std::string list;
  for (const CheckRow& row : checkRows) {
    list += row.name;
    list.append(22 - row.name.size(), ' ');
    list += concat({row.isExtra ? "extra  " : "       ", row.summary, "\n"});
  }
  console.printOutput(list);
  return 0;
}

std::optional<int> setAll(const std::string&, Console&, CheckOptions& options) {
  options.levels.isOn = CheckLevels().isOn;
  return std::nullopt;
}

std::optional<int> setExtra(const std::string&, Console&, CheckOptions& options) {
  options.levels.isOn.fill(true);
  return std::nullopt;
}

// The check's place in the table; prints that there is none, and the size of the table then.
size_t findCheck(const std::string& name, Console& console) {
  const auto hasName = [&name](const CheckRow& row) { return row.name == name; };
  const auto row = std::find_if(checkRows.begin(), checkRows.end(), hasName);
  if (row == checkRows.end()) console.printError(concat({"kiln-check: unknown check '", name, "'\n"}));
  return static_cast<size_t>(row - checkRows.begin());
}

std::optional<int> switchOff(const std::string& name, Console& console, CheckOptions& options) {
  const size_t check = findCheck(name, console);
  if (check == checkRows.size()) return failure;
  options.levels.isOn[check] = false;
  return std::nullopt;
}

std::optional<int> makeError(const std::string& name, Console& console, CheckOptions& options) {
  const size_t check = findCheck(name, console);
  if (check == checkRows.size()) return failure;
  options.levels.isOn[check] = options.levels.isError[check] = true;
  return std::nullopt;
}

std::optional<int> switchOn(const std::string& name, Console& console, CheckOptions& options) {
  const size_t check = findCheck(name, console);
  if (check == checkRows.size()) return failure;
  options.levels.isOn[check] = true;
  return std::nullopt;
}

template <ReportFormat format>
std::optional<int> setReport(const std::string&, Console&, CheckOptions& options) {
  options.report = format;
  return std::nullopt;
}

template <auto field>
std::optional<int> setPath(const std::string& path, Console&, CheckOptions& options) {
  options.*field = path;
  return std::nullopt;
}

std::optional<int> addLabels(const std::string& value, Console& console, CheckOptions& options) {
  const size_t colon = value.find(':');
  const std::string format = value.substr(0, colon);
  const bool isKnown = format == "vice" || format == "mads" || format == "json";
  if (colon == std::string::npos || !isKnown) {
    console.printError("kiln-check: --labels expects vice, mads or json, a colon and a file\n");
    return failure;
  }
  options.labels.push_back({format, value.substr(colon + 1)});
  return std::nullopt;
}

std::optional<int> setMap(const std::string& path, Console& console, CheckOptions& options) {
  if (!endsWithIgnoringCase(path, ".txt") && !endsWithIgnoringCase(path, ".svg")) {
    console.printError("kiln-check: --map expects a file whose name ends in .txt or .svg\n");
    return failure;
  }
  options.map = path;
  return std::nullopt;
}

constexpr OptionRow<CheckOptions> rows[] = {
    {"-h", OptionValue::None, printUsage},
    {"-v", OptionValue::None, printVersion},
    {"--version", OptionValue::None, printVersion},
    {"--list-checks", OptionValue::None, listChecks},
    {"--json", OptionValue::None, setReport<ReportFormat::Json>},
    {"--sarif", OptionValue::None, setReport<ReportFormat::Sarif>},
    {"--labels=", OptionValue::Joined, addLabels},
    {"--depfile=", OptionValue::Joined, setPath<&CheckOptions::depfile>},
    {"--listing=", OptionValue::Joined, setPath<&CheckOptions::listing>},
    {"--map=", OptionValue::Joined, setMap},
    {"-Wall", OptionValue::None, setAll},
    {"-Wextra", OptionValue::None, setExtra},
    {"-Wno-", OptionValue::Joined, switchOff},
    {"-Werror=", OptionValue::Joined, makeError},
    {"-W", OptionValue::Joined, switchOn},
};

}  // namespace

std::span<const OptionRow<CheckOptions>> checkOptionRows() { return rows; }

std::optional<int> scanCheckArguments(std::span<const std::string> arguments, Console& console, CheckOptions& options) {
  options.assembler.program = "kiln-check";
  ArgumentReader reader(arguments);
  while (!reader.atEnd()) {
    std::optional<int> status;
    if (reader.takeOption(checkOptionRows(), console, options, status)) {
      if (status.has_value()) return status;
      continue;
    }
    if (takeArgument(reader, console, options.assembler).has_value()) return failure;
  }
  return std::nullopt;
}

}  // namespace kiln

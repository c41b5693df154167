#include "driver/options.h"

#include <algorithm>
#include <array>

#include "base/arithmetic.h"
#include "base/format.h"
#include "base/hex.h"
#include "base/text.h"
#include "base/version.h"

namespace kiln {
namespace {

constexpr std::array<OptionRow, 20> rows = {{
    {"-h", false, OptionId::Help},
    {"-v", false, OptionId::Version},
    {"--version", false, OptionId::Version},
    {"-V", false, OptionId::Verbose},
    {"-b", false, OptionId::Banked},
    {"--split-bank", false, OptionId::LongSplit},
    {"--data-window", true, OptionId::SplitDataWindow},
    {"-L", true, OptionId::Layout},
    {"-f", true, OptionId::Format},
    {"-s", true, OptionId::SymbolFile},
    {"-o", true, OptionId::Output},
    {"-l", true, OptionId::Listing},
    {"-I", true, OptionId::IncludePath},
    {"-D", false, OptionId::Define},  // joined to its value, or before it
    {"-e", true, OptionId::Entry},
    {"-split-bank", false, OptionId::ShortSplit},
    {"-code-window", true, OptionId::CodeWindow},
    {"-data-window", true, OptionId::DataWindow},
    {"-code-reg", true, OptionId::CodeRegister},
    {"-data-reg", true, OptionId::DataRegister},
}};

// The options that serve the toolchain alone are left out.
constexpr std::string_view usage = R"(kiln-as — 6502 assembler
Usage: kiln-as [options] <input.asm ...>
Options:
  -D name[=value]  Define a symbol
  -f <which>       Output format: xex (default), prg
  -I path          Add include search path
  -o path          Output file (default: input stem + .xex)
  -l path          Output listing file
  -b               Enable banked output mode (for tarn bank-switched targets)
  --split-bank     pell Option B: segments at $6000-$7FFF get $83-only preloads,
                   segments at $4000-$5FFF get $82-only preloads. Requires -b.
  --data-window START:END  Data-window bounds for --split-bank (hex, e.g. $6000:$7FFF).
  -L <layout.lnk>  Read banking windows + bank registers from a layout file
                   (the same .lnk the tarn driver uses). Enables banked output
                   when the layout declares a [banking] section.
  -s path          Load platform symbol file (.sym)
  -v, --version    Print version
  -V               Verbose (show all warnings)
  -h               Show this help

The output format is auto-detected from the -o extension (.prg = PRG,
anything else = XEX), or set explicitly with -f.
)";

bool matches(const OptionRow& row, std::string_view argument, bool isLast) {
  if (row.id == OptionId::Define) return argument.substr(0, row.spelling.size()) == row.spelling;
  return argument == row.spelling && !(row.takesValue && isLast);
}

// Hexadecimal digits up to the first character that is none; 0 without any. Blanks around and one "$" are allowed.
uint32_t parseLooseHex(std::string_view text) {
  text = trim(text);
  if (text.starts_with('$')) text.remove_prefix(1);
  return static_cast<uint32_t>(takeHex(text));
}

// START-END; without a "-" the window stays as it was.
void parseLooseWindow(std::string_view text, Window& window) {
  const size_t dash = text.find('-');
  if (dash == std::string_view::npos) return;
  window = {parseLooseHex(text.substr(0, dash)), parseLooseHex(text.substr(dash + 1))};
}

std::string_view withoutHexPrefix(std::string_view text) {
  if (text.substr(0, 1) == "$") return text.substr(1);
  if (startsWithIgnoringCase(text, "0x")) return text.substr(2);
  return text;
}

// Hexadecimal digits and nothing else but blanks after them; cut to 16 bits.
std::optional<uint32_t> parseStrictHex(std::string_view text) {
  text = trimRight(text);
  if (text.empty()) return std::nullopt;
  const uint64_t value = takeHex(text);
  return text.empty() ? std::optional(static_cast<uint32_t>(value & 0xFFFF)) : std::nullopt;
}

bool parseSplitDataWindow(std::string_view text, Console& console, Window& window) {
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos || text.find(':', colon + 1) != std::string_view::npos) {
    console.printError("kiln-as: --data-window expects START:END\n");
    return false;
  }
  const std::string_view parts[2] = {withoutHexPrefix(text.substr(0, colon)), withoutHexPrefix(text.substr(colon + 1))};
  uint32_t values[2] = {};
  for (int i = 0; i < 2; ++i) {
    if (const std::optional<uint32_t> value = parseStrictHex(parts[i])) {
      values[i] = *value;
      continue;
    }
    console.printError(concat({"kiln-as: --data-window bad hex '", parts[i], "'\n"}));
    return false;
  }
  window = {values[0], values[1]};
  return true;
}

void addDefine(std::string_view text, Options& options) {
  const size_t equals = text.find('=');
  const std::string_view value = equals == std::string_view::npos ? "1" : text.substr(equals + 1);
  options.defines.emplace_back(text.substr(0, equals), value);
}

// Takes one option up; `value` is the argument behind it, empty when it takes none.
std::optional<int> apply(OptionId id, const std::string& value, Console& console, Options& options) {
  switch (id) {
    case OptionId::Help:
      console.printError(usage);
      return 0;
    case OptionId::Version:
      console.printOutput(concat({"kiln-as ", version, "\n"}));
      return 0;
    case OptionId::Verbose:
      options.verbose = true;
      break;
    case OptionId::Banked:
      options.banked = true;
      break;
    case OptionId::LongSplit:
      options.longSplit = true;
      break;
    case OptionId::SplitDataWindow:
      if (!parseSplitDataWindow(value, console, options.splitDataWindow)) return 1;
      break;
    case OptionId::Layout:
      options.layout = value;
      break;
    case OptionId::Format:
      options.format = toLower(value);
      break;
    case OptionId::SymbolFile:
      options.symbolFile = value;
      break;
    case OptionId::Output:
      options.output = value;
      break;
    case OptionId::Listing:
      options.listing = value;
      break;
    case OptionId::IncludePath:
      options.includePaths.push_back(value);
      break;
    case OptionId::Define:
      addDefine(value, options);
      break;
    case OptionId::Entry:
      options.entry = value;
      break;
    case OptionId::ShortSplit:
      options.shortSplit = true;
      break;
    case OptionId::CodeWindow:
      parseLooseWindow(value, options.codeWindow);
      break;
    case OptionId::DataWindow:
      parseLooseWindow(value, options.dataWindow);
      break;
    case OptionId::CodeRegister:
      options.codeRegister = parseLooseHex(value);
      break;
    case OptionId::DataRegister:
      options.dataRegister = parseLooseHex(value);
      break;
  }
  return std::nullopt;
}

}  // namespace

std::span<const OptionRow> optionRows() { return rows; }

std::string_view usageText() { return usage; }

std::optional<int> scanArguments(std::span<const std::string> arguments, Console& console, Options& options) {
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& argument = arguments[i];
    const bool isLast = i + 1 == arguments.size();
    const auto isMatch = [&](const OptionRow& row) { return matches(row, argument, isLast); };
    const auto row = std::find_if(rows.begin(), rows.end(), isMatch);
    if (row == rows.end()) {
      if (argument.substr(0, 1) != "-") {
        options.inputs.push_back(argument);
        continue;
      }
      console.printError(concat({"kiln-as: unknown option '", argument, "'\n"}));
      return 1;
    }
    std::string value;
    if (row->id == OptionId::Define && argument.size() > row->spelling.size()) {
      value = argument.substr(row->spelling.size());
    } else if ((row->takesValue || row->id == OptionId::Define) && !isLast) {
      value = arguments[++i];
    }
    if (const std::optional<int> status = apply(row->id, value, console, options)) return status;
  }
  return std::nullopt;
}

}  // namespace kiln

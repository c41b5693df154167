#include "driver/options.h"

#include "base/format.h"
#include "base/hex.h"
#include "base/text.h"
#include "base/version.h"

namespace kiln {
namespace {

// Without the options that only the toolchain uses.
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

// Hexadecimal digits up to the first other character; 0 without any. One "$" and blanks may precede them.
uint32_t parseLooseHex(std::string_view text) {
  text = trim(text);
  if (text.starts_with('$')) text.remove_prefix(1);
  return static_cast<uint32_t>(takeHex(text));
}

std::string_view withoutHexPrefix(std::string_view text) {
  if (text.starts_with('$')) return text.substr(1);
  return startsWithIgnoringCase(text, "0x") ? text.substr(2) : text;
}

// Hexadecimal digits and nothing else but blanks after them; cut to 16 bits.
std::optional<uint32_t> parseStrictHex(std::string_view text) {
  text = trimRight(text);
  if (text.empty()) return std::nullopt;
  const uint64_t value = takeHex(text);
  return text.empty() ? std::optional(static_cast<uint32_t>(value & 0xFFFF)) : std::nullopt;
}

void setField(bool& flag, const std::string&) { flag = true; }

void setField(uint32_t& number, const std::string& value) { number = parseLooseHex(value); }

void setField(std::optional<std::string>& text, const std::string& value) { text = value; }

void setField(std::vector<std::string>& texts, const std::string& value) { texts.push_back(value); }

void setField(std::optional<Format>& format, const std::string& value) {
  format = equalIgnoringCase(value, "prg") ? Format::Prg : Format::Xex;
}

// START-END; a value without "-" changes nothing.
void setField(Window& window, const std::string& value) {
  const std::string_view text = value;
  const size_t dash = text.find('-');
  if (dash == std::string_view::npos) return;
  window = {parseLooseHex(text.substr(0, dash)), parseLooseHex(text.substr(dash + 1))};
}

void setField(std::vector<Definition>& definitions, const std::string& value) {
  const size_t equals = value.find('=');
  definitions.push_back({value.substr(0, equals), equals == std::string::npos ? "1" : value.substr(equals + 1)});
}

template <auto field>
std::optional<int> set(const std::string& value, Console&, Options& options) {
  setField(options.*field, value);
  return std::nullopt;
}

std::optional<int> printUsage(const std::string&, Console& console, Options&) {
  console.printError(usage);
  return 0;
}

std::optional<int> printVersion(const std::string&, Console& console, Options&) {
  console.printOutput(concat({"kiln-as ", version, "\n"}));
  return 0;
}

std::optional<int> setSplitDataWindow(const std::string& value, Console& console, Options& options) {
  const std::string_view text = value;
  const size_t colon = text.find(':');
  if (colon == std::string_view::npos || text.find(':', colon + 1) != std::string_view::npos) {
    console.printError(concat({options.program, ": --data-window expects START:END\n"}));
    return 1;
  }
  const std::string_view start = withoutHexPrefix(text.substr(0, colon));
  const std::string_view end = withoutHexPrefix(text.substr(colon + 1));
  const std::optional<uint32_t> startAddress = parseStrictHex(start);
  const std::optional<uint32_t> endAddress = parseStrictHex(end);
  if (!startAddress.has_value() || !endAddress.has_value()) {
    console.printError(
        concat({options.program, ": --data-window bad hex '", startAddress.has_value() ? end : start, "'\n"}));
    return 1;
  }
  options.splitDataWindow = {*startAddress, *endAddress};
  return std::nullopt;
}

constexpr OptionRow<Options> rows[] = {
    {"-h", OptionValue::None, printUsage},
    {"-v", OptionValue::None, printVersion},
    {"--version", OptionValue::None, printVersion},
    {"-V", OptionValue::None, set<&Options::verbose>},
    {"-b", OptionValue::None, set<&Options::banked>},
    {"--split-bank", OptionValue::None, set<&Options::longSplit>},
    {"--data-window", OptionValue::Next, setSplitDataWindow},
    {"-L", OptionValue::Next, set<&Options::layout>},
    {"-f", OptionValue::Next, set<&Options::format>},
    {"-s", OptionValue::Next, set<&Options::symbolFile>},
    {"-o", OptionValue::Next, set<&Options::output>},
    {"-l", OptionValue::Next, set<&Options::listing>},
    {"-I", OptionValue::Next, set<&Options::includePaths>},
    {"-D", OptionValue::JoinedOrNext, set<&Options::defines>},
    {"-e", OptionValue::Next, set<&Options::entry>},
    {"-split-bank", OptionValue::None, set<&Options::shortSplit>},
    {"-code-window", OptionValue::Next, set<&Options::codeWindow>},
    {"-data-window", OptionValue::Next, set<&Options::dataWindow>},
    {"-code-reg", OptionValue::Next, set<&Options::codeRegister>},
    {"-data-reg", OptionValue::Next, set<&Options::dataRegister>},
};

}  // namespace

std::span<const OptionRow<Options>> optionRows() { return rows; }

std::string_view usageText() { return usage; }

bool ArgumentReader::matches(std::string_view spelling, OptionValue value) const {
  const bool isJoined = value == OptionValue::Joined || value == OptionValue::JoinedOrNext;
  if (isJoined) return argument().starts_with(spelling);
  const bool isLast = next_ + 1 == arguments_.size();
  return argument() == spelling && !(value == OptionValue::Next && isLast);
}

std::string ArgumentReader::takeValue(std::string_view spelling, OptionValue value) {
  const std::string& option = arguments_[next_++];
  if (option.size() > spelling.size()) return option.substr(spelling.size());
  const bool isNext = value == OptionValue::Next || value == OptionValue::JoinedOrNext;
  return isNext && !atEnd() ? arguments_[next_++] : "";
}

std::optional<int> takeArgument(ArgumentReader& arguments, Console& console, Options& options) {
  std::optional<int> status;
  if (arguments.takeOption(optionRows(), console, options, status)) return status;
  if (arguments.argument().starts_with('-')) {
    console.printError(concat({options.program, ": unknown option '", arguments.argument(), "'\n"}));
    return 1;
  }
  options.inputs.push_back(arguments.argument());
  arguments.skip();
  return std::nullopt;
}

std::optional<int> scanArguments(std::span<const std::string> arguments, Console& console, Options& options) {
  ArgumentReader reader(arguments);
  while (!reader.atEnd()) {
    if (const std::optional<int> status = takeArgument(reader, console, options)) return status;
  }
  return std::nullopt;
}

}  // namespace kiln

// A whole run in memory. The head of the packed input is the command line, one argument per line; see packed_input.h.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "check.h"
#include "driver/options.h"
#include "driver/run.h"
#include "inspect/check_options.h"
#include "inspect/checker.h"
#include "memory_budget.h"
#include "packed_input.h"

namespace kiln::fuzz {
namespace {

constexpr size_t budget = 8 << 20;
constexpr const char* programPath = "tools/kiln-as";

// Output is stored outside the budget, and files are kept in the order written.
class FuzzHost final : public test::MemoryHost {
 public:
  bool writeFile(const std::string& path, std::span<const std::string_view> parts) override {
    require(!wasRead(path), "a file that was read is overwritten");
    const BudgetPause pause;
    if (path.ends_with('/') || !MemoryHost::writeFile(path, parts)) return false;
    inOrder.emplace_back(path, std::move(written[path]));
    return true;
  }
  void printError(std::string_view text) override {
    const BudgetPause pause;
    MemoryHost::printError(text);
  }
  void printOutput(std::string_view text) override {
    const BudgetPause pause;
    MemoryHost::printOutput(text);
  }

  std::vector<std::pair<std::string, std::string>> inOrder;  // path and content of each file written
};

struct Outcome {
  std::vector<std::string> arguments;
  int status;
  bool memoryFailed;
  std::string standardError;
  std::string standardOutput;
  std::vector<std::pair<std::string, std::string>> written;

  bool operator==(const Outcome&) const = default;
};

std::vector<std::string> splitArguments(std::string_view head) {
  std::vector<std::string> arguments = {programPath};
  if (head.empty()) return arguments;
  if (head.ends_with('\n')) head.remove_suffix(1);
  Fields lines(head, '\n');
  std::string_view line;
  while (lines.next(line))
    arguments.emplace_back(line);
  return arguments;
}

// How lines are handed to the program. Long ones do not fit the blocks in which short lines are looked at.
enum class Lines : uint8_t { AsTheyAre, Long };

// Adds blanks to the end of each line that is not empty. They mean nothing, except in a listing.
std::string lengthened(std::string_view text) {
  std::string result;
  Fields lines(text, '\n');
  std::string_view line;
  while (lines.next(line))
    result.append(line).append(line.empty() ? 0 : 70, ' ').append("\n");
  result.pop_back();
  return result;
}

Outcome runOnce(std::string_view input, Lines lines = Lines::AsTheyAre) {
  FuzzHost host;
  const std::vector<std::string> arguments = splitArguments(unpack(input, host));
  for (auto& [path, text] : host.files) {
    if (lines == Lines::Long) text = lengthened(text);
  }
  const MemoryBudget limit(budget);
  const int status = run(host, arguments);
  const bool memoryFailed = limit.wasExceeded();
  const BudgetPause pause;
  return {arguments, status, memoryFailed, host.standardError, host.standardOutput, host.inOrder};
}

// Checks that every line starts with the program's name, that errors follow warnings, and that warnings that name their
// line are in the order of the source. The usage text may come last.
void checkMessages(std::string_view messages) {
  constexpr std::string_view warning = "kiln-as: warning: ";
  constexpr std::string_view located = "kiln-as: warning: line ";
  if (messages.ends_with(usageText())) messages.remove_suffix(usageText().size());
  require(messages.empty() || messages.ends_with('\n'), "an unfinished line on standard error");
  bool hadError = false;
  uint64_t previousLine = 0;
  while (!messages.empty()) {
    const std::string_view message = messages.substr(0, messages.find('\n') + 1);
    messages.remove_prefix(message.size());
    require(message.starts_with("kiln-as: "), "a line on standard error without the program's name");
    require(!hadError || !message.starts_with(warning), "a warning after an error");
    hadError = hadError || message.starts_with("kiln-as: error: ");
    if (!message.starts_with(located)) continue;
    const uint64_t line = std::stoull(std::string(message.substr(located.size())));
    require(line >= previousLine, "a warning for a line before that of the previous warning");
    previousLine = line;
  }
}

// The number of bytes in the program, as printed in the summary.
uint64_t summarySize(const std::string& messages, const std::string& outputPath) {
  const std::string before = "' -> '" + outputPath + "' (";
  const size_t at = messages.rfind(before);
  require(at != std::string::npos, "no summary for the file written");
  require(messages.ends_with(" segment)\n") || messages.ends_with(" segments)\n"), "the summary is not the last line");
  return std::stoull(messages.substr(at + before.size()));
}

struct LoadFile {
  uint64_t loadedBytes = 0;   // by all records, including the run address
  bool hasInitCalls = false;  // some of the bytes may be routines that the writer has added
};

uint32_t wordAt(std::string_view bytes, size_t at) {
  return static_cast<uint8_t>(bytes[at]) | static_cast<uint32_t>(static_cast<uint8_t>(bytes[at + 1])) << 8;
}

// Reads a binary-load file: a marker, then records of first address, last address and bytes, the run address last.
LoadFile readLoadFile(std::string_view file) {
  require(file.starts_with("\xFF\xFF"), "a load file without its marker");
  file.remove_prefix(2);
  LoadFile result;
  uint32_t address = 0;
  while (!file.empty()) {
    require(file.size() > 4, "a load file that ends within a header");
    address = wordAt(file, 0);
    const size_t size = ((wordAt(file, 2) - address) & 0xFFFF) + 1;
    require(size <= file.size() - 4, "a load file that ends within a record");
    result.loadedBytes += size;
    result.hasInitCalls = result.hasInitCalls || address == 0x02E2;
    file.remove_prefix(4 + size);
  }
  require(address == 0x02E0, "a load file that does not end with the run address");
  return result;
}

// Checks the file of a program of `size` bytes.
void checkLoadFile(std::string_view file, uint64_t size, bool leavesOutSegments) {
  // A segment of more than 64 KB has a header that cannot hold its length.
  if (size > 0x10000) return;
  const LoadFile loaded = readLoadFile(file);
  if (leavesOutSegments) return;
  const uint64_t expected = size + 2;
  require(loaded.loadedBytes >= expected, "bytes of the program are missing in the load file");
  require(loaded.loadedBytes == expected || loaded.hasInitCalls, "the load file has more bytes than the program");
}

void checkListing(std::string_view listing) {
  constexpr size_t prefixWidth = 21;
  require(listing.empty() || listing.ends_with('\n'), "an unfinished line in the listing");
  while (!listing.empty()) {
    const size_t width = listing.find('\n');
    require(width >= prefixWidth, "a listing line without its columns");
    listing.remove_prefix(width + 1);
  }
}

void checkOutput(const Outcome& outcome) {
  const auto& [path, image] = outcome.written.front();
  const uint64_t size = summarySize(outcome.standardError, path);
  const bool leavesOutSegments = outcome.standardError.find("cloaked segments are only supported") != std::string::npos;
  const bool maybePrg = std::any_of(outcome.arguments.begin(), outcome.arguments.end(),
                                    [](const std::string& argument) { return endsWithIgnoringCase(argument, "prg"); });
  require(image.size() >= size + 2 || leavesOutSegments, "an output file shorter than its program");
  if (!maybePrg) checkLoadFile(image, size, leavesOutSegments);
  require(outcome.written.size() <= 2, "more files than the output and the listing");
  if (outcome.written.size() == 2) checkListing(outcome.written.back().second);
}

void checkFailure(std::string_view input, const Outcome& outcome) {
  require(!outcome.standardError.empty(), "a failure without a message");
  require(outcome.written.empty(), "a failed run that has written a file");
  // More than 2 GB of ".space" is refused with the same message.
  const bool isOutOfMemory = outcome.standardError.ends_with("error: out of memory\n");
  const bool hasSpace = toLower(input).find("space") != std::string::npos;
  require(!isOutOfMemory || outcome.memoryFailed || hasSpace, "out of memory within the budget");
}

void checkLongLines(std::string_view input, const Outcome& outcome) {
  const Outcome other = runOnce(input, Lines::Long);
  if (outcome.memoryFailed || other.memoryFailed) return;
  require(outcome.standardError == other.standardError, "other messages for longer lines");
  require(outcome.written.empty() || outcome.written.front() == other.written.front(), "another image");
}

std::string_view lineOf(std::string_view text, uint32_t number) {
  Fields lines(text, '\n');
  std::string_view line;
  for (uint32_t i = 0; i < number; ++i)
    require(lines.next(line), "a place in a line that does not exist");
  return line;
}

void checkPlace(const Place& place, const FuzzHost& host) {
  if (place.line == 0) return;
  const auto file = host.files.find(place.file->path);
  require(file != host.files.end(), "a place in a file that does not exist");
  const size_t size = lineOf(file->second, place.line).size();
  require(place.column >= 1 && place.column <= place.endColumn, "a place that ends before it begins");
  require(place.endColumn <= size + 1, "a place that ends after its line");
}

// kiln-check on the same command line: findings are in lines that exist, and it assembles what kiln-as assembles.
void checkFindings(std::string_view input, const Outcome& outcome) {
  FuzzHost host;
  const std::vector<std::string> arguments = splitArguments(unpack(input, host));
  CheckOptions options;
  options.levels.isOn.fill(true);
  if (scanCheckArguments(std::span(arguments).subspan(1), host, options).has_value()) return;
  if (options.assembler.inputs.empty()) return;
  const std::unique_ptr<Program> program = assembleProgram(host, arguments, options.assembler);
  require(program->isAssembled || outcome.status == 1, "kiln-check does not assemble what kiln-as does");
  if (!program->error.empty()) return;
  for (const Finding& finding : checkProgram(*program, options.levels)) {
    checkPlace(finding.place, host);
    for (const Note& note : finding.notes)
      checkPlace(note.place, host);
    for (const Edit& edit : finding.fix)
      checkPlace(edit.place, host);
  }
}

void checkRun(std::string_view input) {
  const Outcome outcome = runOnce(input);
  // kiln-check says itself that memory is exhausted, above the functions that are called here.
  const bool needsMuch = outcome.memoryFailed || outcome.standardError.ends_with("out of memory\n");
  if (input.size() % 4 == 2 && !needsMuch) checkFindings(input, outcome);
  // Only some inputs are run twice, to save time.
  if (input.size() % 4 == 0) require(outcome == runOnce(input), "the same run has another outcome");
  // A colon at the end of a line, which a macro may put there, separates statements only when blanks follow it.
  const bool mayEndInColon =
      input.find(" :") != std::string_view::npos || toLower(input).find(".macro") != std::string::npos;
  if (input.size() % 4 == 1 && !mayEndInColon) checkLongLines(input, outcome);
  require(outcome.status == 0 || outcome.status == 1, "an undefined exit status");
  checkMessages(outcome.standardError);
  if (outcome.status == 1) {
    checkFailure(input, outcome);
  } else if (outcome.written.empty()) {
    require(outcome.standardError == usageText() || outcome.standardOutput.starts_with("kiln-as "),
            "a success without a file");
  } else {
    checkOutput(outcome);
  }
}

}  // namespace
}  // namespace kiln::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kiln::fuzz::checkRun({reinterpret_cast<const char*>(data), size});
  return 0;
}

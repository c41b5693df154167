// A whole run in memory. The head of the packed input is the command line, an argument a line; its texts are the files,
// and, under names that begin with "$", the environment's variables.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "check.h"
#include "driver/options.h"
#include "driver/run.h"
#include "host/host.h"
#include "load_file.h"
#include "memory_budget.h"
#include "packed_input.h"

namespace kiln::fuzz {
namespace {

constexpr size_t budget = 8 << 20;
constexpr const char* programPath = "tools/kiln-as";

// A file system without room for surprises: a path is a file when the input has a text of that name, and a directory
// when the name of a text begins with it and a "/".
class PackedHost final : public Host {
 public:
  explicit PackedHost(const PackedInput& packed) : packed_(packed) {}

  std::optional<std::string> readFile(const std::string& path) const override {
    const std::string_view* const text = find(path);
    if (text == nullptr) return std::nullopt;
    noteRead(path);
    return std::string(*text);
  }
  bool exists(const std::string& path) const override { return find(path) != nullptr || isDirectory(path); }
  bool isDirectory(const std::string& path) const override {
    return std::any_of(packed_.texts.begin(), packed_.texts.end(), [&](const auto& text) {
      return text.first.starts_with(path) && text.first.substr(path.size()).starts_with('/');
    });
  }
  bool wasRead(const std::string& path) const override { return read_.count(path) != 0; }
  bool writeFile(const std::string& path, std::span<const std::string_view> parts) override {
    require(!wasRead(path), "a file that was read is overwritten");
    if (path.empty() || path.back() == '/' || isDirectory(path)) return false;
    const BudgetPause pause;
    std::string& bytes = written.emplace_back(path, "").second;
    for (std::string_view part : parts)
      bytes += part;
    return true;
  }
  std::optional<std::vector<std::string>> listDirectory(const std::string& path) const override {
    std::vector<std::string> names;
    for (const auto& [name, text] : packed_.texts) {
      if (!name.starts_with(path) || !name.substr(path.size()).starts_with('/')) continue;
      const std::string_view below = name.substr(path.size() + 1);
      names.emplace_back(below.substr(0, below.find('/')));
    }
    if (names.empty()) return std::nullopt;
    return names;
  }
  std::optional<std::string> environment(const std::string& name) const override {
    const std::string_view* const text = find("$" + name);
    if (text == nullptr) return std::nullopt;
    return std::string(text->substr(0, text->size() - (text->ends_with('\n') ? 1 : 0)));
  }
  void printError(std::string_view text) override {
    const BudgetPause pause;
    standardError += text;
  }
  void printOutput(std::string_view text) override {
    const BudgetPause pause;
    standardOutput += text;
  }

  std::string standardError;
  std::string standardOutput;
  std::vector<std::pair<std::string, std::string>> written;  // in order

 private:
  const std::string_view* find(const std::string& path) const {
    const auto isNamed = [&path](const auto& text) { return text.first == path; };
    const auto text = std::find_if(packed_.texts.begin(), packed_.texts.end(), isNamed);
    return text == packed_.texts.end() ? nullptr : &text->second;
  }
  void noteRead(const std::string& path) const {
    const BudgetPause pause;
    read_.insert(path);
  }

  const PackedInput& packed_;
  mutable std::set<std::string> read_;
};

struct Outcome {
  int status;
  bool memoryFailed;
  std::string standardError;
  std::string standardOutput;
  std::vector<std::pair<std::string, std::string>> written;

  bool operator==(const Outcome&) const = default;
};

std::vector<std::string> argumentsOf(const PackedInput& packed) {
  std::string_view head = packed.head;
  std::vector<std::string> arguments = {programPath};
  if (head.empty()) return arguments;
  if (head.ends_with('\n')) head.remove_suffix(1);
  Fields lines(head, '\n');
  std::string_view line;
  while (lines.next(line))
    arguments.emplace_back(line);
  return arguments;
}

Outcome runOnce(const PackedInput& packed, const std::vector<std::string>& arguments) {
  PackedHost host(packed);
  const MemoryBudget limit(budget);
  const int status = run(host, arguments);
  const bool memoryFailed = limit.wasExceeded();
  const BudgetPause pause;
  return {status, memoryFailed, std::move(host.standardError), std::move(host.standardOutput), std::move(host.written)};
}

// Every line says whose it is, but for the usage.
void checkMessages(const std::string& standardError) {
  std::string_view rest = standardError;
  if (rest.ends_with(usageText())) rest.remove_suffix(usageText().size());
  require(rest.empty() || rest.ends_with('\n'), "an unfinished line on standard error");
  while (!rest.empty()) {
    require(rest.starts_with("kiln-as: "), "a line on standard error that does not begin with the program's name");
    rest.remove_prefix(rest.find('\n') + 1);
  }
}

// The number of bytes that the summary line states; absent when there is no such line.
std::optional<uint64_t> summarySize(const std::string& standardError, const std::string& outputPath) {
  if (standardError.empty()) return std::nullopt;
  const size_t previousEnd = standardError.rfind('\n', standardError.size() - 2);
  const std::string line = standardError.substr(previousEnd == std::string::npos ? 0 : previousEnd + 1);
  const std::string before = "' -> '" + outputPath + "' (";
  const size_t at = line.rfind(before);
  if (!line.starts_with("kiln-as: assembled '") || at == std::string::npos) return std::nullopt;
  if (!line.ends_with(" segment)\n") && !line.ends_with(" segments)\n")) return std::nullopt;
  return std::stoull(line.substr(at + before.size()));
}

// Only a file without a segment of more than 64 KB can be told into records: the headers have but 16 bits.
void checkLoadFile(std::string_view file, uint64_t size) {
  if (size > 0x10000) return;
  const std::optional<std::vector<LoadRecord>> records = parseLoadFile(file);
  require(records.has_value(), "the file is not made of whole records");
  require(!records->empty() && isRunAddress(records->back()), "the file does not end with the run address");
}

void checkListing(std::string_view listing) {
  constexpr size_t prefixWidth = 21;
  require(listing.empty() || listing.ends_with('\n'), "an unfinished line in the listing");
  Fields lines(listing, '\n');
  std::string_view line;
  while (lines.next(line) && line.data() != listing.data() + listing.size())
    require(line.size() >= prefixWidth, "a listing line without its columns");
}

void checkOutput(const std::vector<std::string>& arguments, const Outcome& outcome) {
  const auto& [path, image] = outcome.written.front();
  const std::optional<uint64_t> size = summarySize(outcome.standardError, path);
  require(size.has_value(), "no summary line for the file written");
  const bool saysPrg = std::any_of(arguments.begin(), arguments.end(),
                                   [](const std::string& argument) { return equalIgnoringCase(argument, "prg"); });
  if (saysPrg || endsWithIgnoringCase(path, ".PRG")) {
    require(image.size() > 2, "a program file without bytes");
  } else {
    checkLoadFile(image, *size);
  }
  if (outcome.written.size() == 1) return;
  require(outcome.written.size() == 2, "more files than the output and the listing");
  checkListing(outcome.written.back().second);
}

// More than 2 GB of it is refused with the words for a lack of memory.
bool asksForSpace(const PackedInput& packed) {
  return std::any_of(packed.texts.begin(), packed.texts.end(),
                     [](const auto& text) { return toLower(text.second).find("space") != std::string::npos; });
}

void checkRun(std::string_view input) {
  const PackedInput packed = unpack(input);
  const std::vector<std::string> arguments = argumentsOf(packed);
  const Outcome outcome = runOnce(packed, arguments);
  // Not for every input, for the time it takes.
  if (input.size() % 4 == 0) require(outcome == runOnce(packed, arguments), "the same run ends in another way");
  require(outcome.status == 0 || outcome.status == 1, "an exit status that does not exist");
  checkMessages(outcome.standardError);
  if (outcome.status == 1) {
    require(!outcome.standardError.empty(), "a failure without a word");
    require(outcome.written.empty(), "a failed run that has written a file");
    const bool isOutOfMemory = outcome.standardError.ends_with("error: out of memory\n");
    require(!isOutOfMemory || outcome.memoryFailed || asksForSpace(packed), "no lack of memory");
  } else if (outcome.written.empty()) {
    require(outcome.standardError == usageText() || outcome.standardOutput.starts_with("kiln-as "),
            "a success without a file");
  } else {
    checkOutput(arguments, outcome);
  }
}

}  // namespace
}  // namespace kiln::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  kiln::fuzz::checkRun({reinterpret_cast<const char*>(data), size});
  return 0;
}

#include "driver/run.h"

#include <array>
#include <new>
#include <optional>
#include <stdexcept>

#include "base/format.h"
#include "driver/load.h"
#include "driver/options.h"
#include "driver/output_file.h"
#include "output/listing.h"
#include "passes/pipeline.h"

namespace kiln {
namespace {

void printMessages(Console& console, const MessageList& messages) {
  for (const std::string& lines : messages.lines())
    console.printError(lines);
}

void printSummary(Console& console, const std::string& input, const std::string& output,
                  const std::vector<AsSegment>& segments) {
  size_t size = 0;
  for (const AsSegment& segment : segments)
    size += segment.bytes.size();
  console.printError(
      concat({"kiln-as: assembled '", input, "' -> '", output, "' (", decimal(static_cast<int64_t>(size)), " bytes, ",
              decimal(static_cast<int64_t>(segments.size())), segments.size() == 1 ? " segment)\n" : " segments)\n"}));
}

// Writes the output and the listing. Prints the path and returns false when the output cannot be written, or when
// either would replace a file that the run has read.
bool writeFiles(Host& host, const Options& options, const std::optional<std::string>& outputPath,
                const std::optional<Image>& image, Assembler& assembler) {
  const auto refuse = [&host](const std::string& path) {
    host.printError(concat({"kiln-as: error: cannot write '", path, "'\n"}));
    return false;
  };
  if (!outputPath.has_value() || !image.has_value()) return refuse(outputPath.value_or("(null)"));
  if (host.wasRead(*outputPath)) return refuse(*outputPath);
  if (options.listing.has_value() && host.wasRead(*options.listing)) return refuse(*options.listing);
  // The listing comes first: if it needs too much memory, nothing is written.
  Iteration& iteration = *assembler.iteration;
  const std::string listing = options.listing.has_value()
                                  ? renderListing(iteration.statements.lines, assembler.lines, iteration.evaluator)
                                  : "";
  if (!host.writeFile(*outputPath, image->parts())) return refuse(*outputPath);
  // The program is complete without its listing, so a failure here does not count.
  if (options.listing.has_value()) (void)host.writeFile(*options.listing, std::array{std::string_view(listing)});
  return true;
}

int assembleFiles(Host& host, std::span<const std::string> arguments) {
  Options options;
  const std::span<const std::string> afterProgram = arguments.subspan(arguments.empty() ? 0 : 1);
  if (const std::optional<int> status = scanArguments(afterProgram, host, options)) return *status;
  if (options.inputs.empty()) {
    host.printError(concat({"kiln-as: no input files\n", usageText()}));
    return 1;
  }
  Assembler assembler;
  const std::string error = load(host, arguments, options, assembler);
  if (!error.empty()) {
    host.printError(concat({"kiln-as: ", error, "\n"}));
    return 1;
  }
  const bool assembled = assemble(assembler);
  printMessages(host, assembler.diagnostics.warnings);
  if (!assembled) {
    printMessages(host, assembler.diagnostics.errors);
    return 1;
  }

  const std::optional<std::string> outputPath = chooseOutputPath(options);
  const std::optional<Image> image = buildImage(options, assembler, host);
  if (!writeFiles(host, options, outputPath, image, assembler)) return 1;
  printSummary(host, options.inputs.front(), *outputPath, assembler.segments);
  return 0;
}

}  // namespace

int run(Host& host, std::span<const std::string> arguments) {
  try {
    return assembleFiles(host, arguments);
  } catch (const std::bad_alloc&) {
    host.printError("kiln-as: error: out of memory\n");
  } catch (const std::length_error&) {
    host.printError("kiln-as: error: out of memory\n");
  }
  return 1;
}

}  // namespace kiln

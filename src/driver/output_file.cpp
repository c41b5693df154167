#include "driver/output_file.h"

#include "base/arithmetic.h"
#include "base/paths.h"
#include "base/text.h"
#include "output/banked.h"
#include "output/prg.h"
#include "output/xex.h"

namespace kiln {
namespace {

// The start address of a program without bytes.
constexpr uint32_t defaultRunAddress = 0x3400;

}  // namespace

std::optional<std::string> chooseOutputPath(const Options& options) {
  if (options.output.has_value()) return options.output;
  const std::string stem = pathStem(options.inputs.front());
  if (stem.size() == rootSize(stem)) return std::nullopt;
  return stem + (options.format == Format::Prg ? ".prg" : ".xex");
}

Format chooseFormat(const Options& options, const std::optional<std::string>& outputPath) {
  if (options.format.has_value()) return *options.format;
  const bool isPrg = outputPath.has_value() && equalIgnoringCase(pathExtension(*outputPath), "prg");
  return isPrg ? Format::Prg : Format::Xex;
}

uint32_t chooseRunAddress(const Options& options, const Assembler& assembler) {
  const Symbol* const entry = options.entry.has_value() ? assembler.iteration->symbols.find(*options.entry) : nullptr;
  if (entry != nullptr) return low16(entry->value);
  return assembler.segments.empty() ? defaultRunAddress : assembler.segments.front().start;
}

std::optional<Image> buildImage(const Options& options, const Assembler& assembler, Console& console) {
  const std::vector<AsSegment>& segments = assembler.segments;
  if (chooseFormat(options, chooseOutputPath(options)) == Format::Prg) return writePrg(segments);
  const uint32_t runAddress = chooseRunAddress(options, assembler);
  if (!options.banked) return writeXex(segments, assembler.shadowPlan, runAddress, console);
  return writeBanked(segments, assembler.shadowPlan, assembler.settings.banking, runAddress, console);
}

}  // namespace kiln

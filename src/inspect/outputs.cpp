#include "inspect/outputs.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include "base/format.h"
#include "base/text.h"
#include "driver/output_file.h"
#include "inspect/cycle_listing.h"
#include "inspect/depfile.h"
#include "inspect/labels.h"
#include "inspect/map_svg.h"
#include "inspect/map_text.h"
#include "inspect/memory_map.h"
#include "inspect/placements.h"

namespace kiln {
namespace {

struct OutputFile {
  std::string path;
  std::string text;
};

std::string renderMap(const Program& program, const Placements& placements, const std::string& path) {
  const MemoryMap map = mapMemory(program, placements);
  return endsWithIgnoringCase(path, ".svg") ? renderMapAsSvg(map) : renderMapAsText(map);
}

std::vector<OutputFile> renderAll(const Program& program, const CheckOptions& options) {
  std::vector<OutputFile> files;
  const Placements placements = placeStatements(program);
  if (!options.labels.empty()) {
    const std::vector<Label> labels = listLabels(program, placements);
    for (const auto& [format, path] : options.labels)
      files.push_back({path, renderLabels(labels, format)});
  }
  if (options.listing.has_value()) files.push_back({*options.listing, renderCycleListing(program, placements)});
  if (options.map.has_value()) files.push_back({*options.map, renderMap(program, placements, *options.map)});
  return files;
}

std::string cannotWrite(const std::string& path) { return concat({"cannot write '", path, "'"}); }

// Appends the rule for the program's file. The result is empty, or says why there is none.
std::string addDepfile(const CheckOptions& options, std::span<const std::string> inputs,
                       std::vector<OutputFile>& files) {
  const std::optional<std::string> output = chooseOutputPath(options.assembler);
  if (!output.has_value()) return cannotWrite(*options.depfile) + ": the program's file has no name";
  const auto odd = std::find_if_not(inputs.begin(), inputs.end(), canBeInRule);
  if (odd != inputs.end() || !canBeInRule(*output)) {
    return concat({cannotWrite(*options.depfile), ": no rule can name '", odd == inputs.end() ? *output : *odd, "'"});
  }
  files.push_back({*options.depfile, renderDepfile(*output, inputs)});
  return "";
}

}  // namespace

std::string writeOutputs(Host& host, const Program& program, const CheckOptions& options,
                         std::span<const std::string> pathsRead) {
  const bool hasOthers = !options.labels.empty() || options.listing.has_value() || options.map.has_value();
  std::vector<OutputFile> files = hasOthers ? renderAll(program, options) : std::vector<OutputFile>();
  if (options.depfile.has_value()) {
    std::string error = addDepfile(options, pathsRead, files);
    if (!error.empty()) return error;
  }
  // All are tested first: when one would replace a file that the run has read, none is written.
  for (const OutputFile& file : files) {
    if (host.wasRead(file.path)) return cannotWrite(file.path);
  }
  for (const OutputFile& file : files) {
    if (!host.writeFile(file.path, std::array{std::string_view(file.text)})) return cannotWrite(file.path);
  }
  return "";
}

}  // namespace kiln

#include "driver/load.h"

#include <utility>
#include <vector>

#include "base/format.h"
#include "driver/settings.h"
#include "source/preprocessor.h"

namespace kiln {
namespace {

// The inputs joined, with a line end after each.
struct JoinedInputs {
  std::string text;
  std::vector<size_t> sizes;  // of the inputs
  std::string error;          // why one cannot be read; empty when all can
};

JoinedInputs readInputs(const Host& host, const std::vector<std::string>& paths) {
  JoinedInputs joined;
  for (const std::string& path : paths) {
    TextFile file = readTextFile(host, path);
    if (!file.error.empty()) {
      joined.error = concat({"cannot read '", path, "': ", file.error});
      break;
    }
    joined.sizes.push_back(file.text.size());
    if (joined.text.empty()) {
      joined.text = std::move(file.text);
    } else {
      joined.text += file.text;
    }
    joined.text.push_back('\n');
  }
  return joined;
}

void noteInputs(std::string_view source, const std::vector<size_t>& sizes, const std::vector<std::string>& paths,
                SourceNotes& notes) {
  for (size_t i = 0; i < paths.size(); ++i) {
    notes.files.push_back({source.substr(0, sizes[i]), paths[i], {}});
    source.remove_prefix(sizes[i] + 1);
  }
}

}  // namespace

std::string load(const Host& host, std::span<const std::string> arguments, Options& options, Assembler& assembler) {
  JoinedInputs inputs = readInputs(host, options.inputs);
  if (!inputs.error.empty()) return inputs.error;
  assembler.diagnostics.mainSourcePath = options.inputs.front();
  const std::string layoutError = settle(host, arguments, options, assembler.settings);
  if (!layoutError.empty()) return concat({"cannot read layout '", *options.layout, "': ", layoutError});
  // The settings are fixed below this line.
  const std::string_view source = assembler.texts.own(std::move(inputs.text));
  if (assembler.notes != nullptr) noteInputs(source, inputs.sizes, options.inputs, *assembler.notes);
  Preprocessor preprocessor(host, options.includePaths, assembler.texts, assembler.diagnostics.errors, assembler.notes);
  assembler.lines = preprocessor.run(source, options.inputs.front());
  return "";
}

}  // namespace kiln

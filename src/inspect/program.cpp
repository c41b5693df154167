#include "inspect/program.h"

#include <utility>

#include "base/format.h"
#include "driver/load.h"
#include "driver/output_file.h"
#include "passes/pipeline.h"

namespace kiln {
namespace {

class MessageCollector final : public Console {
 public:
  explicit MessageCollector(std::vector<WriterMessage>& messages) : messages_(messages) {}

  void printError(std::string_view text) override { messages_.push_back({std::string(text), false}); }
  void printOutput(std::string_view) override {}

 private:
  std::vector<WriterMessage>& messages_;
};

// Why kiln-as cannot write the file, which it says in fewer words; empty when it can.
std::string whyNotWritable(const Host& host, const Options& options, bool hasImage) {
  const std::optional<std::string> path = chooseOutputPath(options);
  if (!path.has_value()) return "the output file has no name: give it one with -o";
  if (!hasImage) return concat({"cannot write '", *path, "': the program has no bytes"});
  if (host.wasRead(*path)) return concat({"cannot write '", *path, "': the program is made of this file"});
  if (!options.listing.has_value() || !host.wasRead(*options.listing)) return "";
  return concat({"cannot write the listing '", *options.listing, "': the program is made of this file"});
}

// Makes the file's bytes as kiln-as does, for the messages.
void tryToWrite(const Host& host, Program& program) {
  MessageCollector collector(program.writerMessages);
  const bool hasImage = buildImage(program.options, program.assembler, collector).has_value();
  // A writer that fails says so last, except the PRG writer, which says nothing.
  if (!hasImage && !program.writerMessages.empty()) {
    program.writerMessages.back().isError = true;
    return;
  }
  std::string reason = whyNotWritable(host, program.options, hasImage);
  program.isWritable = reason.empty();
  if (!program.isWritable) program.writerMessages.push_back({std::move(reason), true});
}

}  // namespace

std::string fileBytes(const Program& program) {
  if (!program.isAssembled) return "";
  std::vector<WriterMessage> known;  // they are in the program already
  MessageCollector console(known);
  const std::optional<Image> image = buildImage(program.options, program.assembler, console);
  std::string bytes;
  if (!image.has_value()) return bytes;
  bytes.reserve(image->size());
  for (std::string_view part : image->parts())
    bytes += part;
  return bytes;
}

std::unique_ptr<Program> assembleProgram(const Host& host, std::span<const std::string> arguments, Options options) {
  auto program = std::make_unique<Program>();
  program->options = std::move(options);
  program->files = &host;
  program->assembler.notes = &program->notes;
  program->error = load(host, arguments, program->options, program->assembler);
  if (program->error.empty()) program->isAssembled = assemble(program->assembler);
  if (program->isAssembled) tryToWrite(host, *program);
  program->map.emplace(program->notes);
  return program;
}

}  // namespace kiln

#include "inspect/program.h"

#include <utility>

#include "driver/load.h"
#include "passes/pipeline.h"

namespace kiln {

std::unique_ptr<Program> assembleProgram(const Host& host, std::span<const std::string> arguments, Options options) {
  auto program = std::make_unique<Program>();
  program->options = std::move(options);
  program->files = &host;
  program->assembler.notes = &program->notes;
  program->error = load(host, arguments, program->options, program->assembler);
  if (program->error.empty()) program->isAssembled = assemble(program->assembler);
  program->map.emplace(program->notes);
  return program;
}

}  // namespace kiln

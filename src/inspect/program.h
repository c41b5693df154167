// A program that has been assembled to be looked at.
#pragma once

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "driver/options.h"
#include "host/host.h"
#include "inspect/source_map.h"
#include "passes/assembler.h"

namespace kiln {

// What kiln-as prints when it makes the output file.
struct WriterMessage {
  std::string text;
  bool isError;
};

struct Program {
  Options options;
  Assembler assembler;
  SourceNotes notes;
  const FileReader* files = nullptr;  // what the files were read with; never null once assembled
  std::optional<SourceMap> map;       // of the notes, once they are complete
  std::string error;                  // what cannot be read and why; empty when all can
  bool isAssembled = false;           // without errors: the layout is final, and there are segments
  bool isWritable = false;            // kiln-as would write the output file
  std::vector<WriterMessage> writerMessages;

  // The last iteration; there is one unless something cannot be read.
  const Iteration& iteration() const { return *assembler.iteration; }
};

// Reads and assembles what the options name, as kiln-as does. `arguments` begins with the program's own path. The host
// has to outlive the checks.
std::unique_ptr<Program> assembleProgram(const Host& host, std::span<const std::string> arguments, Options options);

// The bytes of the program file. Empty when the program is not assembled, or its writer fails.
std::string fileBytes(const Program& program);

}  // namespace kiln

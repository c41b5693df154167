// The half of the module that knows sources: the language server, and a run of the assembler for the page's panes. The
// module has one instance for each worker, so its state needs no handle.
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "driver/output_file.h"
#include "inspect/bank_windows.h"
#include "inspect/cycle_listing.h"
#include "inspect/map_svg.h"
#include "inspect/map_text.h"
#include "inspect/memory_map.h"
#include "inspect/placements.h"
#include "inspect/program.h"
#include "inspect/project.h"
#include "library/memory_files.h"
#include "lsp/json.h"
#include "lsp/server.h"
#include "reply.h"

namespace kiln::playground {
namespace {

struct Editing {
  MemoryFiles disk;  // for layouts and symbol files: the page opens only sources as documents
  Server server{disk, ""};
  std::string output;
};

struct Assembling {
  MemoryFiles files;
  std::unique_ptr<Program> program;  // of the last run
  Placements placements;             // of a program that is assembled
  std::string summary;
  std::string image;
  std::string text;  // the listing or a map
};

Editing& editing() {
  static Editing state;
  return state;
}

Assembling& assembling() {
  static Assembling state;
  return state;
}

bool isAssembled() { return assembling().program != nullptr && assembling().program->isAssembled; }

// Empty, or why there is no program.
std::string assemble(std::string_view commandLine) {
  Assembling& state = assembling();
  state.program.reset();
  state.placements = {};
  state.files.begin();
  const std::vector<ProjectLine> lines = readProjectLines(commandLine);
  if (lines.empty()) return "no input files";
  Options options;
  std::string error = addProjectLine(lines.front(), "", options);
  if (!error.empty()) return error;
  const std::vector<std::string> programPath = {""};
  state.program = assembleProgram(state.files, programPath, std::move(options));
  if (isAssembled()) state.placements = placeStatements(*state.program);
  return state.program->error;
}

// The instructions in main memory: {"FILE": [LINE, ADDRESS, LINE, ADDRESS...]}. One that a macro makes is at its call.
Json listInstructions() {
  Json files = Json::object();
  const Program& program = *assembling().program;
  const std::vector<AsLine>& statements = program.iteration().statements.lines;
  LineReader lines(program.assembler.lines.pieces());
  std::string_view line;
  size_t next = 0;
  for (uint32_t number = 1; lines.next(line); ++number) {
    for (; next < statements.size() && statements[next].lineNumber == number; ++next) {
      const StatementPlace& at = assembling().placements.statements[next];
      if (statements[next].kind != Kind::Instruction || bankAt(assembling().placements, at) != nullptr) continue;
      const Place place = program.map->placeOf(program.map->originOf(line));
      if (place.line == 0) continue;
      Json& list = files[place.file->path];
      list.push_back(place.line);
      list.push_back(at.address);
    }
  }
  return files;
}

Json listWindows() {
  Json list = Json::array();
  for (const SwitchedWindow& window : switchedWindows(*assembling().program, assembling().placements)) {
    for (const uint32_t word : {window.range.first, window.range.last, window.lowRegister, window.highRegister})
      list.push_back(word);
  }
  return list;
}

Json summaryOf(const std::string& error) {
  Json summary = {{"error", error}, {"size", assembling().image.size()}};
  if (isAssembled()) {
    summary["instructions"] = listInstructions();
    summary["windows"] = listWindows();
  }
  if (assembling().program == nullptr) return summary;
  summary["name"] = chooseOutputPath(assembling().program->options).value_or("program.xex");
  return summary;
}

// Gives a text about the program; an empty one unless it is assembled, or when memory runs out.
template <typename Render>
Reply render(Render make) {
  Assembling& state = assembling();
  state.text.clear();
  try {
    if (isAssembled()) state.text = make(*state.program, state.placements);
  } catch (const std::exception&) {
    state.text.clear();
  }
  return Reply::of(state.text);
}

}  // namespace
}  // namespace kiln::playground

using namespace kiln;
using namespace kiln::playground;

extern "C" {

// Hands a message to the language server, which handles it in settleServer().
EMSCRIPTEN_KEEPALIVE void receiveMessage(const char* text, size_t size) { editing().server.receive({text, size}); }

// An array of the messages that the server sends.
EMSCRIPTEN_KEEPALIVE void settleServer(Reply* reply) {
  Editing& state = editing();
  while (state.server.handleNext()) {
  }
  state.server.settle();
  state.output = "[";
  for (const std::string& message : state.server.takeOutput()) {
    if (state.output.size() > 1) state.output += ',';
    state.output += message;
  }
  state.output += "]";
  *reply = Reply::of(state.output);
}

EMSCRIPTEN_KEEPALIVE void addFile(const char* path, size_t pathSize, const char* bytes, size_t size) {
  assembling().files.add({path, pathSize}, {bytes, size});
  editing().disk.add("/" + std::string(path, pathSize), {bytes, size});
}

EMSCRIPTEN_KEEPALIVE void removeFile(const char* path, size_t pathSize) {
  assembling().files.remove({path, pathSize});
  editing().disk.remove("/" + std::string(path, pathSize));
}

// Assembles with a command line. {"error", "size", "name", "instructions", "windows"}; size 0 without a program file.
EMSCRIPTEN_KEEPALIVE void assembleProgram(const char* commandLine, size_t size, Reply* reply) {
  Assembling& state = assembling();
  try {
    const std::string error = assemble({commandLine, size});
    state.image = isAssembled() && state.program->isWritable ? fileBytes(*state.program) : "";
    state.summary = dumpJson(summaryOf(error));
  } catch (const std::exception&) {
    state.program.reset();
    state.summary = R"({"error":"out of memory","size":0})";
  }
  *reply = Reply::of(state.summary);
}

EMSCRIPTEN_KEEPALIVE void programFile(Reply* reply) { *reply = Reply::of(assembling().image); }

EMSCRIPTEN_KEEPALIVE void cycleListing(Reply* reply) { *reply = render(renderCycleListing); }

EMSCRIPTEN_KEEPALIVE void mapPicture(Reply* reply) {
  *reply = render([](const Program& program, const Placements& placements) {
    return renderMapAsSvg(mapMemory(program, placements));
  });
}

EMSCRIPTEN_KEEPALIVE void mapText(Reply* reply) {
  *reply = render([](const Program& program, const Placements& placements) {
    return renderMapAsText(mapMemory(program, placements));
  });
}

}  // extern "C"

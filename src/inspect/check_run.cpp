#include "inspect/check_run.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <utility>

#include "base/format.h"
#include "inspect/check_options.h"
#include "inspect/checker.h"
#include "inspect/finding_printer.h"
#include "inspect/outputs.h"
#include "inspect/program.h"
#include "inspect/project.h"
#include "inspect/recording_host.h"

namespace kiln {
namespace {

constexpr int foundNothing = 0;
constexpr int foundSomething = 1;
constexpr int failure = 2;

int complain(Console& console, std::string_view text) {
  console.printError(concat({"kiln-check: ", text, "\n"}));
  return failure;
}

// By convention any value but an empty one refuses.
bool refusesColour(const Host& host) { return !host.environment("NO_COLOR").value_or("").empty(); }

// Checks one program, and prints its findings. `name` is empty, or says of which command line a complaint is.
int checkOne(Host& host, std::span<const std::string> arguments, const CheckOptions& options, const std::string& name,
             FindingPrinter& printer) {
  const RecordingHost reader(host);
  std::unique_ptr<Program> program = assembleProgram(reader, arguments, options.assembler);
  if (!program->error.empty()) return complain(host, concat({name, program->error}));
  std::vector<Finding> findings = checkProgram(*program, options.levels);
  const bool hasFindings = !findings.empty();
  printer.print(*program, std::move(findings));
  int status = hasFindings ? foundSomething : foundNothing;
  if (program->isAssembled) {
    const std::string error = writeOutputs(host, *program, options, reader.pathsRead());
    if (!error.empty()) status = complain(host, error);
  }
  if (!program->isWritable) status = failure;
  printer.keep(std::move(program));
  return status;
}

// The same for a line of ".kiln", after the options of the command line.
int checkLine(Host& host, std::span<const std::string> arguments, CheckOptions options, const std::string& projectPath,
              const ProjectLine& line, FindingPrinter& printer) {
  const std::string name = concat({projectPath, ":", decimal(line.number), ": "});
  const std::string error = addProjectLine(line, projectPath, options.assembler);
  if (!error.empty()) return complain(host, concat({name, error}));
  return checkOne(host, arguments, options, name, printer);
}

bool writesFiles(const CheckOptions& options) {
  return !options.labels.empty() || options.depfile.has_value() || options.listing.has_value() ||
         options.map.has_value();
}

int checkProject(Host& host, std::span<const std::string> arguments, const CheckOptions& options, bool inColour) {
  const std::optional<std::string> path = findProject(host, "");
  if (!path.has_value()) return complain(host, "no input files, and no .kiln in this folder or above");
  const std::optional<std::string> text = host.readFile(*path);
  if (!text.has_value()) return complain(host, concat({"cannot read '", *path, "'"}));
  const std::vector<ProjectLine> lines = readProjectLines(*text);
  if (lines.empty()) return complain(host, concat({"'", *path, "' has no program"}));
  if (lines.size() > 1 && writesFiles(options)) {
    return complain(host, concat({"'", *path, "' has ", decimal(static_cast<int64_t>(lines.size())),
                                  " programs: files can be written about one only"}));
  }
  FindingPrinter printer(host, options.report, inColour, lines.size() > 1);
  int status = foundNothing;
  for (const ProjectLine& line : lines)
    status = std::max(status, checkLine(host, arguments, options, *path, line, printer));
  printer.finish();
  return status;
}

int check(Host& host, std::span<const std::string> arguments, bool isTerminal) {
  CheckOptions options;
  const std::span<const std::string> afterProgram = arguments.subspan(arguments.empty() ? 0 : 1);
  if (const std::optional<int> status = scanCheckArguments(afterProgram, host, options)) return *status;
  const bool inColour = isTerminal && !refusesColour(host);
  if (options.assembler.inputs.empty()) return checkProject(host, arguments, options, inColour);
  FindingPrinter printer(host, options.report, inColour, false);
  const int status = checkOne(host, arguments, options, "", printer);
  printer.finish();
  return status;
}

}  // namespace

int runCheck(Host& host, std::span<const std::string> arguments, bool isTerminal) {
  try {
    return check(host, arguments, isTerminal);
  } catch (const std::bad_alloc&) {
    return complain(host, "out of memory");
  } catch (const std::length_error&) {
    return complain(host, "out of memory");
  }
}

}  // namespace kiln

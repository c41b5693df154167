#include "inspect/check_run.h"

#include <algorithm>
#include <new>
#include <stdexcept>

#include "base/format.h"
#include "inspect/check_options.h"
#include "inspect/checker.h"
#include "inspect/outputs.h"
#include "inspect/program.h"
#include "inspect/recording_host.h"
#include "inspect/report.h"

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

void print(Host& host, const std::vector<Finding>& findings, const Program& program, ReportFormat format,
           bool isTerminal) {
  if (format == ReportFormat::Sarif) return host.printOutput(renderSarif(findings, *program.map));
  // In parts, as a million findings make a text of hundreds of megabytes.
  constexpr size_t partSize = 1000;
  const bool inColour = isTerminal && !refusesColour(host);
  for (std::span<const Finding> rest = findings; !rest.empty();) {
    const std::span<const Finding> part = rest.first(std::min(partSize, rest.size()));
    host.printOutput(format == ReportFormat::Json ? renderJson(part) : renderText(part, *program.map, inColour));
    rest = rest.subspan(part.size());
  }
}

int check(Host& host, std::span<const std::string> arguments, bool isTerminal) {
  CheckOptions options;
  const std::span<const std::string> afterProgram = arguments.subspan(arguments.empty() ? 0 : 1);
  if (const std::optional<int> status = scanCheckArguments(afterProgram, host, options)) return *status;
  if (options.assembler.inputs.empty()) return complain(host, "no input files");
  const RecordingHost reader(host);
  const std::unique_ptr<Program> program = assembleProgram(reader, arguments, options.assembler);
  if (!program->error.empty()) return complain(host, program->error);
  const std::vector<Finding> findings = checkProgram(*program, options.levels);
  print(host, findings, *program, options.report, isTerminal);
  if (!program->isAssembled) return failure;
  const std::string error = writeOutputs(host, *program, options, reader.pathsRead());
  if (!error.empty()) return complain(host, error);
  if (!program->isWritable) return failure;
  return findings.empty() ? foundNothing : foundSomething;
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

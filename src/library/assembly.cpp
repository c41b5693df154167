#include "library/assembly.h"

#include <utility>

#include "inspect/check_options.h"
#include "inspect/checker.h"
#include "inspect/labels.h"
#include "inspect/messages.h"
#include "inspect/writer_messages.h"

namespace kiln {
namespace {

constexpr std::string_view makesNoProgram = "this option makes no program";

bool writesFiles(const CheckOptions& options) {
  return options.report != ReportFormat::Text || !options.labels.empty() || options.depfile.has_value() ||
         options.listing.has_value() || options.map.has_value();
}

}  // namespace

bool Assembly::assemble(MemoryFiles& files, std::vector<std::string> arguments) {
  Options options;
  const std::optional<int> status = scanArguments(arguments, files, options);
  if (status.has_value()) return complain(*status == 0 ? makesNoProgram : wordsOf(files.printed()));
  const std::unique_ptr<Program> program = open(files, options);
  return program != nullptr && finish(*program, listMessages(*program));
}

bool Assembly::check(MemoryFiles& files, std::vector<std::string> arguments) {
  CheckOptions options;
  const std::optional<int> status = scanCheckArguments(arguments, files, options);
  if (status.has_value()) return complain(*status == 0 ? makesNoProgram : wordsOf(files.printed()));
  if (writesFiles(options)) return complain("no files are written here");
  const std::unique_ptr<Program> program = open(files, options.assembler);
  return program != nullptr && finish(*program, checkProgram(*program, options.levels));
}

bool Assembly::complain(std::string_view text) {
  addMessage(KILN_ERROR, text, {}, nullptr);
  return false;
}

// Null when something cannot be read, which a message says then.
std::unique_ptr<Program> Assembly::open(const MemoryFiles& files, const Options& options) {
  if (options.inputs.empty()) {
    complain("no input files");
    return nullptr;
  }
  const std::vector<std::string> programPath = {""};
  std::unique_ptr<Program> program = assembleProgram(files, programPath, options);
  if (program->error.empty()) return program;
  complain(program->error);
  return nullptr;
}

bool Assembly::finish(const Program& program, const std::vector<Finding>& findings) {
  for (const Finding& finding : findings)
    addFinding(finding);
  if (program.isAssembled) addLabels(program);
  if (program.isWritable) image_ = fileBytes(program);
  return program.isWritable;
}

const char* Assembly::fileOf(const Place& place) {
  if (place.line == 0) return nullptr;
  const auto [entry, isNew] = paths_.try_emplace(place.file, nullptr);
  if (isNew) entry->second = keep(place.file->path);
  return entry->second;
}

void Assembly::addMessage(kiln_severity severity, std::string_view text, const Place& place, const char* check) {
  messages_.push_back({.severity = severity,
                       .text = keep(text),
                       .check = check,
                       .file = fileOf(place),
                       .line = place.line,
                       .column = place.column,
                       .end_column = place.endColumn});
}

void Assembly::addFinding(const Finding& finding) {
  const bool isError = finding.severity == Severity::Error;
  const char* const check = finding.check == Check::Assembler ? nullptr : keep(rowOf(finding.check).name);
  addMessage(isError ? KILN_ERROR : KILN_WARNING, finding.text, finding.place, check);
  for (const Note& note : finding.notes)
    addMessage(KILN_NOTE, note.text, note.place, nullptr);
}

void Assembly::addLabels(const Program& program) {
  for (const Label& label : listLabels(program, placeStatements(program))) {
    labels_.push_back({.name = keep(label.name),
                       .address = static_cast<uint16_t>(label.address),
                       .bank = label.bank.has_value() ? int32_t{*label.bank} : -1,
                       .file = fileOf(label.place),
                       .line = label.place.line});
  }
}

}  // namespace kiln

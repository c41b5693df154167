#include "lsp/renaming.h"

#include <algorithm>

#include "base/format.h"
#include "base/paths.h"
#include "inspect/name_definitions.h"
#include "lsp/same_program.h"

namespace kiln {

Renaming::InProgram& Renaming::programOf(const Analysis& analysis) {
  const auto known = std::find_if(programs_.begin(), programs_.end(),
                                  [&analysis](const InProgram& program) { return program.analysis == &analysis; });
  return known != programs_.end() ? *known : programs_.emplace_back(analysis);
}

const std::vector<Renaming::FileText>& Renaming::textsOf(const std::string& path) {
  const auto [entry, isNew] = texts_.try_emplace(path);
  if (!isNew) return entry->second;
  // A program may come from the ".kiln" of another file.
  for (const Analysis* analysis : session_.workspace.programsOf(path)) {
    if (analysis->error().empty()) programOf(*analysis);
  }
  for (InProgram& program : programs_) {
    for (const SourceNotes::File& file : program.analysis->program().notes.files) {
      if (plainPath(file.path) == path) entry->second.push_back({&program, file.text});
    }
  }
  return entry->second;
}

void Renaming::rename(InProgram& program, Key key) {
  if (program.renamed.insert(key).second) open_.emplace_back(&program, key);
}

void Renaming::edit(InProgram& program, const NamePart& part) {
  const SourceNotes::File* const file = program.analysis->map().fileOf(part.text);
  if (file == nullptr) return;
  const std::string path = plainPath(file->path);
  const auto offset = static_cast<size_t>(part.text.data() - file->text.data());
  FileEdit& edit = edits_.try_emplace(path, FileEdit{file->text, {}}).first->second;
  if (!edit.lengths.try_emplace(offset, part.text.size()).second) return;
  for (const FileText& other : textsOf(path)) {
    for (const NamePart& same : other.program->parts.beginningAt(other.text.data() + offset))
      rename(*other.program, {same.thing, same.id});
  }
}

void Renaming::add(const Analysis& analysis, const NamePart& part) {
  rename(programOf(analysis), {part.thing, part.id});
  while (!open_.empty()) {
    const auto [program, key] = open_.back();
    open_.pop_back();
    for (const NamePart* other : program->parts.of(key.first, key.second))
      edit(*program, *other);
  }
}

std::string Renaming::refusal() const {
  for (const InProgram& program : programs_) {
    const NameDefinitions definitions(program.analysis->program());
    const std::vector<Symbol>& symbols = program.analysis->program().iteration().symbols.symbols();
    for (const auto& [thing, id] : program.renamed) {
      if (thing == Thing::File) return "a file is not renamed here";
      if (thing == Thing::Symbol && definitions.isPredefined(symbols[id])) {
        return concat({"'", symbols[id].name, "' is not defined in the source alone"});
      }
      if (program.analysis->names().definitionOf(thing, id) == nullptr) return "the source has no definition of it";
    }
  }
  return "";
}

std::map<std::string, std::string> Renaming::editedTexts(const std::string& name) const {
  std::map<std::string, std::string> texts;
  for (const auto& [path, edit] : edits_) {
    std::string& text = texts[path];
    size_t copied = 0;
    for (const auto& [offset, length] : edit.lengths) {
      text.append(edit.text, copied, offset - copied).append(name);
      copied = offset + length;
    }
    text.append(edit.text, copied);
  }
  return texts;
}

std::string Renaming::tryName(const std::string& from, const std::string& to) const {
  const std::map<std::string, std::string> texts = editedTexts(to);
  for (const InProgram& program : programs_) {
    const std::unique_ptr<Analysis> after = session_.workspace.analyseWith(program.analysis->commandLine(), texts);
    std::string difference =
        after->error().empty() ? differenceOf(*program.analysis, *after, {from, to}) : after->error();
    if (!difference.empty()) return difference;
  }
  return "";
}

}  // namespace kiln

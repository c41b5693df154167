#include "inspect/routines.h"

#include "source/statements.h"

namespace kiln {
namespace {

// The code that the call stager adds has labels that begin so. It is no part of the routine before it.
constexpr std::string_view stagerPrefix = "_kxb_";

bool beginsRoutine(const AsLine& line, HashedName label) {
  return line.hasLabel && !line.labelLocal && !label.text().starts_with(longBranchLabel);
}

// Code that spills into the next region goes on there.
bool endsRoutine(const AsLine& line) { return rowOf(line.kind).moves && !line.autoSpill; }

bool isOfStager(const AsLine& line, HashedName label) {
  return line.labelLocal && label.text().starts_with(stagerPrefix);
}

}  // namespace

std::vector<Routine> listRoutines(const Program& program, const Placements& placements) {
  const std::vector<AsLine>& lines = program.iteration().statements.lines;
  LabelReader labels(program.iteration().statements.labels);
  LineReader texts(program.assembler.lines.pieces());
  std::vector<Routine> routines;
  bool isOpen = false;
  for (size_t i = 0; i < lines.size(); ++i) {
    const AsLine& line = lines[i];
    const HashedName label = labels.of(line);
    const StatementPlace& place = placements.statements[i];
    if (isOfStager(line, label)) isOpen = false;
    if (beginsRoutine(line, label)) {
      const std::string_view text = program.map->originOf(texts.at(line.lineNumber - 1));
      routines.push_back({label.text(), program.map->placeOf(text), place.segment, place.address});
      isOpen = true;
    }
    if (isOpen && routines.back().size == 0) routines.back().isCode = line.kind == Kind::Instruction;
    if (isOpen) routines.back().size += byteCount(line);
    if (endsRoutine(line)) isOpen = false;
  }
  std::erase_if(routines, [](const Routine& routine) { return routine.size == 0; });
  return routines;
}

}  // namespace kiln

#include "inspect/placed_segments.h"

#include "driver/output_file.h"

namespace kiln {

OutputKind outputKindOf(const Program& program) {
  const Options& options = program.options;
  if (chooseFormat(options, chooseOutputPath(options)) == Format::Prg) return OutputKind::Prg;
  return options.banked ? OutputKind::BankedXex : OutputKind::Xex;
}

std::optional<BankValue> writtenBank(OutputKind output, const Opening& opening, BankCounters& counters) {
  if (output != OutputKind::BankedXex || opening.isCloaked) return std::nullopt;
  return counters.next(opening.address, opening.bank);
}

}  // namespace kiln

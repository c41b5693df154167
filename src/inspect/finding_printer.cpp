#include "inspect/finding_printer.h"

#include <algorithm>
#include <span>
#include <utility>

#include "inspect/report.h"

namespace kiln {

void FindingPrinter::print(const Program& program, std::vector<Finding> findings) {
  if (dropsRepeats_) {
    std::erase_if(findings, [this](const Finding& finding) {
      return finding.place.line != 0 && !printed_.insert(renderJson({&finding, 1})).second;
    });
  }
  if (format_ == ReportFormat::Sarif) {
    findings_ = std::move(findings);
    return;
  }
  // In parts, as a million findings make a text of hundreds of megabytes.
  constexpr size_t partSize = 1000;
  for (std::span<const Finding> rest = findings; !rest.empty();) {
    const std::span<const Finding> part = rest.first(std::min(partSize, rest.size()));
    console_.printOutput(format_ == ReportFormat::Json ? renderJson(part) : renderText(part, *program.map, inColour_));
    rest = rest.subspan(part.size());
  }
}

// Findings refer to the files of their program.
void FindingPrinter::keep(std::unique_ptr<Program> program) {
  if (format_ == ReportFormat::Sarif) kept_.push_back({std::move(program), std::move(findings_)});
}

void FindingPrinter::finish() {
  if (kept_.empty()) return;
  std::vector<ProgramFindings> all;
  for (const Kept& kept : kept_)
    all.push_back({kept.findings, &*kept.program->map});
  console_.printOutput(renderSarif(all));
}

}  // namespace kiln

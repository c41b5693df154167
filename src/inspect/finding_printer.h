// Prints the findings of one program, or of several.
#pragma once

#include <memory>
#include <string>
#include <unordered_set>
#include <vector>

#include "host/host.h"
#include "inspect/check_options.h"
#include "inspect/findings.h"
#include "inspect/program.h"

namespace kiln {

class FindingPrinter {
 public:
  // The console has to outlive it. With `dropsRepeats`, what several programs find at one place is printed once.
  FindingPrinter(Console& console, ReportFormat format, bool inColour, bool dropsRepeats)
      : console_(console), format_(format), inColour_(inColour), dropsRepeats_(dropsRepeats) {}

  void print(const Program& program, std::vector<Finding> findings);
  // To be called last for each program: takes what finish() needs.
  void keep(std::unique_ptr<Program> program);
  // Prints what is one text for all programs: a SARIF document.
  void finish();

 private:
  struct Kept {
    std::unique_ptr<Program> program;
    std::vector<Finding> findings;
  };

  Console& console_;
  ReportFormat format_;
  bool inColour_;
  bool dropsRepeats_;
  std::unordered_set<std::string> printed_;  // findings with a place, as JSON
  std::vector<Finding> findings_;            // of the last program
  std::vector<Kept> kept_;
};

}  // namespace kiln

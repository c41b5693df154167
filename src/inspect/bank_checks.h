// Banks: windows, registers and numbers.
#pragma once

#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"

namespace kiln {

class BankChecks {
 public:
  BankChecks(const Program& program, OutputKind output, const PlacedSegments& segments, Findings& findings)
      : program_(program),
        banking_(program.assembler.settings.banking),
        output_(output),
        segments_(segments),
        findings_(findings) {}

  // To be called after the last statement.
  void finish();

 private:
  void checkFlatBanks();
  void checkBanks();
  void checkRegisters(const PlacedSegment& bank);
  void checkPortB(const PlacedSegment& bank);
  void checkBankTwice();
  void checkBankCounts();
  const PlacedSegment* firstNamed() const;

  const Program& program_;
  const BankedSettings& banking_;
  const OutputKind output_;
  const PlacedSegments& segments_;
  Findings& findings_;
};

}  // namespace kiln

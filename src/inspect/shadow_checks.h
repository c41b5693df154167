// Shadow code: ranges and the stage.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"
#include "output/pieces.h"

namespace kiln {

class ShadowChecks {
 public:
  ShadowChecks(const Program& program, OutputKind output, const PlacedSegments& segments, Findings& findings)
      : program_(program), output_(output), segments_(segments), findings_(findings) {}

  // To be called once for each statement, in order.
  void visit(const Statement& statement) {
    if (statement.parsed->kind == Kind::ShadowRanges) ranges_ = statement.text;
    if (statement.parsed->kind == Kind::ShadowStage) {
      stage_ = statement.text;
      stageOperand_ = statement.parsed->operand();
    }
    if (statement.parsed->kind == Kind::Empty && !statement.word.empty()) lookForStage(statement.word);
  }
  // After the last statement.
  void finish();

  // The last ".shadow_stage"; null data without one.
  std::string_view stage() const { return stage_; }

 private:
  void lookForStage(std::string_view vanishedWord);
  void checkHalf();
  void checkStage();
  std::vector<size_t> split(Pieces& pieces) const;
  uint64_t endOfStage(const std::vector<Piece>& pieces) const;
  void reportStageInUse(uint64_t stageEnd, const PlacedSegment& segment);
  bool overwrites(const Piece& piece, uint64_t stageEnd) const;

  const Program& program_;
  const OutputKind output_;
  const PlacedSegments& segments_;
  Findings& findings_;
  // The last directive of each kind, which applies to the whole program; null data without one.
  std::string_view ranges_;
  std::string_view stage_;
  std::string_view stageOperand_;
  bool hasLostStage_ = false;  // a statement has vanished that was probably meant as one
};

}  // namespace kiln

// Segments: bytes past the last address, before the first origin, and words that the loader reads.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "inspect/findings.h"
#include "inspect/placed_segments.h"
#include "inspect/program.h"
#include "inspect/statement_walk.h"

namespace kiln {

class SegmentChecks {
 public:
  SegmentChecks(const Program& program, OutputKind output, const PlacedSegments& segments, Findings& findings)
      : program_(program), output_(output), segments_(segments), findings_(findings) {}

  // To be called once for each statement, before its bytes are placed.
  void visit(const Statement& statement) {
    if (!hasOrigin_) lookForOrigin(statement);
  }
  // The statement `at` has put its bytes at `pc`, into the last segment.
  void place(const AsLine& line, uint32_t pc, std::string_view at) {
    if (line.size == 0) return;
    if (segments_.back().start + segments_.back().size > 0x10000) reportPastEnd(at);
    if (!hasOrigin_) reportBeforeOrigin(at);
    if (pc - loaderWords < 4) keepWords(line, pc, at);
  }
  // After the last statement.
  void finish();

 private:
  // The loader starts the program at the address in the first word, and calls the address in the second.
  static constexpr uint32_t loaderWords = 0x02E0;

  // A word of the program at one of the two addresses.
  struct Word {
    uint32_t address;
    size_t segment;
    std::string_view at;
  };

  void lookForOrigin(const Statement& statement);
  void reportPastEnd(std::string_view at);
  void reportBeforeOrigin(std::string_view at);
  void keepWords(const AsLine& line, uint32_t pc, std::string_view at);
  void checkStart();
  void checkRunWord(const Word& word, uint32_t value);
  void checkInitWord(const Word& word, uint32_t value, const std::vector<uint32_t>& firstLoads);
  std::vector<uint32_t> findFirstLoads() const;

  const Program& program_;
  const OutputKind output_;
  const PlacedSegments& segments_;
  Findings& findings_;
  bool hasOrigin_ = false;      // or nothing is to be said about its absence
  bool hasLostOrigin_ = false;  // a statement has vanished that was probably meant as one
  size_t pastEndReported_ = 0;  // the number of the last segment with a finding, from 1
  std::vector<Word> words_;
};

}  // namespace kiln

#include "inspect/segment_checks.h"

#include <algorithm>

#include "base/format.h"
#include "base/text.h"
#include "driver/output_file.h"
#include "inspect/near_names.h"
#include "inspect/overlaps.h"

namespace kiln {
namespace {

constexpr uint32_t runWord = 0x02E0;
constexpr uint32_t initWord = 0x02E2;
constexpr uint32_t never = 0xFFFFFFFF;

}  // namespace

void SegmentChecks::lookForOrigin(const Statement& statement) {
  const Kind kind = statement.parsed->kind;
  if (rowOf(kind).moves) hasOrigin_ = true;
  const bool hasVanished = kind == Kind::Empty || statement.isMisread;
  if (!hasVanished || statement.text.empty()) return;
  const bool hasWord = statement.text.front() == '*' || toLower(statement.text).find("org") != std::string::npos;
  if (hasWord || isNear(statement.word, ".org")) hasLostOrigin_ = true;
}

void SegmentChecks::reportPastEnd(std::string_view at) {
  if (pastEndReported_ == segments_.size()) return;
  pastEndReported_ = segments_.size();
  findings_.add(Check::PastEnd, {.at = at,
                                 .text = "these bytes run past $FFFF, where the addresses begin again at $0000",
                                 .notes = {{segments_.back().at, "their segment begins here: begin it lower"}}});
}

void SegmentChecks::reportBeforeOrigin(std::string_view at) {
  hasOrigin_ = true;
  if (hasLostOrigin_) return;
  findings_.add(Check::BeforeOrigin, {.at = at, .text = "no .org comes before these bytes, so they go to $0000"});
}

// Data that happens to be there in a longer segment is not meant for the loader.
void SegmentChecks::keepWords(const AsLine& line, uint32_t pc, std::string_view at) {
  const bool isList = line.kind == Kind::Word || line.kind == Kind::Byte;
  if (!isList || output_ == OutputKind::Prg || segments_.back().start - loaderWords > 3) return;
  for (const uint32_t address : {runWord, initWord}) {
    if (pc <= address && address + 2 <= pc + line.size) words_.push_back({address, segments_.size() - 1, at});
  }
}

void SegmentChecks::finish() {
  if (findings_.wants(Check::Overlap)) checkOverlaps(program_, output_, segments_, findings_);
  if (!program_.isAssembled || output_ == OutputKind::Prg || !findings_.wants(Check::RunAddress)) return;
  checkStart();
  if (words_.empty()) return;
  const std::vector<uint32_t> firstLoads = findFirstLoads();
  for (const Word& word : words_) {
    const AsSegment& segment = program_.assembler.segments[word.segment];
    const uint8_t* const bytes = segment.bytes.data() + (word.address - segment.start);
    const uint32_t value = bytes[0] + 256U * bytes[1];
    word.address == runWord ? checkRunWord(word, value) : checkInitWord(word, value, firstLoads);
  }
}

void SegmentChecks::checkStart() {
  if (program_.options.entry.has_value()) return;
  const PlacedSegment& first = segments_.front();
  const bool hasRunWord =
      std::any_of(words_.begin(), words_.end(), [](const Word& word) { return word.address == runWord; });
  const bool isWord = first.start - loaderWords < 4 && !hasRunWord;
  if (!isWord && !first.written.has_value()) return;
  findings_.add(Check::RunAddress,
                {.at = first.at,
                 .text = concat({"the program starts here, at ", dollarHex(first.start),
                                 isWord ? ", where there is no code: " : ", in a bank that is not selected then: ",
                                 "begin the source with code in main memory, or give the start with the option -e"})});
}

void SegmentChecks::checkRunWord(const Word& word, uint32_t value) {
  const uint32_t start = chooseRunAddress(program_.options, program_.assembler);
  if (value == start) return;
  Findings::Report report{.at = word.at,
                          .text = concat({"the word at $02E0 has no effect: the program starts at ", dollarHex(start),
                                          ", not ", dollarHex(value)})};
  if (program_.options.entry.has_value()) {
    report.addNote("the option -e gives the start");
  } else {
    report.notes.emplace_back(segments_.front().at, "it starts with this segment: give the start with the option -e");
  }
  findings_.add(Check::RunAddress, std::move(report));
}

void SegmentChecks::checkInitWord(const Word& word, uint32_t value, const std::vector<uint32_t>& firstLoads) {
  const uint32_t loaded = firstLoads[value];
  if (loaded == never || loaded <= word.segment) return;
  findings_.add(Check::RunAddress, {.at = word.at,
                                    .text = concat({"the loader calls ", dollarHex(value),
                                                    " when it has this word, before anything is loaded there"}),
                                    .notes = {{segments_[loaded].at, "put the word after this segment"}}});
}

// For each address the first segment in main memory that has a byte there.
std::vector<uint32_t> SegmentChecks::findFirstLoads() const {
  std::vector<uint32_t> firstLoads(addressCount, never);
  for (size_t i = 0; i < segments_.size(); ++i) {
    const PlacedSegment& segment = segments_[i];
    if (segment.isCloaked || segment.written.has_value()) continue;
    const uint64_t end = std::min<uint64_t>(segment.start + segment.size, addressCount);
    for (uint64_t address = segment.start; address < end; ++address)
      firstLoads[address] = std::min(firstLoads[address], static_cast<uint32_t>(i));
  }
  return firstLoads;
}

}  // namespace kiln

// A row of the listing is
//
//     bank  address  bytes        cycles  number  text
//
// The number is that of the line in its file, and "+" for a line that is in no file. The bank is there only when the
// program fills banks. Two lists are walked side by side: the lines of the files, which are shown, and the expanded
// lines, whose statements have bytes. Each expanded line belongs to a line of a file, and their order is the same.
#include "inspect/cycle_listing.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <span>

#include "base/format.h"
#include "base/text.h"
#include "inspect/cycles.h"
#include "inspect/file_walk.h"

namespace kiln {
namespace {

constexpr size_t bytesInRow = 4;
constexpr size_t bankWidth = 5;
constexpr size_t bytesWidth = 11;
constexpr size_t cyclesWidth = 3;
constexpr size_t numberWidth = 6;
constexpr std::string_view noNumber = "+";

struct Row {
  const BankValue* bank = nullptr;
  std::optional<uint32_t> address = {};
  std::string bytes = {};
  std::string cycles = {};
  std::string_view number = {};
  std::string_view text = {};
};

void appendLeft(std::string& line, std::string_view field, size_t width) {
  line += field;
  line.append(field.size() < width ? width - field.size() : 0, ' ');
}

void appendRight(std::string& line, std::string_view field, size_t width) {
  line.append(field.size() < width ? width - field.size() : 0, ' ');
  line += field;
}

void appendRow(std::string& listing, const Row& row, bool hasBanks) {
  std::string line;
  if (hasBanks) appendRight(line, row.bank == nullptr ? "" : decimal(row.bank->value), bankWidth);
  if (hasBanks) line += "  ";
  std::string address;
  if (row.address.has_value()) appendHex(address, *row.address, 4);
  appendLeft(line, address, 4);
  line += "  ";
  appendLeft(line, row.bytes, bytesWidth);
  line += "  ";
  appendLeft(line, row.cycles, cyclesWidth);
  appendRight(line, row.number, numberWidth);
  line += "  ";
  line += row.text;
  listing += row.text.empty() ? trimRight(line) : line;
  listing.push_back('\n');
}

std::string hexBytes(std::span<const uint8_t> bytes) {
  std::string text;
  for (uint8_t byte : bytes) {
    if (!text.empty()) text.push_back(' ');
    appendHex(text, byte, 2);
  }
  return text;
}

class CycleListing {
 public:
  CycleListing(const Program& program, const Placements& placements)
      : program_(program),
        placements_(placements),
        statements_(program.iteration().statements.lines),
        files_(program.notes),
        hasBanks_(std::any_of(placements.segments.begin(), placements.segments.end(),
                              [](const SegmentBank& segment) { return segment.value.has_value(); })) {}

  std::string render();

 private:
  void showExpanded(std::string_view line, size_t end);
  void moveTo(std::string_view origin);
  void nameFile();
  void showFileLine();
  void showStatements(size_t end, std::string_view number, std::string_view text);
  void showInserted(size_t index);
  void showStatement(size_t index, std::string_view number, std::string_view text);
  void show(const Row& row) { appendRow(listing_, row, hasBanks_); }
  std::span<const uint8_t> bytesOf(size_t index) const;
  std::string cyclesOfStatement(size_t index, std::span<const uint8_t> bytes) const;
  const BankValue* bankOf(size_t index) const;

  const Program& program_;
  const Placements& placements_;
  const std::vector<AsLine>& statements_;
  FileWalk files_;
  const bool hasBanks_;
  FileWalk::Line fileLine_;  // the last one taken
  bool isShown_ = true;      // that line
  const SourceNotes::File* namedFile_ = nullptr;
  size_t next_ = 0;  // statement to be shown
  std::string listing_;
};

std::string CycleListing::render() {
  LineReader lines(program_.assembler.lines.pieces());
  std::string_view line;
  for (uint32_t number = 1; lines.next(line); ++number) {
    size_t end = next_;
    while (end < statements_.size() && statements_[end].lineNumber == number)
      ++end;
    showExpanded(line, end);
    next_ = end;
  }
  moveTo({});
  return std::move(listing_);
}

// Shows an expanded line, which has the statements from the next one to `end`. Lines of files without statements are
// shown when a later line is, or at the end.
void CycleListing::showExpanded(std::string_view line, size_t end) {
  const bool isMade = program_.map->madeLine(line) != nullptr;
  if (!isMade && next_ == end) return;
  moveTo(program_.map->originOf(line));
  if (isMade) {
    showFileLine();
    return showStatements(end, noNumber, line);
  }
  nameFile();
  isShown_ = true;
  showStatements(end, decimal(fileLine_.number), fileLine_.text);
}

// Shows the lines of the files up to the one with `origin`, but not that one; all that are left without an origin.
void CycleListing::moveTo(std::string_view origin) {
  const auto isHere = [&] {
    const std::string_view text = fileLine_.text;
    const std::less_equal<> upTo;
    return origin.data() != nullptr && upTo(text.data(), origin.data()) &&
           upTo(origin.data(), text.data() + text.size());
  };
  while (!isHere()) {
    showFileLine();
    if (!files_.next(fileLine_)) return;
    isShown_ = false;
  }
}

// Begins the lines of a file with its path.
void CycleListing::nameFile() {
  if (fileLine_.file == namedFile_) return;
  if (namedFile_ != nullptr) listing_.push_back('\n');
  listing_ += fileLine_.file->path + ":\n";
  namedFile_ = fileLine_.file;
}

void CycleListing::showFileLine() {
  if (isShown_) return;
  isShown_ = true;
  nameFile();
  show({.number = decimal(fileLine_.number), .text = fileLine_.text});
}

void CycleListing::showStatements(size_t end, std::string_view number, std::string_view text) {
  bool isTextShown = false;
  for (size_t i = next_; i < end; ++i) {
    const AsLine& line = statements_[i];
    if (line.autoSpill) {
      showInserted(i);
    } else if (emitsBytes(line.kind) || line.hasLabel || rowOf(line.kind).moves) {
      showStatement(i, isTextShown ? "" : number, isTextShown ? "" : text);
      isTextShown = true;
    }
  }
  if (!isTextShown) show({.number = number, .text = text});
}

// A statement inserted by a code-region spill has no line and is shown as it would be written.
void CycleListing::showInserted(size_t index) {
  const AsLine& line = statements_[index];
  showStatement(index, noNumber,
                concat({line.kind == Kind::Org ? "    .org " : "    JMP ", line.operand(), " ; auto-spill"}));
}

void CycleListing::showStatement(size_t index, std::string_view number, std::string_view text) {
  const std::span<const uint8_t> bytes = bytesOf(index);
  const uint32_t address = placements_.statements[index].address;
  Row row{.bank = bankOf(index),
          .address = address,
          .cycles = cyclesOfStatement(index, bytes),
          .number = number,
          .text = text};
  if (statements_[index].kind == Kind::Space && bytes.size() > bytesInRow) {
    row.bytes = concat({"00 x ", decimal(static_cast<int64_t>(bytes.size()))});
    return show(row);
  }
  row.bytes = hexBytes(bytes.first(std::min(bytes.size(), bytesInRow)));
  show(row);
  for (size_t at = bytesInRow; at < bytes.size(); at += bytesInRow) {
    show({.bank = row.bank,
          .address = (address + at) & 0xFFFF,
          .bytes = hexBytes(bytes.subspan(at, std::min(bytes.size() - at, bytesInRow)))});
  }
}

std::span<const uint8_t> CycleListing::bytesOf(size_t index) const {
  const StatementPlace& place = placements_.statements[index];
  const uint64_t count = byteCount(statements_[index]);
  if (count == 0) return {};
  return std::span(program_.assembler.segments[place.segment].bytes).subspan(place.offset, count);
}

// "4", "4+" when indexing may add one, "2/3" for a branch that is not taken and taken.
std::string CycleListing::cyclesOfStatement(size_t index, std::span<const uint8_t> bytes) const {
  const AsLine& line = statements_[index];
  if (line.kind != Kind::Instruction) return "";
  const std::optional<Cycles> cycles = cyclesOf(line.mnemonic, line.mode);
  if (!cycles.has_value()) return "";
  if (line.mode != Mode::Relative) return decimal(cycles->count) + (cycles->mayGrow ? "+" : "");
  const uint32_t address = placements_.statements[index].address;
  const auto distance = static_cast<int8_t>(bytes[1]);
  const uint32_t target = static_cast<uint32_t>(static_cast<int32_t>(address) + 2 + distance) & 0xFFFF;
  return concat({decimal(cycles->count), "/", decimal(takenBranchCycles(address, target))});
}

// A statement that moves is in the bank to which it moves.
const BankValue* CycleListing::bankOf(size_t index) const {
  const size_t at = rowOf(statements_[index].kind).moves ? index + 1 : index;
  return at < placements_.statements.size() ? bankAt(placements_, placements_.statements[at]) : nullptr;
}

}  // namespace

std::string renderCycleListing(const Program& program, const Placements& placements) {
  return CycleListing(program, placements).render();
}

}  // namespace kiln

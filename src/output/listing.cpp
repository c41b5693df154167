#include "output/listing.h"

#include "base/arithmetic.h"
#include "base/format.h"

namespace kiln {
namespace {

constexpr size_t prefixWidth = 21;
constexpr size_t bytesColumn = 2;   // of the address of bytes
constexpr size_t originColumn = 7;  // of the address of an origin

void appendPrefix(std::string& listing, size_t column, uint32_t address) {
  constexpr size_t digits = 4;
  listing.append(column, ' ');
  appendHex(listing, address, digits);
  listing.append(prefixWidth - column - digits, ' ');
}

class ListingWriter {
 public:
  ListingWriter(const SourceLines& lines, Evaluator& evaluator)
      : evaluator_(evaluator), lineCount_(lines.count()), reader_(lines.pieces()) {}

  std::string render(const std::vector<AsLine>& statements) {
    for (const AsLine& line : statements) {
      appendLinesBefore(line.lineNumber);
      appendAddress(line);
      appendSource(line);
      listedLine_ = line.lineNumber;
    }
    appendLinesBefore(lineCount_ + 1);
    return std::move(listing_);
  }

 private:
  // The lines without a statement after the last listed line, up to a line number.
  void appendLinesBefore(size_t lineNumber) {
    while (listedLine_ + 1 < lineNumber)
      listing_.append(prefixWidth, ' ').append(reader_.at(listedLine_++)).push_back('\n');
  }

  void appendAddress(const AsLine& line) {
    if (line.kind == Kind::Org) {
      location_ = low16(evaluator_.evaluate(line.operand()));
      appendPrefix(listing_, originColumn, location_);
    } else if (emitsBytes(line.kind)) {
      appendPrefix(listing_, bytesColumn, location_);
      location_ = (location_ + line.size) & 0xFFFF;
    } else {
      listing_.append(prefixWidth, ' ');
    }
  }

  // A statement inserted by a code-region spill has no source line and is shown as it would be written.
  void appendSource(const AsLine& line) {
    if (line.autoSpill) {
      listing_.append(line.kind == Kind::Org ? "    .org " : "    JMP ")
          .append(line.operand())
          .append(" ; auto-spill\n");
    } else {
      listing_.append(reader_.at(line.lineNumber - 1)).push_back('\n');
    }
  }

  Evaluator& evaluator_;
  const size_t lineCount_;
  LineReader reader_;
  std::string listing_;
  uint32_t location_ = 0;
  size_t listedLine_ = 0;  // all source lines up to this number are in the listing
};

}  // namespace

std::string renderListing(const std::vector<AsLine>& statements, const SourceLines& lines, Evaluator& evaluator) {
  return ListingWriter(lines, evaluator).render(statements);
}

}  // namespace kiln

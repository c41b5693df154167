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

// Appends the address at which a statement begins, and moves the location past it.
void appendAddress(std::string& listing, const AsLine& line, uint32_t& location, Evaluator& evaluator) {
  if (line.kind == Kind::Org) {
    location = low16(evaluator.evaluate(line.operand()));
    appendPrefix(listing, originColumn, location);
  } else if (emitsBytes(line.kind)) {
    appendPrefix(listing, bytesColumn, location);
    location = (location + line.size) & 0xFFFF;
  } else {
    listing.append(prefixWidth, ' ');
  }
}

// A statement inserted by a code-region spill has no source line and is shown as it would be written.
void appendSpill(std::string& listing, const AsLine& line) {
  listing.append(line.kind == Kind::Org ? "    .org " : "    JMP ").append(line.operand()).append(" ; auto-spill\n");
}

}  // namespace

std::string renderListing(const std::vector<AsLine>& statements, const SourceLines& lines, Evaluator& evaluator) {
  std::string listing;
  LineReader reader(lines.pieces());
  uint32_t location = 0;
  size_t listed = 0;  // the source lines up to this number are in the listing
  const auto appendLinesUpTo = [&](size_t lineNumber) {
    while (listed < lineNumber)
      listing.append(prefixWidth, ' ').append(reader.at(listed++)).push_back('\n');
  };
  for (const AsLine& line : statements) {
    appendLinesUpTo(line.lineNumber - 1);
    appendAddress(listing, line, location, evaluator);
    if (line.autoSpill) {
      appendSpill(listing, line);
    } else {
      listing.append(reader.at(line.lineNumber - 1)).push_back('\n');
      listed = line.lineNumber;
    }
  }
  appendLinesUpTo(lines.count());
  return listing;
}

}  // namespace kiln

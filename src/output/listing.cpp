#include "output/listing.h"

#include "base/arithmetic.h"
#include "base/format.h"

namespace kiln {
namespace {

// Every prefix is 21 characters wide. Origins show their address in another column than bytes, so that they stand out.
void appendPrefix(std::string& listing, size_t before, uint32_t address) {
  listing.append(before, ' ');
  appendHex(listing, address, 4);
  listing.append(21 - before - 4, ' ');
}

// Statements that the code-region spill inserted stand on no source line; they are shown as they would be written.
void appendSource(std::string& listing, const AsLine& line, LineReader& lines) {
  if (line.autoSpill) {
    listing += line.kind == Kind::Org ? "    .org " : "    JMP ";
    listing += line.operand.text();
    listing += " ; auto-spill";
  } else {
    listing += lines.at(line.lineNumber - 1);
  }
  listing.push_back('\n');
}

}  // namespace

std::string renderListing(const std::vector<AsLine>& statements, const SourceLines& lines, Evaluator& evaluator) {
  std::string listing;
  uint32_t location = 0;
  LineReader reader(lines.pieces());
  for (const AsLine& line : statements) {
    if (line.kind == Kind::Org) {
      location = low16(evaluator.evaluate(line.operand));
      appendPrefix(listing, 7, location);
    } else if (emitsBytes(line.kind)) {
      appendPrefix(listing, 2, location);
      location = (location + line.size) & 0xFFFF;
    } else {
      listing.append(21, ' ');
    }
    appendSource(listing, line, reader);
    for (uint32_t i = 0; i < line.furtherLines(); ++i) {
      listing.append(21, ' ').append(reader.at(line.lineNumber + i)).push_back('\n');
    }
  }
  return listing;
}

}  // namespace kiln

#include "inspect/writer_messages.h"

#include <algorithm>

#include "base/format.h"

namespace kiln {
namespace {

// The check of the registers explains this error.
constexpr std::string_view registerError = "banked output requires a code bank register";

bool contains(std::string_view text, std::string_view part) { return text.find(part) != std::string_view::npos; }

// The statement that a message is about; null data when none is known. All banks begin at the same address, so that of
// two segments with the same size, too, the first is as good as the other.
std::string_view placeOf(std::string_view words, const PlacedSegments& segments, std::string_view stage) {
  if (words.starts_with("shadow ")) return stage;
  const auto isMeant = [&](const PlacedSegment& segment) {
    if (contains(words, "cloaked")) return segment.isCloaked;
    const std::string size = decimal(static_cast<int64_t>(segment.size));
    return contains(words, concat({" at ", dollarHex(segment.start), " is ", size, " bytes"}));
  };
  const auto segment = std::find_if(segments.begin(), segments.end(), isMeant);
  return segment == segments.end() ? std::string_view() : segment->at;
}

}  // namespace

std::string_view wordsOf(std::string_view message) {
  for (std::string_view prefix : {"kiln-as: ", "kiln-check: ", "warning: ", "error: "}) {
    if (message.starts_with(prefix)) message.remove_prefix(prefix.size());
  }
  return message.substr(0, message.find('\n'));
}

void reportWriterMessages(const Program& program, const PlacedSegments& segments, std::string_view stage,
                          Findings& findings) {
  for (const WriterMessage& message : program.writerMessages) {
    const std::string_view words = wordsOf(message.text);
    if (words.starts_with(registerError)) continue;
    Findings::Report report{.at = placeOf(words, segments, stage), .text = std::string(words)};
    message.isError ? findings.addError(std::move(report)) : findings.add(Check::Assembler, std::move(report));
  }
}

}  // namespace kiln

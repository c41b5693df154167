#include "inspect/zero_addresses.h"

#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

constexpr std::string_view linePrefixStart = "line ";
constexpr std::string_view reason = " resolves to $0000 ";

}  // namespace

ZeroAddresses::ZeroAddresses(const MessageList& warnings) {
  for (size_t i = 0; i < warnings.size(); ++i) {
    const std::string_view text = warnings[i];
    if (!text.starts_with(linePrefixStart) || text.find(reason) == std::string_view::npos) continue;
    uint32_t line = 0;
    for (size_t at = linePrefixStart.size(); at < text.size() && isDigit(text[at]); ++at)
      line = line * 10 + static_cast<uint32_t>(text[at] - '0');
    warnings_.push_back({line, text});
  }
}

std::string_view ZeroAddresses::take(const AsLine& line, std::string_view expression) {
  while (next_ != warnings_.size() && warnings_[next_].line < line.lineNumber)
    ++next_;
  if (!mayWarnOf(line.lineNumber)) return {};
  const std::string expected =
      concat({linePrefix(line.lineNumber), mnemonicText(line.mnemonic), " ", expression, reason});
  return warnings_[next_].text.starts_with(expected) ? warnings_[next_++].text : std::string_view();
}

}  // namespace kiln

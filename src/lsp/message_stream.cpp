#include "lsp/message_stream.h"

#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

constexpr std::string_view headerEnd = "\r\n\r\n";
constexpr size_t longestHeader = 4096;
constexpr size_t longestMessage = size_t{1} << 30;

// The length that a header gives; absent without one that can be meant.
std::optional<size_t> lengthIn(std::string_view header) {
  constexpr std::string_view name = "content-length:";
  Fields fields(header, '\n');
  std::string_view field;
  while (fields.next(field)) {
    if (!startsWithIgnoringCase(field, name)) continue;
    const std::string_view digits = trimWhitespace(field.substr(name.size()));
    size_t length = 0;
    for (char c : digits) {
      if (!isDigit(c)) return std::nullopt;
      length = length * 10 + static_cast<size_t>(c - '0');
      if (length > longestMessage) return std::nullopt;
    }
    if (!digits.empty()) return length;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> MessageStream::next() {
  if (!length_.has_value()) {
    const std::string_view rest = std::string_view(pending_).substr(taken_);
    const size_t end = rest.find(headerEnd);
    if (end == std::string_view::npos && rest.size() < longestHeader) return std::nullopt;
    const bool isWhole = end != std::string_view::npos;
    length_ = isWhole ? lengthIn(rest.substr(0, end)) : std::nullopt;
    taken_ += isWhole ? end + headerEnd.size() : rest.size() - headerEnd.size();
    if (!length_.has_value()) return "";
  }
  if (pending_.size() - taken_ < *length_) return std::nullopt;
  std::string message = pending_.substr(taken_, *length_);
  pending_.erase(0, taken_ + *length_);
  taken_ = 0;
  length_.reset();
  return message;
}

std::string framed(std::string_view message) {
  return concat({"Content-Length: ", decimal(static_cast<int64_t>(message.size())), headerEnd, message});
}

}  // namespace kiln

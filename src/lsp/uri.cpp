#include "lsp/uri.h"

#include <vector>

#include "base/hex.h"
#include "base/text.h"

namespace kiln {
namespace {

constexpr std::string_view scheme = "file://";

std::string decoded(std::string_view text) {
  std::string bytes;
  for (size_t at = 0; at < text.size(); ++at) {
    const int high = text[at] == '%' && at + 2 < text.size() ? hexDigitValue(text[at + 1]) : -1;
    const int low = high >= 0 ? hexDigitValue(text[at + 2]) : -1;
    if (low < 0) {
      bytes.push_back(text[at]);
    } else {
      bytes.push_back(static_cast<char>(high * 16 + low));
      at += 2;
    }
  }
  return bytes;
}

}  // namespace

std::optional<std::string> pathOfUri(std::string_view uri) {
  if (!startsWithIgnoringCase(uri, scheme)) return std::nullopt;
  uri.remove_prefix(scheme.size());
  const size_t slash = uri.find('/');
  if (slash == std::string_view::npos) return std::nullopt;
  return plainPath(decoded(uri.substr(slash)));
}

std::string uriOfPath(std::string_view path) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  constexpr std::string_view plain = "-._~/";
  std::string uri(scheme);
  for (char c : path) {
    if (isIdentifierCharacter(c) || plain.find(c) != std::string_view::npos) {
      uri.push_back(c);
    } else {
      const auto byte = static_cast<unsigned char>(c);
      uri += {'%', digits[byte >> 4], digits[byte & 15]};
    }
  }
  return uri;
}

std::string plainPath(std::string_view path) {
  std::vector<std::string_view> parts;
  Fields fields(path, '/');
  std::string_view field;
  const bool isAbsolute = path.starts_with('/');
  while (fields.next(field)) {
    if (field.empty() || field == ".") continue;
    const bool canGoUp = !parts.empty() && parts.back() != "..";
    if (field != ".." || (!canGoUp && !isAbsolute)) {
      parts.push_back(field);
    } else if (canGoUp) {
      parts.pop_back();
    }
  }
  std::string plain;
  for (std::string_view part : parts) {
    if (isAbsolute || !plain.empty()) plain.push_back('/');
    plain += part;
  }
  return plain.empty() ? std::string(isAbsolute ? "/" : ".") : plain;
}

}  // namespace kiln

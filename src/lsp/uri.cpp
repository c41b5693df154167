#include "lsp/uri.h"

#include "base/format.h"
#include "base/hex.h"
#include "base/paths.h"
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
  std::string path = decoded(uri.substr(slash));
  const bool hasDrive = isWindows && path.size() > 2 && path[2] == ':';
  return plainPath(hasDrive ? path.substr(1) : path);
}

std::string uriOfPath(std::string_view path) {
  return concat({scheme, isSeparator(path.front()) ? "" : "/", uriPath(path)});
}

}  // namespace kiln

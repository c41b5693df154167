#include "host/file_reader.h"

#include "base/format.h"
#include "base/paths.h"
#include "base/utf8.h"

namespace kiln {
namespace {

// The end of the message; empty when the file can be used.
std::string_view reasonAgainst(const FileReader& reader, const std::string& path,
                               const std::optional<std::string>& bytes) {
  if (!bytes.has_value()) {
    if (!reader.exists(path)) return "” couldn’t be opened because there is no such file.";
    if (reader.isDirectory(path)) return "” couldn’t be opened.";
    return "” couldn’t be opened because you don’t have permission to view it.";
  }
  return isUtf8(*bytes) ? "" : "” couldn’t be opened using text encoding Unicode (UTF-8).";
}

}  // namespace

TextFile readTextFile(const FileReader& reader, const std::string& path) {
  std::optional<std::string> bytes = reader.readFile(path);
  const std::string_view reason = reasonAgainst(reader, path, bytes);
  if (!reason.empty()) return {"", concat({"The file “", lastComponent(path), reason})};
  return {std::move(*bytes), ""};
}

}  // namespace kiln

// Reading files, and saying why one cannot be used as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiln {

class FileReader {
 public:
  virtual ~FileReader() = default;

  // The whole file's bytes; absent when it cannot be opened or read.
  virtual std::optional<std::string> readFile(const std::string& path) const = 0;
  // True when the path names anything at all.
  virtual bool exists(const std::string& path) const = 0;
  virtual bool isDirectory(const std::string& path) const = 0;
};

// A file read as text: `text` when `error` is empty, otherwise the reason why it cannot be used.
struct TextFile {
  std::string text;
  std::string error;
};

TextFile readTextFile(const FileReader& reader, const std::string& path);

}  // namespace kiln

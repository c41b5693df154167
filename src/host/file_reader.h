// Reading files, and why one cannot be used as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiln {

class FileReader {
 public:
  virtual ~FileReader() = default;

  // All bytes of the file; absent when it cannot be opened or read.
  virtual std::optional<std::string> readFile(const std::string& path) const = 0;
  // True for a file, a directory or anything else with this path.
  virtual bool exists(const std::string& path) const = 0;
  virtual bool isDirectory(const std::string& path) const = 0;
};

// The text of a file, or the reason why it cannot be used: `error` is empty when it can.
struct TextFile {
  std::string text;
  std::string error;
};

TextFile readTextFile(const FileReader& reader, const std::string& path);

}  // namespace kiln

// Everything the program asks of the operating system. The real one is RealHost; the tests bring one that lives in
// memory.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/console.h"
#include "host/file_reader.h"

namespace kiln {

class Host : public FileReader, public Console {
 public:
  // True when the path names, in whatever spelling, a file that this run has read.
  virtual bool wasRead(const std::string& path) const = 0;
  // Creates or replaces the file, with the parts one behind the other in it. False when that fails; then nothing is
  // left behind, and a file that stood there still does.
  virtual bool writeFile(const std::string& path, std::span<const std::string_view> parts) = 0;
  // The names in a directory, "." and ".." left out, in no set order; absent when it cannot be listed.
  virtual std::optional<std::vector<std::string>> listDirectory(const std::string& path) const = 0;
  // The variable's value as it stands; absent when it is not set.
  virtual std::optional<std::string> environment(const std::string& name) const = 0;
};

}  // namespace kiln

// All that the program needs from the operating system. RealHost is the real one; the tests have one in memory.
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
  // True when this run has read the file with this path, even through another path.
  virtual bool wasRead(const std::string& path) const = 0;
  // Creates or replaces the file, with the parts one after another. False when that fails: then there is no new file,
  // and the old one is unchanged.
  virtual bool writeFile(const std::string& path, std::span<const std::string_view> parts) = 0;
  // The names in a directory, without "." and "..", in any order; absent when it cannot be listed.
  virtual std::optional<std::vector<std::string>> listDirectory(const std::string& path) const = 0;
  // The variable's unchanged value; absent when it is not set.
  virtual std::optional<std::string> environment(const std::string& name) const = 0;
};

}  // namespace kiln

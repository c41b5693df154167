#include "driver/home.h"

#include <algorithm>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "base/version.h"

namespace kiln {
namespace {

// Longer values are ignored.
constexpr size_t longestVariable = 4095;

// The value with "/" for "\" and without the blanks and double quotes that shells and Windows may leave around it.
// Absent when it is empty then.
std::optional<std::string> cleanVariable(const Host& host, const std::string& name) {
  const std::optional<std::string> value = host.environment(name);
  if (!value.has_value() || value->size() > longestVariable) return std::nullopt;
  const std::string_view trimmed = trim(*value);
  std::string clean(trimmed.size() < 2 ? trimmed : withoutEnclosing(trimmed, '"', '"'));
  std::replace(clean.begin(), clean.end(), '\\', '/');
  if (clean.empty()) return std::nullopt;
  return clean;
}

std::vector<std::string> homeCandidates(const Host& host, const std::string& programPath) {
  std::vector<std::string> homes;
  for (const char* name : {"KILN_HOME", "TARN_HOME"}) {
    if (std::optional<std::string> value = cleanVariable(host, name)) homes.push_back(std::move(*value));
  }
  const std::string programDirectory = directoryPart(programPath);
  if (!programDirectory.empty()) {
    homes.push_back(programDirectory);
    homes.push_back(joinPaths(programDirectory, ".."));
  }
  homes.emplace_back(".");
  if (const std::optional<std::string> userHome = cleanVariable(host, "HOME")) {
    homes.push_back(joinPaths(*userHome, "kiln"));
    homes.push_back(joinPaths(*userHome, "tarn"));
  }
  homes.push_back(concat({"/opt/kiln/", version}));
  for (const char* path : {"/opt/kiln", "/usr/local/kiln", "/usr/local/tarn", "/opt/tarn"})
    homes.emplace_back(path);
  return homes;
}

}  // namespace

std::optional<std::string> findSupportDirectory(const Host& host, const std::string& programPath) {
  for (const std::string& home : homeCandidates(host, programPath)) {
    for (const char* directory : {"lib/kl", "kl", "support"}) {
      std::string path = joinPaths(home, directory);
      if (host.exists(path)) return path;
    }
  }
  return std::nullopt;
}

std::vector<std::string> listSymbolFiles(const Host& host, const std::string& supportDirectory) {
  std::vector<std::string> paths;
  for (const char* platform : {"atari", "generic"}) {
    const std::string directory = joinPaths(joinPaths(supportDirectory, platform), "symbols");
    std::optional<std::vector<std::string>> names = host.listDirectory(directory);
    if (!names.has_value()) continue;
    std::sort(names->begin(), names->end());
    for (const std::string& name : *names) {
      if (pathExtension(name) == "sym") paths.push_back(concat({directory, "/", name}));
    }
  }
  return paths;
}

}  // namespace kiln

#include "packed_input.h"

#include <algorithm>
#include <string>

namespace kiln::fuzz {
namespace {

constexpr std::string_view marker = "@@";

// Removes everything before the next line that starts with the marker from the input, and returns it.
std::string_view takeText(std::string_view& input) {
  size_t end = 0;
  while (end < input.size() && !input.substr(end).starts_with(marker)) {
    const size_t lineEnd = input.find('\n', end);
    end = lineEnd == std::string_view::npos ? input.size() : lineEnd + 1;
  }
  const std::string_view text = input.substr(0, end);
  input.remove_prefix(end);
  return text;
}

void addFile(test::MemoryHost& host, const std::string& path, std::string_view text) {
  host.files.emplace(path, text);
  for (size_t slash = path.find('/'); slash != std::string::npos; slash = path.find('/', slash + 1))
    host.directories.insert(path.substr(0, slash));
}

}  // namespace

std::string_view unpack(std::string_view input, test::MemoryHost& host) {
  const std::string_view head = takeText(input);
  while (!input.empty()) {
    const std::string_view line = input.substr(0, input.find('\n'));
    input.remove_prefix(std::min(line.size() + 1, input.size()));
    const std::string name(line.substr(marker.size()));
    const std::string_view text = takeText(input);
    if (name.starts_with('$')) {
      host.variables.emplace(name.substr(1), text.substr(0, text.size() - (text.ends_with('\n') ? 1 : 0)));
    } else {
      addFile(host, name, text);
    }
  }
  return head;
}

}  // namespace kiln::fuzz

#include "inspect/depfile.h"

namespace kiln {
namespace {

// Make reads "\#" as "#", so the backslashes directly before such a character are doubled. Elsewhere a backslash is
// itself. A "%" makes a pattern of a target, but not of an input.
void appendPath(std::string& rules, std::string_view path, std::string_view specials) {
  size_t backslashes = 0;
  for (char c : path) {
    if (specials.find(c) != std::string_view::npos) rules.append(backslashes + 1, '\\');
    if (c == '$') rules.push_back('$');
    rules.push_back(c);
    backslashes = c == '\\' ? backslashes + 1 : 0;
  }
}

void appendTarget(std::string& rules, std::string_view path) {
  appendPath(rules, path, " #:%");
  rules.push_back(':');
}

}  // namespace

bool canBeInRule(std::string_view path) {
  return path.find_first_of("\n\r\t;|") == std::string_view::npos && !path.ends_with('\\');
}

std::string renderDepfile(const std::string& output, std::span<const std::string> inputs) {
  std::string rules;
  appendTarget(rules, output);
  for (const std::string& input : inputs) {
    rules += " \\\n  ";
    appendPath(rules, input, " #:");
  }
  rules.push_back('\n');
  for (const std::string& input : inputs) {
    rules.push_back('\n');
    appendTarget(rules, input);
    rules.push_back('\n');
  }
  return rules;
}

}  // namespace kiln

// How a target says that something is wrong: the process ends, and its input is the finding.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace kiln::fuzz {

[[noreturn]] inline void fail(const std::string& what) {
  std::fprintf(stderr, "finding: %s\n", what.c_str());
  std::abort();
}

inline void require(bool holds, std::string_view what) {
  if (!holds) fail(std::string(what));
}

}  // namespace kiln::fuzz

// How a target reports a finding: it prints the reason and aborts, and libFuzzer keeps the input.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace kiln::fuzz {

[[noreturn]] inline void fail(const std::string& reason) {
  std::fprintf(stderr, "finding: %s\n", reason.c_str());
  std::abort();
}

// Fails with the reason unless the condition is true.
inline void require(bool condition, std::string_view reason) {
  if (!condition) fail(std::string(reason));
}

}  // namespace kiln::fuzz

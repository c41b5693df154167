// What functions of the module give to the page.
#pragma once

#include <emscripten/emscripten.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>

namespace kiln::playground {

// Bytes that stay valid until the function that gave them is called again. The page reads both words.
struct Reply {
  const void* data = nullptr;
  size_t size = 0;

  static Reply of(const std::string& text) { return {text.data(), text.size()}; }
};

}  // namespace kiln::playground

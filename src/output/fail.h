// How a writer reports that it cannot write a program.
#pragma once

#include <initializer_list>
#include <string_view>

#include "base/format.h"
#include "host/console.h"

namespace kiln {

// Prints the message; always false.
inline bool fail(Console& console, std::initializer_list<std::string_view> message) {
  console.printError(concat(message));
  return false;
}

}  // namespace kiln

// What the keys of the "[memory]" and "[banking]" sections do. Keys come in lower case, values trimmed; unknown keys
// and values that do not parse change nothing and are not worth a message, as the toolchain's driver reads the same
// file and knows more keys.
#pragma once

#include <string_view>

#include "layout/layout.h"

namespace kiln {

void readMemoryKey(AsLayout& layout, std::string_view key, std::string_view value);

// Any key at all, known or not, marks the layout as a banked one.
void readBankingKey(AsLayout& layout, std::string_view key, std::string_view value);

}  // namespace kiln

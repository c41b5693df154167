// The keys of the "[memory]" and "[banking]" sections. Keys are in lower case, values are trimmed. Unknown keys and
// invalid values change nothing, without a message: the toolchain's driver reads the same files and knows more keys.
#pragma once

#include <string_view>

#include "layout/layout.h"

namespace kiln {

void readMemoryKey(AsLayout& layout, std::string_view key, std::string_view value);

// Any key, even an unknown one, makes the layout a banked one.
void readBankingKey(AsLayout& layout, std::string_view key, std::string_view value);

}  // namespace kiln

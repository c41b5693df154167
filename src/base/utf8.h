// The two rules for what counts as UTF-8.
#pragma once

#include <string_view>

namespace kiln {

// The rule for inputs, layouts and symbol files: right lead and continuation bytes in the right number. Overlong
// three- and four-byte forms, surrogates and values above U+10FFFF pass.
bool isUtf8(std::string_view bytes);

// The rule for included files: well-formed UTF-8, without any of the forms that isUtf8 lets pass.
bool isStrictUtf8(std::string_view bytes);

// The number of UTF-16 code units of the text: continuation bytes count 0, lead bytes of four-byte forms 2, others 1.
size_t utf16Length(std::string_view text);

}  // namespace kiln

// Two rules for valid UTF-8, one for each kind of file.
#pragma once

#include <string_view>

namespace kiln {

// For inputs, layouts and symbol files: lead bytes with the right number of continuation bytes. Also accepts overlong
// three- and four-byte forms, surrogates, and values above U+10FFFF.
bool isUtf8(std::string_view bytes);

// For included files: well-formed UTF-8, without the other forms that isUtf8 accepts.
bool isStrictUtf8(std::string_view bytes);

// The number of UTF-16 code units: continuation bytes count 0, lead bytes of four-byte forms 2, all others 1.
size_t utf16Length(std::string_view text);

}  // namespace kiln

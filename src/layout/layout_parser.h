// Layout files: sections in square brackets, "key = value" lines, "#" comments and "#include" lines. The toolchain's
// driver reads the same files, so unknown sections and keys are ignored.
#pragma once

#include <string>
#include <string_view>

#include "host/file_reader.h"
#include "layout/layout.h"

namespace kiln {

// Reads and parses the file. `error` in the result is the message of readTextFile() when this file, or one that it
// includes, cannot be used as text.
AsLayout loadLayout(const FileReader& files, const std::string& path);

// Adds the contents of the layout file at `path`, which are `text`, and of the files that it includes. Stops at the
// first error, and sets `layout.error` to it.
void parseLayout(AsLayout& layout, const FileReader& files, const std::string& path, std::string_view text);

}  // namespace kiln

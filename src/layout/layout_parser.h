// Layout files: sections in square brackets, "key = value" lines, "#" comments and "#include" lines. The toolchain's
// driver reads the same files, so sections and keys that mean nothing here are passed over.
#pragma once

#include <string>
#include <string_view>

#include "host/file_reader.h"
#include "layout/layout.h"

namespace kiln {

// Reads and parses the file. The result's `error` says what failed: the reader's own message when the file, or one it
// includes, cannot be used as text.
AsLayout loadLayout(const FileReader& files, const std::string& path);

// Adds to `layout` what `text`, the layout file at `path`, and the files it includes say. Stops at the first error and
// leaves it in `layout.error`.
void parseLayout(AsLayout& layout, const FileReader& files, const std::string& path, std::string_view text);

}  // namespace kiln

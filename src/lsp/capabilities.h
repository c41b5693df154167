// What the server tells the editor that it can do.
#pragma once

#include "lsp/json.h"
#include "lsp/text_index.h"

namespace kiln {

Json capabilities(Encoding encoding);

}  // namespace kiln

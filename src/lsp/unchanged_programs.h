// Whether a change of texts changes what programs are.
#pragma once

#include <map>
#include <string>

#include "lsp/session.h"

namespace kiln {

// True when all programs of these documents assemble, and with these texts, by path, make the same bytes and the same
// messages; blanks in messages do not count. Documents that are not open are taken as if they were.
bool areProgramsSame(Session& session, const std::map<std::string, std::string>& texts);

}  // namespace kiln

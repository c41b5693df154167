// "[cloaked]" entries: each names one cloaked segment, or one for every bank of a range.
#pragma once

#include <string_view>

#include "layout/layout.h"

namespace kiln {

// Begins an entry without a bank; its id is "lib" until a key says otherwise.
void openCloakedEntry(AsLayout& layout);

// "bank" and "id" change the open entry; other keys, and a bank that does not parse, change nothing.
void readCloakedKey(AsLayout& layout, std::string_view key, std::string_view value);

// Moves the open entry, if there is one, to the list of ids. When its id and its bank do not fit together, sets the
// layout's error, with `path` in front.
void closeCloakedEntry(AsLayout& layout, std::string_view path);

// Sets the layout's error when an id stands in the list twice; the first one met for the second time is named.
void checkCloakedIds(AsLayout& layout, std::string_view path);

}  // namespace kiln

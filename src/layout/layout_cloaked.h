// "[cloaked]" entries: each names one cloaked segment, or one for every bank of a range.
#pragma once

#include <string_view>

#include "layout/layout.h"

namespace kiln {

// Begins an entry without a bank. Its id is "lib" unless a key sets another.
void openCloakedEntry(AsLayout& layout);

// Sets the bank or the id of the open entry. Other keys and invalid banks change nothing.
void readCloakedKey(AsLayout& layout, std::string_view key, std::string_view value);

// Moves the open entry, if there is one, to the list of ids. Sets the layout's error, which begins with `path`, when
// the id does not fit the bank.
void closeCloakedEntry(AsLayout& layout, std::string_view path);

// Sets the layout's error when an id is in the list twice, and names the first that repeats an earlier one.
void checkCloakedIds(AsLayout& layout, std::string_view path);

}  // namespace kiln

// What can be written at a place.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "lsp/session.h"
#include "lsp/typed_text.h"

namespace kiln {

// The protocol's numbers for the pictures that editors show.
enum class ItemKind : uint8_t {
  Macro = 2,
  Label = 3,
  LocalLabel = 5,
  BuiltIn = 6,
  Bank = 9,
  Word = 14,
  File = 17,
  Folder = 19,
  Constant = 21,
  Parameter = 25,
};

struct CompletionItem {
  std::string label;
  ItemKind kind;
  char group;               // items are shown by group, then by label
  std::string detail = {};  // an address, a value or a macro's parameters
  std::string text = {};    // what is written; empty: the label
  bool isSnippet = false;   // the text has placeholders
};

// The items for the slot, in the order of their groups. `place` is the cursor's place in the target's text.
std::vector<CompletionItem> completionItems(const Session& session, const Target& target, const TypedText& typed,
                                            const char* place);

}  // namespace kiln

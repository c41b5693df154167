// Several texts in one input. A line that begins with "@@" names the text that follows it, up to the next such line;
// what stands before the first one is the head:
//
//     -L
//     a.lnk
//     a.asm
//     @@a.asm
//      LDA #1
//     @@a.lnk
//     [banking]
#pragma once

#include <string_view>
#include <utility>
#include <vector>

namespace kiln::fuzz {

struct PackedInput {
  std::string_view head;
  std::vector<std::pair<std::string_view, std::string_view>> texts;  // name and text, in order; views into the input
};

PackedInput unpack(std::string_view input);

}  // namespace kiln::fuzz

#include "packed_input.h"

#include <algorithm>

namespace kiln::fuzz {
namespace {

// The index of the next line that begins with "@@", or the size of the input.
size_t findName(std::string_view input, size_t from) {
  for (size_t at = from; at < input.size();) {
    if (input.substr(at, 2) == "@@") return at;
    at = std::min(input.find('\n', at), input.size() - 1) + 1;
  }
  return input.size();
}

}  // namespace

PackedInput unpack(std::string_view input) {
  size_t at = findName(input, 0);
  PackedInput packed{input.substr(0, at), {}};
  while (at < input.size()) {
    const size_t nameEnd = std::min(input.find('\n', at), input.size());
    const size_t textBegin = std::min(nameEnd + 1, input.size());
    const size_t textEnd = findName(input, textBegin);
    packed.texts.emplace_back(input.substr(at + 2, nameEnd - at - 2), input.substr(textBegin, textEnd - textBegin));
    at = textEnd;
  }
  return packed;
}

}  // namespace kiln::fuzz

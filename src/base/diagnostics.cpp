#include "base/diagnostics.h"

#include "base/format.h"

namespace kiln {

void MessageList::add(std::initializer_list<std::string_view> pieces) {
  for (std::string_view piece : pieces)
    text_ += piece;
  ends_.push_back(text_.size());
}

std::string_view MessageList::operator[](size_t index) const {
  const size_t begin = index == 0 ? 0 : ends_[index - 1];
  return std::string_view(text_).substr(begin, ends_[index] - begin);
}

void MessageList::clear() {
  ends_.resize(kept_);
  text_.resize(ends_.empty() ? 0 : ends_.back());
}

void Diagnostics::errorAt(uint32_t line, std::initializer_list<std::string_view> pieces) {
  errors.add({mainSourcePath, ":", decimal(line), ": ", concat(pieces)});
}

std::string linePrefix(uint32_t line) { return concat({"line ", decimal(line), ": "}); }

}  // namespace kiln

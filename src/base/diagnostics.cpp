#include "base/diagnostics.h"

#include <algorithm>

#include "base/format.h"

namespace kiln {
namespace {

constexpr size_t smallestBlock = size_t{4} * 1024;
constexpr size_t largestBlock = size_t{1024} * 1024;

}  // namespace

void MessageList::add(std::initializer_list<std::string_view> pieces) {
  size_t size = prefix_.size() + 1;
  for (std::string_view piece : pieces)
    size += piece.size();
  if (blocks_.empty() || blocks_.back().capacity() - blocks_.back().size() < size) {
    const size_t usual = blocks_.empty() ? smallestBlock : std::min(2 * blocks_.back().capacity(), largestBlock);
    blocks_.emplace_back().reserve(std::max(usual, size));
  }
  std::string& block = blocks_.back();
  const size_t begin = block.size() + prefix_.size();
  block += prefix_;
  for (std::string_view piece : pieces)
    block += piece;
  messages_.push_back(std::string_view(block).substr(begin));
  block.push_back('\n');
}

void MessageList::keepRecorded() {
  keptMessages_ = messages_.size();
  keptBlocks_ = blocks_.size();
  keptSize_ = blocks_.empty() ? 0 : blocks_.back().size();
}

void MessageList::clear() {
  messages_.resize(keptMessages_);
  blocks_.resize(keptBlocks_);
  if (!blocks_.empty()) blocks_.back().resize(keptSize_);
}

void Diagnostics::errorAt(uint32_t line, std::initializer_list<std::string_view> pieces) {
  errors.add({mainSourcePath, ":", decimal(line), ": ", concat(pieces)});
}

std::string linePrefix(uint32_t line) { return concat({"line ", decimal(line), ": "}); }

}  // namespace kiln

#include "base/text_store.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace kiln {
namespace {

constexpr size_t largestBlock = size_t{4} * 1024 * 1024;

}  // namespace

std::string_view TextStore::own(std::string&& text) {
  const size_t size = text.size();
  std::string& kept = texts_.emplace_back(std::move(text));
  kept.resize(size + padding);
  return std::string_view(kept).substr(0, size);
}

char* TextStore::allocate(size_t size) {
  if (size > freeSize_ || free_ == nullptr) {
    // A large piece gets a block of its own, and the current block goes on serving the small ones.
    if (size > blockSize_ / 4) return addBlock(size);
    free_ = addBlock(blockSize_);
    freeSize_ = blockSize_;
    blockSize_ = std::min(2 * blockSize_, largestBlock);
  }
  char* const room = free_;
  free_ += size;
  freeSize_ -= size;
  return room;
}

char* TextStore::addBlock(size_t size) {
  if (size > left_) throw std::bad_alloc();
  left_ -= size;
  // Not zeroed, and in a way that every standard library has.
  blocks_.push_back(std::unique_ptr<char[]>(new char[size + padding]));
  return blocks_.back().get();
}

std::string_view TextStore::join(std::initializer_list<std::string_view> pieces) {
  size_t size = 0;
  for (std::string_view piece : pieces)
    size += piece.size();
  char* const room = allocate(size);
  char* end = room;
  for (std::string_view piece : pieces) {
    if (!piece.empty()) std::memcpy(end, piece.data(), piece.size());
    end += piece.size();
  }
  return {room, size};
}

}  // namespace kiln

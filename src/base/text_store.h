// Owns text for the length of a run: source files whole, and the small pieces made from them. What it has taken never
// moves, so views into it stay good until the store goes.
#pragma once

#include <cstdint>
#include <deque>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace kiln {

class TextStore {
 public:
  // So many bytes after each text are readable, so that a text may be read in whole blocks. Their values mean nothing.
  static constexpr size_t padding = 64;

  // Takes a whole text over. It is not copied when its capacity has room for the padding.
  std::string_view own(std::string&& text);

  // The pieces, one after the other, as one kept text. Throws std::bad_alloc beyond 4 GB in all: what small sources
  // can ask for, such as a name of a megabyte in front of each of its local labels, shall not take the machine with it.
  std::string_view join(std::initializer_list<std::string_view> pieces);

  // Room for `size` characters that the caller fills; throws likewise.
  char* allocate(size_t size);

 private:
  char* addBlock(size_t size);

  std::deque<std::string> texts_;
  std::vector<std::unique_ptr<char[]>> blocks_;
  char* free_ = nullptr;
  size_t freeSize_ = 0;
  // Of the next one: few texts need little, and many are quicker in few large blocks.
  size_t blockSize_ = size_t{64} * 1024;
  uint64_t left_ = (uint64_t{1} << 32) - 1;  // so that 32 bits hold the length of every piece
};

}  // namespace kiln

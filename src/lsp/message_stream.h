// The frames of the protocol: a header with the length of a message, an empty line, the message.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace kiln {

class MessageStream {
 public:
  // Takes bytes as they arrive.
  void add(std::string_view bytes) { pending_ += bytes; }

  // The next message; absent until more bytes arrive. A header that gives no length is skipped, and an empty message
  // stands for it.
  std::optional<std::string> next();

 private:
  std::string pending_;
  size_t taken_ = 0;              // bytes at the front that are done with
  std::optional<size_t> length_;  // of the message whose header has been read
};

// A message with its header.
std::string framed(std::string_view message);

}  // namespace kiln

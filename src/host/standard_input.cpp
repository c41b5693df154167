#include "host/standard_input.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace kiln {

size_t readStandardInput(std::span<char> buffer) {
  while (true) {
    const ssize_t count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count >= 0) return static_cast<size_t>(count);
    if (errno != EINTR) return 0;
  }
}

bool hasStandardInput() {
  pollfd input{STDIN_FILENO, POLLIN, 0};
  return ::poll(&input, 1, 0) > 0;
}

}  // namespace kiln

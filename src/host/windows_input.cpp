#include <windows.h>

#include "host/standard_input.h"

namespace kiln {

size_t readStandardInput(std::span<char> buffer) {
  DWORD count = 0;
  ::ReadFile(::GetStdHandle(STD_INPUT_HANDLE), buffer.data(), static_cast<DWORD>(buffer.size()), &count, nullptr);
  return count;
}

bool hasStandardInput() {
  const HANDLE input = ::GetStdHandle(STD_INPUT_HANDLE);
  DWORD count = 0;
  // At the end of a pipe this fails, and so does reading, at once.
  return ::GetFileType(input) != FILE_TYPE_PIPE || ::PeekNamedPipe(input, nullptr, 0, nullptr, &count, nullptr) == 0 ||
         count > 0;
}

}  // namespace kiln

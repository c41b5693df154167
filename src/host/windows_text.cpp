#include "host/windows_text.h"

#include <windows.h>

namespace kiln {
namespace {

// With the folder that it is relative to. Leaves room for a short file name behind a folder's path.
constexpr DWORD longestPlainPath = 247;

}  // namespace

std::wstring toWide(std::string_view utf8) {
  const int size = static_cast<int>(utf8.size());
  std::wstring wide(static_cast<size_t>(::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, nullptr, 0)), L'\0');
  ::MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::string toUtf8(std::wstring_view wide) {
  const int size = static_cast<int>(wide.size());
  const int count = ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr);
  std::string utf8(static_cast<size_t>(count), '\0');
  ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, utf8.data(), count, nullptr, nullptr);
  return utf8;
}

std::optional<std::wstring> systemPath(const std::string& path) {
  if (path.find('\0') != std::string::npos) return std::nullopt;
  std::wstring name = toWide(path);
  if (name.starts_with(L"\\\\?\\")) return name;
  const DWORD size = ::GetFullPathNameW(name.c_str(), 0, nullptr, nullptr);
  if (size <= longestPlainPath) return name;
  std::wstring full(size, L'\0');
  full.resize(::GetFullPathNameW(name.c_str(), size, full.data(), nullptr));
  return full.starts_with(L"\\\\") ? L"\\\\?\\UNC\\" + full.substr(2) : L"\\\\?\\" + full;
}

}  // namespace kiln

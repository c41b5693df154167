#include "library/memory_files.h"

#include <utility>

namespace kiln {

void MemoryFiles::add(const std::string& path, std::string bytes) {
  files_.insert_or_assign(path, File{std::move(bytes), isReaderAsked_});
}

void MemoryFiles::begin() {
  std::erase_if(files_, [](const auto& entry) { return entry.second.isFromReader; });
  read_.clear();
  printed_.clear();
}

std::optional<std::string> MemoryFiles::readFile(const std::string& path) const {
  const File* const file = find(path);
  if (file == nullptr) return std::nullopt;
  read_.insert(path);
  return file->bytes;
}

const MemoryFiles::File* MemoryFiles::find(const std::string& path) const {
  auto file = files_.find(path);
  if (file == files_.end() && reader && !isReaderAsked_) {
    isReaderAsked_ = true;
    reader(path);
    isReaderAsked_ = false;
    file = files_.find(path);
  }
  return file == files_.end() ? nullptr : &file->second;
}

}  // namespace kiln

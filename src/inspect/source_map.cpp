#include "inspect/source_map.h"

#include <algorithm>
#include <functional>
#include <unordered_map>

namespace kiln {
namespace {

// Pointers into different texts have no order of their own.
bool isBefore(const char* a, const char* b) { return std::less<>()(a, b); }

bool isIn(const char* at, std::string_view text) {
  return !isBefore(at, text.data()) && !isBefore(text.data() + text.size(), at);
}

}  // namespace

SourceMap::SourceMap(const SourceNotes& notes) : notes_(&notes) {
  std::unordered_map<std::string_view, const SourceNotes::File*> byPath;
  for (const SourceNotes::File& file : notes.files)
    files_.push_back({&file, byPath.try_emplace(file.path, &file).first->second, {}});
  std::sort(files_.begin(), files_.end(),
            [](const FileLines& a, const FileLines& b) { return isBefore(a.file->text.data(), b.file->text.data()); });
}

const SourceMap::FileLines* SourceMap::fileWith(const char* at) const {
  const auto after = std::upper_bound(files_.begin(), files_.end(), at, [](const char* a, const FileLines& lines) {
    return isBefore(a, lines.file->text.data());
  });
  if (after == files_.begin()) return nullptr;
  const FileLines& lines = *std::prev(after);
  return isIn(at, lines.file->text) ? &lines : nullptr;
}

const std::vector<uint32_t>& SourceMap::startsOf(const FileLines& lines) {
  if (!lines.starts.empty()) return lines.starts;
  lines.starts.push_back(0);
  const std::string_view text = lines.file->text;
  for (size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n', end + 1))
    lines.starts.push_back(static_cast<uint32_t>(end + 1));
  return lines.starts;
}

const SourceNotes::File* SourceMap::fileOf(std::string_view text) const {
  const FileLines* const lines = text.data() == nullptr ? nullptr : fileWith(text.data());
  return lines == nullptr ? nullptr : lines->file;
}

Place SourceMap::placeOf(std::string_view text) const {
  const FileLines* const lines = text.data() == nullptr ? nullptr : fileWith(text.data());
  if (lines == nullptr) return {};
  const std::vector<uint32_t>& starts = startsOf(*lines);
  const auto at = static_cast<uint32_t>(text.data() - lines->file->text.data());
  const auto line = std::upper_bound(starts.begin(), starts.end(), at) - starts.begin();
  const uint32_t column = at - starts[static_cast<size_t>(line - 1)] + 1;
  const auto width = static_cast<uint32_t>(text.substr(0, text.find('\n')).size());
  return {lines->named, static_cast<uint32_t>(line), column, column + width};
}

const std::vector<const SourceNotes::Made*>& SourceMap::made() const {
  if (!made_.empty()) return made_;
  made_.reserve(notes_->made.size());
  for (const SourceNotes::Made& made : notes_->made)
    made_.push_back(&made);
  std::stable_sort(made_.begin(), made_.end(), [](const SourceNotes::Made* a, const SourceNotes::Made* b) {
    return isBefore(a->text.data(), b->text.data());
  });
  return made_;
}

const SourceNotes::Made* SourceMap::madeLine(std::string_view text) const {
  if (text.data() == nullptr || fileWith(text.data()) != nullptr) return nullptr;
  auto after = std::upper_bound(made().begin(), made().end(), text.data(),
                                [](const char* a, const auto* made) { return isBefore(a, made->text.data()); });
  if (after == made().begin()) return nullptr;
  const SourceNotes::Made* const made = *std::prev(after);
  return isIn(text.data(), made->text) ? made : nullptr;
}

std::string_view SourceMap::originOf(std::string_view text) const {
  while (const SourceNotes::Made* const made = madeLine(text))
    text = made->origin;
  return text.data() != nullptr && fileWith(text.data()) != nullptr ? text : std::string_view();
}

std::string_view SourceMap::lineOf(const SourceNotes::File& file, uint32_t line) const {
  const FileLines* const lines = fileWith(file.text.data());
  if (lines == nullptr || line == 0) return {};
  const std::vector<uint32_t>& starts = startsOf(*lines);
  if (line > starts.size()) return {};
  const uint32_t start = starts[line - 1];
  return line == starts.size() ? file.text.substr(start) : file.text.substr(start, starts[line] - 1 - start);
}

}  // namespace kiln

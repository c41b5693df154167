#include "inspect/file_walk.h"

#include <algorithm>

namespace kiln {

FileWalk::FileWalk(const SourceNotes& notes) : notes_(notes) {
  const auto isInclude = [](const SourceNotes::File& file) { return file.includeLine.data() != nullptr; };
  const auto include = std::find_if(notes.files.begin(), notes.files.end(), isInclude);
  inputCount_ = nextInclude_ = static_cast<size_t>(include - notes.files.begin());
}

// Leaves the files that have been read, and opens the next input after the last of them.
bool FileWalk::openNext() {
  while (!open_.empty() && open_.back().at >= open_.back().file->text.size())
    open_.pop_back();
  while (open_.empty() && nextInput_ < inputCount_) {
    const SourceNotes::File& file = notes_.files[nextInput_++];
    if (!file.text.empty()) open_.push_back({&file});
  }
  return !open_.empty();
}

bool FileWalk::next(Line& line) {
  if (!openNext()) return false;
  OpenFile& file = open_.back();
  const std::string_view rest = file.file->text.substr(file.at);
  const size_t end = std::min(rest.find('\n'), rest.size());
  line = {file.file, ++file.linesRead, rest.substr(0, end)};
  file.at += end + 1;
  const bool includes =
      nextInclude_ < notes_.files.size() && notes_.files[nextInclude_].includeLine.data() == line.text.data();
  if (includes) open_.push_back({&notes_.files[nextInclude_++]});
  return true;
}

}  // namespace kiln

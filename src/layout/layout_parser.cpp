// A file is read twice. First its "#include" lines: each of these layouts sets what is not set yet. Then its own
// sections and keys, which therefore override all includes, even those on later lines. Files include each other to any
// depth, so the unfinished ones are on an explicit stack.
#include "layout/layout_parser.h"

#include <cstdint>
#include <deque>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "base/format.h"
#include "base/paths.h"
#include "base/text.h"
#include "layout/layout_cloaked.h"
#include "layout/layout_keys.h"

namespace kiln {
namespace {

// Also removes the carriage return of a Windows line end.
std::string_view trimLine(std::string_view line) {
  line = trim(line);
  if (line.ends_with('\r')) line.remove_suffix(1);
  return trimRight(line);
}

enum class Section : uint8_t { None, Memory, Banking, Cloaked, Other };

Section sectionOf(std::string_view name) {
  if (equalIgnoringCase(name, "memory")) return Section::Memory;
  if (equalIgnoringCase(name, "banking")) return Section::Banking;
  return equalIgnoringCase(name, "cloaked") ? Section::Cloaked : Section::Other;
}

// Reads the sections and keys of one file, up to the first error.
class KeyReader {
 public:
  KeyReader(AsLayout& layout, std::string_view path) : layout_(layout), path_(path) {}

  void read(std::string_view text) {
    Fields lines(text, '\n');
    std::string_view line;
    while (layout_.error.empty() && lines.next(line)) {
      ++lineNumber_;
      line = trimLine(line.substr(0, line.find('#')));
      if (!line.empty()) readLine(line);
    }
    if (layout_.error.empty()) closeCloakedEntry(layout_, path_);
    if (layout_.error.empty()) checkCloakedIds(layout_, path_);
  }

 private:
  void readLine(std::string_view line) {
    if (line.front() == '[' && line.back() == ']') return openSection(line.substr(1, line.size() - 2));
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos) return failAtLine({"expected 'key = value'"});
    readKey(toLower(trimRight(line.substr(0, equals))), trimLeft(line.substr(equals + 1)));
  }

  void openSection(std::string_view name) {
    closeCloakedEntry(layout_, path_);
    section_ = sectionOf(name);
    if (section_ == Section::Cloaked) openCloakedEntry(layout_);
  }

  void readKey(std::string_view key, std::string_view value) {
    switch (section_) {
      case Section::None:
        return failAtLine({"key '", key, "' outside any section"});
      case Section::Memory:
        return readMemoryKey(layout_, key, value);
      case Section::Banking:
        return readBankingKey(layout_, key, value);
      case Section::Cloaked:
        return readCloakedKey(layout_, key, value);
      case Section::Other:
        return;
    }
  }

  void failAtLine(std::initializer_list<std::string_view> pieces) {
    layout_.error = concat({path_, ":", decimal(lineNumber_), ": ", concat(pieces)});
  }

  AsLayout& layout_;
  std::string_view path_;
  Section section_ = Section::None;
  int64_t lineNumber_ = 0;
};

// The name in an "#include" line: all text between its first and last quote. Absent for other lines.
std::optional<std::string_view> includedName(std::string_view line) {
  line = trimLine(line);
  const size_t first = line.find('"');
  const size_t last = line.rfind('"');
  if (!line.starts_with("#include") || first == last) return std::nullopt;
  return line.substr(first + 1, last - first - 1);
}

// The path in the including file's folder or, if the file is not there but in "layouts" in that folder, the path there.
std::string resolveInclude(const FileReader& files, const std::string& includingPath, std::string_view name) {
  const std::string directory = directoryPart(includingPath);
  std::string beside = joinPaths(directory, name);
  if (files.exists(beside)) return beside;
  std::string below = joinPaths(joinPaths(directory, "layouts"), name);
  return files.exists(below) ? below : beside;
}

// An unfinished file. It must not move, as `lines` points into `text`.
struct OpenLayout {
  OpenLayout(std::string itsPath, std::string itsText)
      : path(std::move(itsPath)), text(std::move(itsText)), lines(text, '\n') {}

  std::string path;
  std::string text;
  Fields lines;  // those not yet searched for "#include"
  AsLayout layout;
};

class LayoutLoader {
 public:
  explicit LayoutLoader(const FileReader& files) : files_(files) {}

  AsLayout load(const std::string& path, std::string text, AsLayout layout) {
    open(path, std::move(text));
    open_.back().layout = std::move(layout);
    for (;;) {
      OpenLayout& top = open_.back();
      std::string_view line;
      if (top.layout.error.empty() && top.lines.next(line)) {
        if (const std::optional<std::string_view> name = includedName(line)) include(top, *name);
        continue;
      }
      KeyReader(top.layout, top.path).read(top.text);
      if (open_.size() == 1) return std::move(top.layout);
      closeTop();
    }
  }

 private:
  void open(const std::string& path, std::string text) {
    open_.emplace_back(path, std::move(text));
    openIdentities_.insert(plainPath(path));
  }

  // Merges a finished file. Opens any other, which is read before the rest of `top`.
  void include(OpenLayout& top, std::string_view name) {
    const std::string path = resolveInclude(files_, top.path, name);
    if (openIdentities_.contains(plainPath(path))) {
      top.layout.error = concat({top.path, ": #include of '", name, "' never ends"});
    } else if (const auto known = finished_.find(path); known != finished_.end()) {
      mergeLayout(top.layout, known->second);
    } else {
      TextFile file = readTextFile(files_, path);
      top.layout.error = std::move(file.error);
      if (top.layout.error.empty()) open(path, std::move(file.text));
    }
  }

  // Merges the finished file at the top into the one that includes it.
  void closeTop() {
    const OpenLayout& top = open_.back();
    OpenLayout& below = open_[open_.size() - 2];
    below.layout.error = top.layout.error;
    mergeLayout(below.layout, top.layout);
    mergeLayout(finished_[top.path], top.layout);
    openIdentities_.erase(plainPath(top.path));
    open_.pop_back();
  }

  const FileReader& files_;
  std::deque<OpenLayout> open_;
  std::unordered_set<std::string> openIdentities_;
  // By path. Only for hostile files: where each one includes the next one twice, the reads would double with each file.
  std::unordered_map<std::string, AsLayout> finished_;
};

}  // namespace

AsLayout loadLayout(const FileReader& files, const std::string& path) {
  TextFile file = readTextFile(files, path);
  AsLayout layout;
  layout.error = std::move(file.error);
  if (layout.error.empty()) parseLayout(layout, files, path, file.text);
  return layout;
}

void parseLayout(AsLayout& layout, const FileReader& files, const std::string& path, std::string_view text) {
  layout = LayoutLoader(files).load(path, std::string(text), std::move(layout));
}

}  // namespace kiln

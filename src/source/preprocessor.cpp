// Turns the inputs into the flat list of lines that the passes read. Three things make that more than copying:
//
//     .include "a"     the lines of a file come in place of this one
//     .macro m p       the indented lines below it are collected, and removed
//     m 5              the collected lines come in place of this one, with 5 for every p
//
// Macro calls are found only when a file has been read to its end: a macro serves all lines of its file, those above it
// too, and all files that include the file. So the lines of an included file are searched once for each level of
// inclusion. To search them only when macros have been defined since, the ranges that hold no call are remembered.
//
// Files wait on a stack of their own while an include is read, so they may nest to any depth. A file that includes
// itself with the same text is an error, because it never ends. Files that merely double what the one before has made
// end with the room for expansion, or with the number of includes.
//
// Nearly all lines are neither .macro nor .include, and nearly all files call no macro. Both are kept as they are: the
// list holds pieces of the file's text.
#include "source/preprocessor.h"

#include <algorithm>
#include <utility>

#include "base/byte_block.h"
#include "base/text.h"
#include "source/includes.h"
#include "source/statements.h"

namespace kiln {
namespace {

constexpr std::string_view macroWord = ".macro ";
constexpr std::string_view includeWord = ".include ";

// Characters that are searched for directives before their lines are counted: so few that they stay in the cache (3 %
// of the time of a source of data lists).
constexpr size_t window = size_t{64} * 1024;

// The text after `word` when the line, without its leading blanks, begins with that word in any letter case once its
// comment is off and it is trimmed; null data when it does not.
std::string_view argumentOf(std::string_view start, std::string_view word) {
  if (!startsWithIgnoringCase(start, word)) return {};
  const std::string_view form = trim(withoutComment(start));
  return form.size() < word.size() ? std::string_view{} : trim(form.substr(word.size()));
}

// The begin of the first line, at or after `from`, that may be a .macro or an .include; past the end of the text when
// there is none. `from` is where a line begins. Looking for the dots is quicker than looking at each line (a tenth of
// the time of a million plain lines).
size_t findDirective(std::string_view text, size_t from) {
  for (size_t dot = text.find('.', from); dot != std::string_view::npos; dot = text.find('.', dot + 1)) {
    const char second = dot + 1 < text.size() ? toLower(text[dot + 1]) : '\n';
    if (second != macroWord[1] && second != includeWord[1]) continue;
    size_t begin = dot;
    while (begin > from && isBlank(text[begin - 1]))
      --begin;
    if (begin == from || text[begin - 1] == '\n') return begin;
  }
  return text.size() + 1;
}

// The end of the last line that ends in the window at `from`, where a line begins, or of that line when it is longer.
size_t windowEnd(std::string_view text, size_t from) {
  if (text.size() - from <= window) return text.size();
  const size_t end = text.rfind('\n', from + window);
  return end != std::string_view::npos && end >= from ? end : std::min(text.find('\n', from + window), text.size());
}

size_t countLineEnds(std::string_view text) {
  if constexpr (!hasFastBlocks) return static_cast<size_t>(std::count(text.begin(), text.end(), '\n'));
  size_t count = 0;
  for (size_t at = 0; at < text.size(); at += 64) {
    const uint64_t ends = ByteBlock<4>(text.data() + at).equalTo('\n') & lowestBits(text.size() - at);
    count += countBits(ends);
  }
  return count;
}

}  // namespace

SourceLines Preprocessor::run(std::string_view text, std::string_view path) {
  open(text, path);
  while (!openFiles_.empty()) {
    OpenFile& file = openFiles_.back();
    if (file.next > file.text.size()) {
      closeFile();
      continue;
    }
    if (file.openMacro == nullptr && keepPlainLines(file)) continue;
    const size_t end = std::min(file.text.find('\n', file.next), file.text.size());
    const std::string_view line = file.text.substr(file.next, end - file.next);
    file.next = end + 1;
    readLine(file, line);
  }
  if (notes_ != nullptr) notes_->macros = std::move(macros_);
  return std::move(lines_);
}

// Keeps the lines of a window before the next one that may be a .macro or an .include; false when there are none.
bool Preprocessor::keepPlainLines(OpenFile& file) {
  const std::string_view text = file.text.substr(0, windowEnd(file.text, file.next));
  const size_t end = findDirective(text, file.next);
  if (end == file.next) return false;
  keepLines(file, text.substr(file.next, end - 1 - file.next));
  file.next = end;
  return true;
}

void Preprocessor::keepLines(OpenFile& file, std::string_view lines) {
  const size_t count = countLineEnds(lines) + 1;
  if (file.follows) {
    lines_.addNext(lines, count);
  } else {
    lines_.add(lines, count);
  }
  file.follows = true;
}

void Preprocessor::readLine(OpenFile& file, std::string_view line) {
  const std::string_view start = trimLeft(line);
  const bool mayDirect = !start.empty() && start.front() == '.';
  if (!mayDirect && file.openMacro == nullptr) return keepLines(file, line);
  const bool follows = std::exchange(file.follows, false);
  const std::string_view macroHead = argumentOf(start, macroWord);
  if (macroHead.data() != nullptr) {
    file.openMacro = &macros_.define(macroHead);
    return;
  }
  if (file.openMacro != nullptr && !line.empty() && isBlank(line.front())) {
    file.openMacro->addLine(line);
    return;
  }
  file.openMacro = nullptr;
  const std::string_view includeArgument = argumentOf(start, includeWord);
  if (includeArgument.data() == nullptr) {
    file.follows = follows;
    keepLines(file, line);
  } else {
    include(includeArgument, line, file.path);
  }
}

void Preprocessor::include(std::string_view argument, std::string_view line, std::string_view includingPath) {
  const std::string_view name = includeName(argument);
  std::optional<IncludedFile> found = findInclude(files_, includePaths_, name, includingPath);
  if (!found.has_value()) {
    errors_.add({"Cannot find include file '", name, "'"});
    return noteError(line);
  }
  const auto same = openTexts_.find(name);
  if (same != openTexts_.end() &&
      std::find(same->second.begin(), same->second.end(), found->text) != same->second.end()) {
    errors_.add({"Cannot include '", name, "': it includes itself"});
    return noteError(line);
  }
  if (includesLeft_ == 0) return giveUp("it includes more than 2,097,152 files");
  --includesLeft_;
  if (room_.take(found->text.size())) {
    open(texts_.own(std::move(found->text)), name);
    if (notes_ != nullptr) notes_->files.push_back({openFiles_.back().text, std::move(found->path), line});
  }
  giveUpIfExhausted();
}

void Preprocessor::noteError(std::string_view line) {
  if (notes_ != nullptr) notes_->errorLines.push_back(line);
}

void Preprocessor::open(std::string_view text, std::string_view path) {
  openFiles_.push_back({.path = path, .text = text, .firstPiece = lines_.pieces().size()});
  openTexts_[path].push_back(text);
}

void Preprocessor::closeFile() {
  const OpenFile file = openFiles_.back();
  openFiles_.pop_back();
  openTexts_[file.path].pop_back();
  if (macros_.count() != 0) expandFrom(file.firstPiece);
}

// Lines that an inner level has found to call no macro can call one now only when macros have been defined since.
void Preprocessor::expandFrom(size_t begin) {
  const size_t call = findUnsettledCall(begin);
  while (!settled_.empty() && settled_.back().begin >= begin)
    settled_.pop_back();
  if (call > begin) settled_.push_back({begin, call, macros_.count()});
  if (call == lines_.pieces().size()) return;
  MacroExpander(texts_, room_, notes_).expand(macros_, lines_, call);
  giveUpIfExhausted();
}

void Preprocessor::giveUpIfExhausted() {
  if (room_.isExhausted()) giveUp("its macros and includes make more than 1 GB of it");
}

void Preprocessor::giveUp(std::string_view reason) {
  errors_.add({"The source is too large: ", reason});
  noteError({});
  openFiles_.clear();
  lines_ = {};
}

size_t Preprocessor::findUnsettledCall(size_t begin) const {
  auto range = std::lower_bound(settled_.begin(), settled_.end(), begin,
                                [](const Settled& settled, size_t piece) { return settled.begin < piece; });
  size_t at = begin;
  for (; range != settled_.end(); ++range) {
    if (range->macroCount != macros_.count()) continue;
    const size_t call = findMacroCall(macros_, lines_, at, range->begin);
    if (call < range->begin) return call;
    at = range->end;
  }
  return findMacroCall(macros_, lines_, at, lines_.pieces().size());
}

}  // namespace kiln

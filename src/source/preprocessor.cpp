#include "source/preprocessor.h"

#include <algorithm>
#include <utility>

#include "base/text.h"
#include "source/includes.h"
#include "source/statements.h"

namespace kiln {
namespace {

constexpr std::string_view macroWord = ".macro ";
constexpr std::string_view includeWord = ".include ";

// What follows `word` when the line, whose leading blanks are gone, begins with it in any letter case once its comment
// is off and it is trimmed; null data when it does not.
std::string_view argumentOf(std::string_view start, std::string_view word) {
  if (!startsWithIgnoringCase(start, word)) return {};
  const std::string_view form = trim(withoutComment(start));
  return form.size() < word.size() ? std::string_view{} : trim(form.substr(word.size()));
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
    const size_t end = std::min(file.text.find('\n', file.next), file.text.size());
    const std::string_view line = file.text.substr(file.next, end - file.next);
    file.next = end + 1;
    readLine(file, line);
  }
  return std::move(lines_);
}

void Preprocessor::readLine(OpenFile& file, std::string_view line) {
  const std::string_view start = trimLeft(line);
  const bool mayDirect = !start.empty() && start.front() == '.';
  if (!mayDirect && file.openMacro == nullptr) return keepLine(file, line);
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
    keepLine(file, line);
  } else {
    include(includeArgument, file.path);
  }
}

void Preprocessor::keepLine(OpenFile& file, std::string_view line) {
  appendLine(lines_, line, file.follows);
  file.follows = true;
}

void Preprocessor::include(std::string_view argument, std::string_view includingPath) {
  const std::string_view name = includeName(argument);
  std::optional<std::string> found = findInclude(files_, includePaths_, name, includingPath);
  if (!found.has_value()) {
    errors_.add({"Cannot find include file '", name, "'"});
    return;
  }
  const auto same = openTexts_.find(name);
  if (same != openTexts_.end() && std::find(same->second.begin(), same->second.end(), *found) != same->second.end()) {
    errors_.add({"Cannot include '", name, "': it includes itself"});
    return;
  }
  if (includesLeft_ == 0) return giveUp("it includes more than 2,097,152 files");
  --includesLeft_;
  if (room_.take(found->size())) open(texts_.own(std::move(*found)), name);
  giveUpIfExhausted();
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

// Each level of inclusion looks for macro calls in all its lines again. Lines that an inner level has found to call
// none can have changed their meaning only when macros have been defined since.
void Preprocessor::expandFrom(size_t begin) {
  const size_t call = findUnsettledCall(begin);
  while (!settled_.empty() && settled_.back().begin >= begin)
    settled_.pop_back();
  if (call > begin) settled_.push_back({begin, call, macros_.count()});
  if (call == lines_.pieces().size()) return;
  MacroExpander(texts_, room_).expand(macros_, lines_, call);
  giveUpIfExhausted();
}

void Preprocessor::giveUpIfExhausted() {
  if (room_.isExhausted()) giveUp("its macros and includes make more than 1 GB of it");
}

void Preprocessor::giveUp(std::string_view reason) {
  errors_.add({"The source is too large: ", reason});
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

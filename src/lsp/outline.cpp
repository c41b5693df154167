#include "lsp/outline.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <unordered_map>
#include <utility>

#include "base/text.h"
#include "inspect/name_text.h"
#include "source/line_text.h"
#include "source/statements.h"

namespace kiln {
namespace {

// Where the text is in a file; a rewriter may have made its line of another one. Null data for what a macro makes.
std::string_view ownPlace(const SourceMap& map, std::string_view text) {
  while (const SourceNotes::Made* const made = map.madeLine(text)) {
    if (made->pattern.data() != nullptr) return {};
    text = findWhole(made->origin, text);
  }
  return map.fileOf(text) == nullptr ? std::string_view() : text;
}

// Of each statement, whether the next bytes are those of an instruction.
std::vector<bool> findCode(const std::vector<Statement>& statements) {
  std::vector<bool> isCode(statements.size());
  bool isCodeNext = false;
  for (size_t i = statements.size(); i-- != 0;) {
    const Kind kind = statements[i].parsed->kind;
    if (emitsBytes(kind)) isCodeNext = kind == Kind::Instruction;
    isCode[i] = isCodeNext;
  }
  return isCode;
}

class ItemList {
 public:
  explicit ItemList(const Analysis& analysis) : analysis_(analysis) {}

  void add(OutlineItem item) {
    item.text = ownPlace(analysis_.map(), item.text);
    if (!item.text.empty()) items_.push_back(item);
  }

  void addStatement(const Statement& statement, bool isCode) {
    const AsLine& line = *statement.parsed;
    if (line.hasLabel && !statement.label.starts_with(longBranchLabel)) {
      const OutlineKind full = isCode ? OutlineKind::Code : OutlineKind::Data;
      add({line.labelLocal ? OutlineKind::LocalLabel : full, statement.symbol.text(), statement.scope,
           statement.label});
    }
    if (line.kind == Kind::Assign) {
      const std::string_view name = line.assignName();
      add({OutlineKind::Assignment, name, {}, statement.rest.substr(0, name.size())});
    }
    if (line.kind == Kind::Bank) add({OutlineKind::Bank, statement.argument, {}, statement.rest});
    if (line.kind == Kind::CodeRegions) add({OutlineKind::Region, statement.argument, {}, statement.rest});
    if (line.kind != Kind::Bank && rowOf(line.kind).moves) add({OutlineKind::Move, {}, {}, statement.rest});
  }

  std::vector<OutlineItem> take() { return std::move(items_); }

 private:
  const Analysis& analysis_;
  std::vector<OutlineItem> items_;
};

// Goes through the lines of a file and its items side by side.
class FileOutline {
 public:
  FileOutline(const Analysis& analysis, const SourceNotes::File& file) : file_(file) {
    for (const OutlineItem& item : outlineOf(analysis)) {
      if (analysis.map().fileOf(item.text) == &file) items_.push_back(item);
    }
    std::stable_sort(items_.begin(), items_.end(), [](const OutlineItem& a, const OutlineItem& b) {
      return std::less<>()(a.text.data(), b.text.data());
    });
    for (const Macro& macro : analysis.program().notes.macros.all()) {
      if (macro.body.empty() || analysis.map().fileOf(macro.head) != &file) continue;
      const std::string_view last = macro.body.back().text;
      macroEnds_.emplace(trimLeft(macro.head).data(), offsetOf(last) + last.size());
    }
  }

  std::vector<OutlinePart> build() {
    splitLines();
    for (Line& line : lines_) {
      for (size_t i = line.firstItem; i < line.lastItem; ++i)
        open(items_[i], line);
      if (line.isCode) extend(line.end);
    }
    return std::move(parts_);
  }

 private:
  struct Line {
    size_t begin;
    size_t end;
    size_t firstItem;
    size_t lastItem;
    bool isCode;      // of the label that it is in
    bool isInside;    // code follows that is part of the same label
    size_t macroEnd;  // of a macro's first line: where the macro ends; else 0
  };

  size_t offsetOf(std::string_view text) const { return static_cast<size_t>(text.data() - file_.text.data()); }

  void splitLines() {
    size_t item = 0;
    size_t inMacroTo = 0;
    Fields fields(file_.text, '\n');
    std::string_view text;
    while (fields.next(text)) {
      Line line{offsetOf(text), offsetOf(text) + text.size(), item, item, false, false, 0};
      while (item < items_.size() && offsetOf(items_[item].text) <= line.end)
        ++item;
      line.lastItem = item;
      const bool isMacro = hasKind(line, OutlineKind::Macro);
      if (isMacro) inMacroTo = line.macroEnd = macroEndOf(items_[line.firstItem]);
      const bool isAssignment = hasKind(line, OutlineKind::Assignment) && line.lastItem == line.firstItem + 1;
      line.isCode =
          !isMacro && line.begin >= inMacroTo && !isAssignment && !trimWhitespace(withoutComment(text)).empty();
      lines_.push_back(line);
    }
    bool isFollowed = false;
    for (size_t i = lines_.size(); i-- != 0;) {
      Line& line = lines_[i];
      line.isInside = isFollowed;
      if (line.isCode) isFollowed = true;
      if (endsLabel(line)) isFollowed = false;
    }
    for (Line& line : lines_)
      line.isCode = line.isCode || (line.isInside && hasKind(line, OutlineKind::Assignment));
  }

  size_t macroEndOf(const OutlineItem& macro) const {
    const auto end = macroEnds_.find(macro.text.data());
    return end == macroEnds_.end() ? 0 : end->second;
  }

  bool hasKind(const Line& line, OutlineKind kind) const {
    return std::any_of(items_.begin() + static_cast<std::ptrdiff_t>(line.firstItem),
                       items_.begin() + static_cast<std::ptrdiff_t>(line.lastItem),
                       [kind](const OutlineItem& item) { return item.kind == kind; });
  }

  static bool endsLabel(OutlineKind kind) { return kind != OutlineKind::LocalLabel && kind != OutlineKind::Assignment; }
  bool endsLabel(const Line& line) const {
    return std::any_of(items_.begin() + static_cast<std::ptrdiff_t>(line.firstItem),
                       items_.begin() + static_cast<std::ptrdiff_t>(line.lastItem),
                       [](const OutlineItem& item) { return endsLabel(item.kind); });
  }

  void open(const OutlineItem& item, const Line& line) {
    using enum OutlineKind;
    local_.reset();
    if (endsLabel(item.kind)) label_.reset();
    if (item.kind == Bank || item.kind == Move) bank_.reset();
    if (item.kind == Bank || item.kind == Region) region_.reset();
    if (item.kind == Move) return;
    const size_t index = parts_.size();
    const bool isInLabel = item.kind == LocalLabel || (item.kind == Assignment && line.isInside);
    const size_t parent = isInLabel && label_.has_value() ? *label_ : bank_.value_or(index);
    parts_.push_back({item, line.begin, std::max(line.end, line.macroEnd), parent});
    if (parent != index) parts_[parent].end = std::max(parts_[parent].end, parts_[index].end);
    if (item.kind == Bank) bank_ = index;
    if (item.kind == Region) region_ = index;
    if (item.kind == Code || item.kind == Data) label_ = index;
    if (item.kind == LocalLabel) local_ = index;
  }

  void extend(size_t end) {
    for (const std::optional<size_t>& part : {bank_, region_, label_, local_}) {
      if (part.has_value()) parts_[*part].end = end;
    }
  }

  const SourceNotes::File& file_;
  std::vector<OutlineItem> items_;
  std::unordered_map<const char*, size_t> macroEnds_;  // by the macros' names; those without lines are not there
  std::vector<Line> lines_;
  std::vector<OutlinePart> parts_;
  std::optional<size_t> bank_, region_, label_, local_;  // the parts that are open
};

}  // namespace

std::vector<OutlineItem> outlineOf(const Analysis& analysis) {
  ItemList items(analysis);
  const std::vector<bool> isCode = findCode(analysis.statements());
  for (size_t i = 0; i < isCode.size(); ++i)
    items.addStatement(analysis.statements()[i], isCode[i]);
  for (const Macro& macro : analysis.program().notes.macros.all()) {
    std::string_view rest = macro.head;
    const std::string_view name = takeWord(rest);
    items.add({OutlineKind::Macro, name, {}, name});
  }
  return items.take();
}

std::vector<OutlinePart> outlineOfFile(const Analysis& analysis, const SourceNotes::File& file) {
  return FileOutline(analysis, file).build();
}

}  // namespace kiln

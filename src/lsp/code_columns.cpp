#include "lsp/code_columns.h"

#include <utility>

namespace kiln {
namespace {

class ColumnWriter {
 public:
  explicit ColumnWriter(Filling filling) : filling_(filling) {}

  void add(std::string_view text) {
    for (char c : text)
      column_ += (static_cast<unsigned char>(c) & 0xC0) == 0x80 ? 0 : 1;
    text_ += text;
  }

  // One blank at least after other text.
  void moveTo(size_t column) {
    if (column_ >= column) {
      if (!text_.empty()) add(" ");
      return;
    }
    while (filling_.hasTabs && column_ / filling_.tabSize < column / filling_.tabSize) {
      text_ += '\t';
      column_ = (column_ / filling_.tabSize + 1) * filling_.tabSize;
    }
    add(std::string(column - column_, ' '));
  }

  std::string take() { return std::move(text_); }

 private:
  Filling filling_;
  std::string text_;
  size_t column_ = 0;
};

}  // namespace

size_t columnAfter(std::string_view text, size_t tabSize) {
  size_t column = 0;
  for (char c : text) {
    const bool isContinuation = (static_cast<unsigned char>(c) & 0xC0) == 0x80;
    column = c == '\t' ? (column / tabSize + 1) * tabSize : column + (isContinuation ? 0 : 1);
  }
  return column;
}

std::string inColumns(const LineParts& parts, bool isIndented, size_t comments, Filling filling) {
  ColumnWriter writer(filling);
  if (isIndented) writer.moveTo(codeColumn);
  writer.add(parts.label);
  if (!parts.name.empty()) {
    writer.add(parts.name);
    writer.moveTo(codeColumn);
    writer.add("= ");
    writer.add(parts.value);
  }
  for (size_t i = 0; i < parts.statements.size(); ++i) {
    const auto& [word, argument] = parts.statements[i];
    const bool isAtColumn = i == 0 && isIndented && parts.label.empty();
    if (i == 0 && !isAtColumn) writer.moveTo(codeColumn);
    if (i > 0) writer.add(" : ");
    writer.add(word);
    if (!argument.empty()) writer.add(" ");
    writer.add(argument);
  }
  if (!parts.comment.empty()) {
    writer.moveTo(comments);
    writer.add(parts.comment);
  }
  return writer.take();
}

}  // namespace kiln

// The text of a hover, as Markdown or plain.
#pragma once

#include <string>
#include <string_view>

#include "lsp/json.h"

namespace kiln {

class HoverText {
 public:
  explicit HoverText(bool isMarkdown) : isMarkdown_(isMarkdown) {}

  // A name or a number within a sentence.
  std::string code(std::string_view text) const;
  // "`$2C` = 44 = `%00101100`".
  std::string number(int64_t value) const;

  void addParagraph(std::string_view text);
  // Lines of source or of a listing, with line ends between them.
  void addBlock(std::string_view lines);

  bool empty() const { return text_.empty(); }
  // {"kind", "value"}
  Json contents() const;

 private:
  bool isMarkdown_;
  std::string text_;
};

}  // namespace kiln

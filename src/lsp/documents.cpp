#include "lsp/documents.h"

#include <algorithm>
#include <utility>

namespace kiln {
namespace {

// A text while a list of changes is made to it. The lines are known up to the last change and looked for from there on:
// thousands of changes, in the order of their places or in the opposite one, take one walk over the text.
class ChangingText {
 public:
  ChangingText(std::string& text, Encoding encoding) : text_(text), encoding_(encoding) {}

  size_t offsetOf(Position position) {
    if (!findLine(position.line)) return text_.size();
    const size_t start = starts_[position.line];
    const size_t end = findLine(position.line + size_t{1}) ? starts_[position.line + size_t{1}] : text_.size();
    const TextIndex line(std::string_view(text_).substr(start, end - start), encoding_);
    return start + line.offsetOf({0, position.character});
  }

  void replace(size_t from, size_t to, std::string_view text) {
    text_.replace(from, to - from, text);
    // A "\n" that comes to stand behind a "\r" moves the beginning of the line there.
    while (starts_.size() > 1 && starts_.back() >= from)
      starts_.pop_back();
  }

 private:
  // Makes the start of this line known, when there is such a line.
  bool findLine(size_t line) {
    while (starts_.size() <= line) {
      const size_t end = text_.find_first_of("\r\n", starts_.back());
      if (end == std::string::npos) return false;
      starts_.push_back(end + (text_.compare(end, 2, "\r\n") == 0 ? 2 : 1));
    }
    return true;
  }

  std::string& text_;
  Encoding encoding_;
  std::vector<size_t> starts_ = {0};  // of the lines known so far
};

}  // namespace

const Document* Documents::find(std::string_view path) const {
  const auto document = byPath_.find(path);
  return document == byPath_.end() ? nullptr : &document->second;
}

void Documents::open(Document document) {
  std::string path = document.path;
  byPath_.insert_or_assign(std::move(path), std::move(document));
}

bool Documents::change(std::string_view path, const Json& version, const Json& changes, Encoding encoding) {
  const auto found = byPath_.find(path);
  if (found == byPath_.end()) return false;
  Document& document = found->second;
  document.version = version;
  if (!changes.is_array()) return true;
  ChangingText changing(document.text, encoding);
  for (const Json& change : changes) {
    const Json& range = memberOf(change, {"range"});
    const bool isPart = range.is_object();
    const auto [start, end] = rangeFrom(range);
    const size_t from = isPart ? changing.offsetOf(start) : 0;
    const size_t to = isPart ? std::max(from, changing.offsetOf(end)) : document.text.size();
    changing.replace(from, to, textOf(memberOf(change, {"text"})));
  }
  return true;
}

}  // namespace kiln

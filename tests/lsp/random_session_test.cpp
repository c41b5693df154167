// A long session of random edits: a server that has seen them all answers as a new one does that sees only their
// result. KILN_SESSION_EDITS changes the number of edits.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "lsp/methods.h"
#include "support/editor.h"

namespace kiln::test {
namespace {

using Files = std::map<std::string, std::string>;

Files readExamples() {
  Files files;
  for (const auto& entry : std::filesystem::directory_iterator(KILN_EXAMPLES_DIR)) {
    const std::string extension = entry.path().extension();
    if (extension != ".asm" && extension != ".inc" && extension != ".lnk") continue;
    std::ifstream stream(entry.path(), std::ios::binary);
    files[entry.path().filename()] = {std::istreambuf_iterator<char>(stream), {}};
  }
  return files;
}

// Edits documents at random, and keeps what they are then.
class RandomTypist {
 public:
  explicit RandomTypist(Files files) : files_(std::move(files)) {
    for (const auto& [file, text] : files_) {
      if (!file.ends_with(".lnk")) names_.push_back(file);
    }
  }

  const Files& files() const { return files_; }
  size_t below(size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random_); }
  const std::string& anyFile() { return names_[below(names_.size())]; }

  Position anyPosition(const std::string& file) {
    const std::string& text = files_[file];
    return TextIndex(text, Encoding::Utf16).positionOf(below(text.size() + 1));
  }

  // Replaces a short part, mostly by nothing or by a few characters, sometimes by a piece of another file.
  void edit(Editor& editor) {
    const std::string& file = anyFile();
    std::string& text = files_[file];
    const size_t begin = characterAt(text, below(text.size() + 1));
    const size_t end = characterAt(text, std::min(text.size(), begin + (below(6) == 0 ? below(100) : below(4))));
    const std::string added = anyText();
    editor.edit(file, TextIndex(text, Encoding::Utf16).rangeOf(begin, end), added);
    text.replace(begin, end - begin, added);
  }

 private:
  // The beginning of a character, which is no half of a line end.
  static size_t characterAt(const std::string& text, size_t at) {
    while (at > 0 && at < text.size() && ((text[at] & 0xC0) == 0x80 || (text[at] == '\n' && text[at - 1] == '\r')))
      --at;
    return at;
  }

  std::string anyText() {
    static const std::vector<std::string> words = {
        "",  "",  "",   "a", "A",      "1", "$",     ":",     " : ",      ".",           "\n",        "\n\n",
        " ", "=", "\t", ";", "\r\n",   "#", "(",     ",X",    "LDA ",     "\"",          "start:",    ".macro A b\n",
        "<", ">", "-",  "'", "\u00E4", "*", "RTS\n", ".org ", ".byte 1,", ".include \"", ".bank one", "\U0001F600"};
    if (below(8) != 0) return words[below(words.size())];
    const std::string& text = files_[anyFile()];
    const TextIndex index(text, Encoding::Utf8);
    const size_t line = below(index.lineCount());
    return std::string(index.lineAt(static_cast<uint32_t>(line))) + "\n";
  }

  Files files_;
  std::vector<std::string> names_;
  std::mt19937 random_{20261122};
};

void openAll(Editor& editor, const Files& files) {
  for (const auto& [file, text] : files) {
    if (!file.ends_with(".lnk")) editor.open(file, text);
  }
}

// What any request may ask for.
Json paramsAt(const std::string& file, Position position) {
  return {{"textDocument", {{"uri", Editor::uriOf(file)}}},
          {"position", toJson(position)},
          {"range", toJson(Range{position, {position.line + 3, 0}})},
          {"context", {{"includeDeclaration", true}, {"diagnostics", Json::array()}}},
          {"newName", "fresh_name"},
          {"options", {{"tabSize", 8}, {"insertSpaces", true}}},
          {"query", "a"}};
}

TEST(RandomSession, AnswersAsANewServerDoes) {
  const char* const asked = std::getenv("KILN_SESSION_EDITS");
  const int edits = asked != nullptr ? std::atoi(asked) : 500;
  RandomTypist typist(readExamples());
  Editor editor(typist.files());
  openAll(editor, typist.files());
  for (int edit = 1; edit <= edits && !HasFailure(); ++edit) {
    typist.edit(editor);
    if (edit % 100 != 0) continue;
    editor.takeMessages();
    Editor fresh(typist.files());
    openAll(fresh, typist.files());
    for (const auto& [file, text] : typist.files())
      EXPECT_EQ(editor.diagnosticsOf(file), fresh.diagnosticsOf(file)) << "after edit " << edit << ", " << file << "\n"
                                                                       << Json(text).dump();
    for (const Method& method : methodRows()) {
      const std::string& file = typist.anyFile();
      const Json params = paramsAt(file, typist.anyPosition(file));
      const std::string name(method.name);
      EXPECT_EQ(editor.request(name, params), fresh.request(name, params))
          << "after edit " << edit << ", " << name << " " << params.dump();
    }
  }
}

}  // namespace
}  // namespace kiln::test

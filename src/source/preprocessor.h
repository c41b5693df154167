// Source text to the flat list of lines that the passes read: includes replaced, macros collected and expanded.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "base/diagnostics.h"
#include "base/text_store.h"
#include "host/file_reader.h"
#include "source/macros.h"
#include "source/source_lines.h"
#include "source/source_notes.h"

namespace kiln {

class Preprocessor {
 public:
  // `texts` takes the included files; the lines are views into it. Files that are not found, or never end, are errors,
  // and so are macros and includes that make a source of more than a gigabyte, and more than two million includes: then
  // there are no lines. `notes` is null when they are not wanted.
  Preprocessor(const FileReader& files, const std::vector<std::string>& includePaths, TextStore& texts,
               MessageList& errors, SourceNotes* notes = nullptr)
      : files_(files), includePaths_(includePaths), texts_(texts), errors_(errors), notes_(notes) {}

  // The lines of a source; `path` is where its own includes are looked for first. N line ends give N + 1 lines.
  SourceLines run(std::string_view text, std::string_view path);

 private:
  // A file that is being read. Files nest as deep as memory allows, so they are kept here and not on the call stack.
  struct OpenFile {
    std::string_view path;  // as the include names it
    std::string_view text;
    size_t next = 0;             // where in the text the next line begins; past the end when there is none
    size_t firstPiece = 0;       // where its lines begin among all
    bool follows = false;        // the next line comes directly after the last one in the list
    Macro* openMacro = nullptr;  // being defined
  };

  // Pieces [begin, end) called no macro when there were `macroCount` definitions.
  struct Settled {
    size_t begin;
    size_t end;
    size_t macroCount;
  };

  bool keepPlainLines(OpenFile& file);
  void readLine(OpenFile& file, std::string_view line);
  void keepLines(OpenFile& file, std::string_view lines);
  void include(std::string_view argument, std::string_view line, std::string_view includingPath);
  void noteError(std::string_view line);
  void open(std::string_view text, std::string_view path);
  void closeFile();
  void giveUpIfExhausted();
  void giveUp(std::string_view reason);
  void expandFrom(size_t begin);
  size_t findUnsettledCall(size_t begin) const;

  const FileReader& files_;
  const std::vector<std::string>& includePaths_;
  TextStore& texts_;
  MessageList& errors_;
  SourceNotes* notes_;
  MacroTable macros_;
  std::vector<OpenFile> openFiles_;
  std::unordered_map<std::string_view, std::vector<std::string_view>> openTexts_;  // by path
  ExpansionRoom room_;
  // Ends files that include each other twice, 40 deep: 2^40 includes of hardly any text.
  uint32_t includesLeft_ = uint32_t{1} << 21;
  SourceLines lines_;
  std::vector<Settled> settled_;  // in order, apart from each other
};

}  // namespace kiln

// A rename in the making: which words change, in all programs that they are part of.
#pragma once

#include <deque>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "lsp/name_parts.h"
#include "lsp/session.h"

namespace kiln {

class Renaming {
 public:
  struct FileEdit {
    std::string_view text;             // of the file now
    std::map<size_t, size_t> lengths;  // of the words that change, by offset
  };

  explicit Renaming(Session& session) : session_(session) {}

  // Takes everything that has to have the same name as this part. A word of an included file takes the programs with
  // it that include the file, and a label in a macro's body those of all calls.
  void add(const Analysis& analysis, const NamePart& part);

  // By path.
  const std::map<std::string, FileEdit>& edits() const { return edits_; }
  // Why the things cannot have another name at all; empty when they can.
  std::string refusal() const;
  // Why they cannot have this one, found by assembling all programs with it; empty when they can.
  std::string tryName(const std::string& from, const std::string& to) const;

 private:
  using Key = std::pair<Thing, uint32_t>;

  struct InProgram {
    explicit InProgram(const Analysis& found) : analysis(&found), parts(found) {}

    const Analysis* analysis;
    NameParts parts;
    std::set<Key> renamed;
  };

  // A text of a file in a program: each inclusion has its own.
  struct FileText {
    InProgram* program;
    std::string_view text;
  };

  InProgram& programOf(const Analysis& analysis);
  const std::vector<FileText>& textsOf(const std::string& path);
  void rename(InProgram& program, Key key);
  void edit(InProgram& program, const NamePart& part);
  std::map<std::string, std::string> editedTexts(const std::string& name) const;

  Session& session_;
  std::deque<InProgram> programs_;
  std::map<std::string, std::vector<FileText>> texts_;  // by path
  std::map<std::string, FileEdit> edits_;
  std::vector<std::pair<InProgram*, Key>> open_;
};

}  // namespace kiln

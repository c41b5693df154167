#include "lsp/unchanged_programs.h"

#include <algorithm>
#include <new>
#include <stdexcept>
#include <string_view>
#include <utility>
#include <vector>

#include "base/text.h"
#include "driver/output_file.h"
#include "inspect/recording_host.h"

namespace kiln {
namespace {

// The writers' messages are in the program already.
class SilentConsole final : public Console {
 public:
  void printError(std::string_view) override {}
  void printOutput(std::string_view) override {}
};

bool haveSameBytes(const Program& a, const Program& b) {
  SilentConsole console;
  const std::optional<Image> image = buildImage(a.options, a.assembler, console);
  const std::optional<Image> other = buildImage(b.options, b.assembler, console);
  if (!image.has_value() || !other.has_value()) return image.has_value() == other.has_value();
  if (image->size() != other->size()) return false;
  const auto textOf = [](const Image& of) {
    std::string text;
    text.reserve(of.size());
    for (std::string_view part : of.parts())
      text += part;
    return text;
  };
  return textOf(*image) == textOf(*other);
}

bool areSameWords(std::string_view a, std::string_view b) {
  while (true) {
    const std::string_view word = takeWord(a);
    if (word != takeWord(b)) return false;
    if (word.empty()) return true;
  }
}

bool areSame(const MessageList& a, const MessageList& b) {
  if (a.size() != b.size()) return false;
  for (size_t i = 0; i < a.size(); ++i) {
    if (!areSameWords(a[i], b[i])) return false;
  }
  return true;
}

bool haveSameMessages(const Program& a, const Program& b) {
  const auto isSame = [](const WriterMessage& x, const WriterMessage& y) {
    return x.isError == y.isError && areSameWords(x.text, y.text);
  };
  const bool areWritersSame = std::equal(a.writerMessages.begin(), a.writerMessages.end(), b.writerMessages.begin(),
                                         b.writerMessages.end(), isSame);
  return areWritersSame && areSame(a.assembler.diagnostics.errors, b.assembler.diagnostics.errors) &&
         areSame(a.assembler.diagnostics.warnings, b.assembler.diagnostics.warnings);
}

bool staysSame(const Analysis& analysis, const EditorHost& files, const std::string& programPath) {
  if (!analysis.error().empty() || !analysis.program().isAssembled) return false;
  EditorHost host = files;
  RecordingHost reader(host);
  const AssembledLine after = assembleCommandLine(reader, programPath, analysis.commandLine());
  if (after.program == nullptr || !after.program->isAssembled) return false;
  return haveSameMessages(analysis.program(), *after.program) && haveSameBytes(analysis.program(), *after.program);
}

}  // namespace

bool areProgramsSame(Session& session, const std::map<std::string, std::string>& texts) {
  Documents documents = session.documents;
  for (const auto& [path, text] : texts)
    documents.open({uriOf(session, path), path, nullptr, text});
  const EditorHost files = session.workspace.files().with(documents);
  try {
    for (const auto& [path, text] : texts) {
      const std::vector<const Analysis*> programs = session.workspace.programsOf(path);
      const bool areAllSame = std::all_of(programs.begin(), programs.end(), [&](const Analysis* program) {
        return staysSame(*program, files, session.workspace.programPath());
      });
      if (!areAllSame) return false;
    }
  } catch (const std::bad_alloc&) {
    return false;
  } catch (const std::length_error&) {
    return false;
  }
  return true;
}

}  // namespace kiln

#include "inspect/messages.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "base/format.h"
#include "base/text.h"
#include "inspect/writer_messages.h"
#include "source/line_text.h"

namespace kiln {
namespace {

struct Message {
  std::string_view text;
  size_t line = 0;  // in the expanded source, from 1; 0 = not known
  bool isError = false;
};

class MessageReporter {
 public:
  MessageReporter(const Program& program, Findings& findings)
      : program_(program),
        findings_(findings),
        located_(concat({program.assembler.diagnostics.mainSourcePath, ":"})),
        lines_(program.assembler.lines.pieces()) {}

  void reportErrors() {
    const MessageList& errors = program_.assembler.diagnostics.errors;
    const std::vector<std::string_view>& errorLines = program_.notes.errorLines;
    // The preprocessor's come first.
    for (size_t i = 0; i < std::min(errorLines.size(), errors.size()); ++i) {
      if (!findings_.isExplained(errors[i]))
        findings_.addError({.at = trimmed(errorLines[i]), .text = std::string(errors[i])});
    }
    collect(errors, errorLines.size(), true);
  }

  void reportWarnings() { collect(program_.assembler.diagnostics.warnings, 0, false); }

  void finish() {
    std::stable_sort(messages_.begin(), messages_.end(),
                     [](const Message& a, const Message& b) { return a.line < b.line; });
    for (const Message& message : messages_) {
      const bool hasLine = message.line != 0 && message.line <= program_.assembler.lines.count();
      Findings::Report report{.at = hasLine ? trimmed(lines_.at(message.line - 1)) : std::string_view(),
                              .text = std::string(message.text)};
      message.isError ? findings_.addError(std::move(report)) : findings_.add(Check::Assembler, std::move(report));
    }
  }

 private:
  static std::string_view trimmed(std::string_view line) { return trim(withoutComment(line)); }

  void collect(const MessageList& messages, size_t first, bool areErrors) {
    for (size_t i = first; i < messages.size(); ++i) {
      Message message{.text = messages[i], .isError = areErrors};
      if (findings_.isExplained(message.text) || !seen_.insert(message.text).second) continue;
      if (message.text.starts_with("iteration ")) continue;
      message.line = takeLineNumber(message.text, located_);
      if (message.line == 0) message.line = takeLineNumber(message.text, "line ");
      if (!findings_.isLineExplained(message.line)) messages_.push_back(message);
    }
  }

  const Program& program_;
  Findings& findings_;
  const std::string located_;  // what an error with a line begins with
  LineReader lines_;
  std::unordered_set<std::string_view> seen_;
  std::vector<Message> messages_;
};

}  // namespace

size_t takeLineNumber(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return 0;
  std::string_view rest = text.substr(prefix.size());
  size_t number = 0;
  while (!rest.empty() && isDigit(rest.front())) {
    number = number * 10 + static_cast<size_t>(rest.front() - '0');
    rest.remove_prefix(1);
  }
  if (!rest.starts_with(": ")) return 0;
  text = rest.substr(2);
  return number;
}

std::vector<Finding> listMessages(const Program& program) {
  CheckLevels levels;
  Findings findings(*program.map, levels);
  reportMessages(program, findings);
  for (const WriterMessage& message : program.writerMessages) {
    Findings::Report report{.text = std::string(wordsOf(message.text))};
    message.isError ? findings.addError(std::move(report)) : findings.add(Check::Assembler, std::move(report));
  }
  return findings.take();
}

void reportMessages(const Program& program, Findings& findings) {
  MessageReporter reporter(program, findings);
  reporter.reportErrors();
  reporter.reportWarnings();
  reporter.finish();
}

}  // namespace kiln

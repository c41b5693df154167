#include "lsp/same_program.h"

#include <algorithm>
#include <tuple>

#include "base/format.h"
#include "base/text.h"
#include "source/line_text.h"

namespace kiln {
namespace {

// Not every library has std::ranges::equal() yet.
template <typename List, typename IsSame>
bool areEqual(const List& a, const List& b, IsSame isSame) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), isSame);
}

constexpr char marker = '\x01';

bool joins(std::string_view text, size_t a, size_t b) {
  return isIdentifierCharacter(text[a]) && isIdentifierCharacter(text[b]);
}

// The text with a marker for each whole word that is the name, in any letter case.
std::string withoutName(const std::string& text, const std::string& name) {
  std::string masked;
  size_t copied = 0;
  for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + 1)) {
    const size_t end = at + name.size();
    const bool isWhole =
        at >= copied && (at == 0 || !joins(text, at - 1, at)) && (end == text.size() || !joins(text, end - 1, end));
    if (!isWhole) continue;
    masked.append(text, copied, at - copied).push_back(marker);
    copied = end;
  }
  return masked.append(text, copied);
}

// Texts that may say the old name or the new one, to be compared.
class Masking {
 public:
  explicit Masking(const NameChange& change) : from_(toLower(change.from)), to_(toLower(change.to)) {}

  std::string operator()(std::string_view text) const { return withoutName(withoutName(toLower(text), from_), to_); }

 private:
  std::string from_;
  std::string to_;
};

std::vector<std::string_view> messagesOf(const Program& program) {
  std::vector<std::string_view> messages;
  for (const MessageList* list : {&program.assembler.diagnostics.errors, &program.assembler.diagnostics.warnings}) {
    for (size_t i = 0; i < list->size(); ++i)
      messages.push_back((*list)[i]);
  }
  for (const WriterMessage& message : program.writerMessages)
    messages.push_back(message.text);
  return messages;
}

// The first message of the second program that the first does not have in its place.
std::string differentMessage(const Program& before, const Program& after, const Masking& masked) {
  const std::vector<std::string_view> old = messagesOf(before);
  const std::vector<std::string_view> now = messagesOf(after);
  for (size_t i = 0; i < now.size(); ++i) {
    const bool isSame = i < old.size() && (old[i] == now[i] || masked(old[i]) == masked(now[i]));
    if (!isSame) return concat({"kiln-as would say: ", trimWhitespace(now[i])});
  }
  return old.size() == now.size() ? "" : concat({"kiln-as would no longer say: ", trimWhitespace(old[now.size()])});
}

bool areSameWords(std::string_view a, std::string_view b) {
  while (true) {
    const std::string_view word = takeWord(a);
    if (word != takeWord(b)) return false;
    if (word.empty()) return true;
  }
}

bool haveSameSegments(const Program& before, const Program& after) {
  const auto isSame = [](const AsSegment& a, const AsSegment& b) {
    return a.start == b.start && a.bytes == b.bytes && a.bank == b.bank && a.cloaked == b.cloaked &&
           a.cloakedId == b.cloakedId;
  };
  return before.isAssembled == after.isAssembled && before.isWritable == after.isWritable &&
         areEqual(before.assembler.segments, after.assembler.segments, isSame);
}

bool haveSameStatements(const Analysis& before, const Analysis& after) {
  return areEqual(before.statements(), after.statements(), [](const Statement& a, const Statement& b) {
    return a.parsed->kind == b.parsed->kind && a.parsed->mnemonic == b.parsed->mnemonic &&
           a.parsed->mode == b.parsed->mode && a.parsed->size == b.parsed->size &&
           a.parsed->address == b.parsed->address && a.parsed->hasLabel == b.parsed->hasLabel;
  });
}

// Symbols are numbered in the order in which they are defined.
bool haveSameSymbols(const Analysis& before, const Analysis& after) {
  return areEqual(
      before.program().iteration().symbols.symbols(), after.program().iteration().symbols.symbols(),
      [](const Symbol& a, const Symbol& b) { return a.value == b.value && a.bank == b.bank && a.seed == b.seed; });
}

using Meaning = std::tuple<size_t, bool, Thing, uint32_t>;

// File by file in the order of the notes, what each name in the text stands for.
std::vector<Meaning> meaningsOf(const Analysis& analysis) {
  const std::vector<SourceNotes::File>& files = analysis.program().notes.files;
  std::vector<Meaning> meanings;
  for (const Occurrence& occurrence : analysis.names().all()) {
    const auto file = static_cast<size_t>(analysis.map().fileOf(occurrence.text) - files.data());
    meanings.emplace_back(file, occurrence.isDefinition, occurrence.thing, occurrence.id);
  }
  std::stable_sort(meanings.begin(), meanings.end(),
                   [](const Meaning& a, const Meaning& b) { return std::get<0>(a) < std::get<0>(b); });
  return meanings;
}

// The lines of a macro's body for arguments that look like nothing else.
std::vector<std::string> expandedBody(const Macro& macro) {
  const size_t count = std::min(macro.parameters.size(), mostParameters);
  std::vector<std::string> lines;
  for (const Macro::Line& line : macro.body) {
    std::string text(withoutComment(line.text));
    for (size_t i = 0; i < count; ++i) {
      const std::string argument = {'\x02', static_cast<char>(0x80 + i)};
      const std::string_view name = macro.parameters[i];
      for (size_t at = text.find(name); at != std::string::npos; at = text.find(name, at + argument.size()))
        text.replace(at, name.size(), argument);
    }
    lines.push_back(std::move(text));
  }
  return lines;
}

// Nothing may call a macro, and then no byte shows what becomes of it.
bool haveSameMacros(const Program& before, const Program& after, const Masking& masked) {
  const auto isSame = [&masked](const Macro& a, const Macro& b) {
    const auto isSameLine = [&masked](const std::string& c, const std::string& d) {
      return c == d || masked(c) == masked(d);
    };
    return a.parameters.size() == b.parameters.size() && areEqual(expandedBody(a), expandedBody(b), isSameLine);
  };
  return areEqual(before.notes.macros.all(), after.notes.macros.all(), isSame);
}

}  // namespace

std::string differenceOf(const Analysis& before, const Analysis& after, const NameChange& change) {
  const Masking masked(change);
  std::string message = differentMessage(before.program(), after.program(), masked);
  if (!message.empty()) return message;
  const bool hasSameBytes =
      haveSameSegments(before.program(), after.program()) && fileBytes(before.program()) == fileBytes(after.program());
  if (!hasSameBytes || !haveSameStatements(before, after)) return "the program would not be the same";
  if (!haveSameMacros(before.program(), after.program(), masked)) return "a macro would not be the same";
  if (!haveSameSymbols(before, after) || meaningsOf(before) != meaningsOf(after)) {
    return "a name would mean something else";
  }
  return "";
}

bool areSameButBlanks(const Analysis& before, const Analysis& after) {
  return before.program().isAssembled && after.program().isAssembled &&
         areEqual(messagesOf(before.program()), messagesOf(after.program()), areSameWords) &&
         fileBytes(before.program()) == fileBytes(after.program());
}

}  // namespace kiln

#include "lsp/hover_code.h"

#include <algorithm>

#include "base/format.h"
#include "base/text.h"
#include "inspect/cycles.h"
#include "lsp/line_code.h"
#include "lsp/mnemonics.h"

namespace kiln {
namespace {

constexpr size_t mostLines = 40;
constexpr size_t longestLine = 160;
constexpr size_t bytesWidth = 8;  // of three

// Lines of a block, of which only the first are kept.
class Lines {
 public:
  void add(std::string_view line) {
    if (++count_ > mostLines) return;
    if (!text_.empty()) text_.push_back('\n');
    text_ += trimRight(line.substr(0, longestLine));
  }

  std::string take() {
    if (count_ > mostLines) text_ += concat({"\n; ", decimal(static_cast<int64_t>(count_ - mostLines)), " more lines"});
    return std::move(text_);
  }

 private:
  std::string text_;
  size_t count_ = 0;
};

// "2000: A9 05     LDA #5"; the text alone when the program does not assemble.
std::string listed(const Analysis& analysis, std::span<const OriginatedStatement> statements) {
  const std::string_view text = trim(statements.front().statement->line);
  if (analysis.placements() == nullptr) return std::string(text);
  std::vector<uint8_t> bytes;
  for (const auto& [origin, statement] : statements) {
    const std::span<const uint8_t> made = bytesOf(analysis, statement->index);
    bytes.insert(bytes.end(), made.begin(),
                 made.begin() + static_cast<std::ptrdiff_t>(std::min(made.size(), mostBytesShown + 1)));
  }
  std::string line;
  appendHex(line, addressOf(analysis, statements.front().statement->index), 4);
  std::string shown = bytesText(bytes);
  shown.resize(std::max(shown.size(), bytesWidth), ' ');
  return concat({line, ": ", shown, "  ", text});
}

// What a macro or a rewriter has made of a line; empty when nothing.
std::string madeFrom(const Analysis& analysis, std::string_view line) {
  std::vector<OriginatedStatement> made = statementsFrom(analysis, line);
  std::erase_if(made, [&analysis](const OriginatedStatement& statement) {
    return analysis.map().madeLine(statement.statement->line) == nullptr;
  });
  Lines lines;
  for (size_t begin = 0, end = 0; begin < made.size(); begin = end) {
    while (end < made.size() && made[end].statement->line.data() == made[begin].statement->line.data())
      ++end;
    lines.add(listed(analysis, std::span(made).subspan(begin, end - begin)));
  }
  return lines.take();
}

std::string cyclesText(const Analysis& analysis, const Statement& statement) {
  const AsLine& line = *statement.parsed;
  const std::optional<Cycles> cycles = cyclesOf(line.mnemonic, line.mode);
  if (!cycles.has_value()) return "";
  std::string text = concat({", ", decimal(cycles->count), " cycles"});
  if (cycles->mayGrow) return concat({text, " and one more when indexing leads to the next page"});
  if (line.mode != Mode::Relative) return text;
  CycleSum sum(analysis);
  sum.add(statement.index);
  return concat({text, ", taken ", sum.isKnown() ? decimal(sum.most()) : "3, or 4 to another page"});
}

std::string modeText(const Analysis& analysis, const Statement& statement, const HoverText& hover) {
  const AsLine& line = *statement.parsed;
  const int opcode = opcodeFor(line.mnemonic, line.mode);
  if (opcode < 0) return concat({nameOf(line.mode), ": not a mode of this instruction"});
  const uint32_t size = instructionSize(line.mode);
  return concat({nameOf(line.mode), ": ", decimal(size), size == 1 ? " byte" : " bytes",
                 cyclesText(analysis, statement), ", opcode ", hover.code(dollarHex(opcode, 2))});
}

std::string flagsText(std::string_view flags) {
  if (flags == "-") return "flags: none change";
  std::string text = "flags:";
  for (char flag : flags)
    text += {' ', flag};
  return text;
}

std::string definitionOf(const Macro& macro) {
  Lines lines;
  lines.add(concat({".macro ", macro.head}));
  for (const Macro::Line& line : macro.body)
    lines.add(line.text);
  return lines.take();
}

}  // namespace

void describeInstruction(const Analysis& analysis, const Token& mnemonic, std::string_view line, HoverText& hover) {
  const MnemonicText& text = textOf(mnemonicOf(mnemonic.text));
  hover.addParagraph(concat({hover.code(mnemonicText(text.mnemonic)), ": ", text.does}));
  if (!text.flags.empty()) hover.addParagraph(flagsText(text.flags));
  if (mnemonic.statement == nullptr) {
    const std::string made = madeFrom(analysis, line);
    if (!made.empty()) hover.addBlock(made);
    return;
  }
  hover.addParagraph(modeText(analysis, *mnemonic.statement, hover));
  const std::span<const uint8_t> bytes = bytesOf(analysis, mnemonic.statement->index);
  if (bytes.empty()) return;
  std::string place;
  appendHex(place, addressOf(analysis, mnemonic.statement->index), 4);
  hover.addParagraph(hover.code(concat({place, ": ", bytesText(bytes)})));
}

void describeMacro(const Analysis& analysis, const Occurrence& name, HoverText& hover) {
  const SourceNotes& notes = analysis.program().notes;
  const Macro& macro = notes.macros.all()[name.id];
  hover.addBlock(definitionOf(macro));
  const auto call = std::find_if(notes.calls.begin(), notes.calls.end(), [&](const SourceNotes::Call& each) {
    return each.macroHead.data() == macro.head.data() && isPartOf(name.text, each.line);
  });
  if (call == notes.calls.end()) return;
  const std::string made = madeFrom(analysis, call->line);
  if (made.empty()) return;
  hover.addParagraph("this call makes:");
  hover.addBlock(made);
}

void describeParameter(const Analysis& analysis, const Occurrence& name, HoverText& hover) {
  const Macro& macro = analysis.program().notes.macros.all()[name.id / mostParameters];
  const size_t number = name.id % mostParameters;
  std::string_view head = macro.head;
  const std::string_view macroName = takeWord(head);
  hover.addParagraph(concat({hover.code(macro.parameters[number]), ": parameter ",
                             decimal(static_cast<int64_t>(number + 1)), " of the macro ", hover.code(macroName)}));
  hover.addBlock(definitionOf(macro));
}

}  // namespace kiln

// Statements say what they are. Lines without any are those of macros, includes, and lines in whose place a rewriter
// has made others; they are taken apart by the assembler's own functions, word by word.
#include "lsp/code_tokens.h"

#include <algorithm>
#include <functional>
#include <unordered_map>
#include <utility>

#include "base/text.h"
#include "inspect/expression_leaves.h"
#include "inspect/expression_names.h"
#include "inspect/macro_uses.h"
#include "inspect/name_text.h"
#include "inspect/statement_words.h"
#include "source/data_items.h"
#include "source/includes.h"
#include "source/operands.h"
#include "source/statements.h"

namespace kiln {
namespace {

// Longer texts are not searched, see usedName().
constexpr size_t longestSearch = 4096;

bool isZeroPageMode(Mode mode) {
  return mode == Mode::ZeroPage || mode == Mode::ZeroPageX || mode == Mode::ZeroPageY ||
         mode == Mode::IndexedIndirectX || mode == Mode::IndirectIndexedY;
}

bool isNumber(std::string_view leaf) {
  if (leaf.empty()) return false;
  if (leaf.front() == '$' || leaf.front() == '%') return leaf.size() > 1;
  return isDecimalLiteral(leaf) || isTrailingHLiteral(leaf);
}

// Of tokens that begin together the first one counts.
int rankOf(const Token& token) {
  if (token.type == TokenType::Parameter) return 0;
  return token.occurrence != nullptr ? 1 : 2;
}

class TokenFinder {
 public:
  TokenFinder(const Analysis& analysis, const std::vector<SymbolFacts>& facts, std::string_view part)
      : analysis_(analysis), facts_(facts), part_(part) {
    for (const SourceNotes::Call& call : analysis.program().notes.calls) {
      if (isPartOf(call.line, part)) calls_.emplace(call.line.data(), &call);
    }
  }

  std::vector<Token> run() {
    addNames();
    for (size_t index : analysis_.statementsIn(part_))
      addStatement(analysis_.statements()[index]);
    TextLines lines(part_);
    for (std::string_view line = lines.next(); line.data() != nullptr; line = lines.next())
      addLine(line);
    keepOneOfEach();
    return std::move(tokens_);
  }

 private:
  void add(std::string_view text, TokenType type, uint8_t modifiers = 0, const Occurrence* occurrence = nullptr) {
    // A carriage return ends a line of the editor's.
    text = text.substr(0, text.find('\r'));
    if (!text.empty() && isPartOf(text, part_)) tokens_.push_back({text, type, modifiers, occurrence, statement_});
  }

  void addNames() {
    const std::vector<Occurrence>& all = analysis_.names().all();
    auto at = std::lower_bound(all.begin(), all.end(), part_.data(), [](const Occurrence& name, const char* place) {
      return std::less<>()(name.text.data(), place);
    });
    for (; at != all.end() && isPartOf(at->text, part_); ++at)
      addName(*at);
  }

  void addName(const Occurrence& name) {
    statement_ = analysis_.statementAt(name.text.data());
    const auto modifiers = static_cast<uint8_t>(name.isDefinition ? Definition : 0);
    switch (name.thing) {
      case Thing::Symbol:
        return addSymbol(name, modifiers);
      case Thing::Macro:
        return add(name.text, TokenType::Macro, modifiers, &name);
      case Thing::Parameter:
        return add(name.text, TokenType::Parameter, modifiers, &name);
      case Thing::File:
        return add(name.text, TokenType::String, 0, &name);
    }
  }

  void addSymbol(const Occurrence& name, uint8_t modifiers) {
    using Is = SymbolFacts::Kind;
    const Is kind = facts_[name.id].kind;
    if (kind == Is::LocalLabel) modifiers |= Local;
    const bool isSeed = analysis_.program().iteration().symbols.symbols()[name.id].seed == 1;
    if (kind == Is::Predefined && isSeed) modifiers |= BuiltIn;
    if (!name.isDefinition && isUsedInZeroPage(name.text)) modifiers |= ZeroPage;
    const bool isLabel = kind == Is::Label || kind == Is::LocalLabel;
    const TokenType type = isLabel ? TokenType::Label : kind == Is::Bank ? TokenType::Bank : TokenType::Name;
    add(name.text, type, modifiers, &name);
  }

  bool isUsedInZeroPage(std::string_view name) const {
    return statement_ != nullptr && statement_->parsed->kind == Kind::Instruction &&
           isZeroPageMode(statement_->parsed->mode) && isPartOf(name, statement_->argument);
  }

  void addStatement(const Statement& statement) {
    statement_ = &statement;
    const AsLine& line = *statement.parsed;
    if (line.kind == Kind::Empty) return add(statement.rest, TokenType::Comment, Vanished);
    if (line.kind == Kind::Instruction) add(statement.word, TokenType::Mnemonic);
    if (!rowOf(line.kind).spelling.empty()) addDirective(statement);
    if (line.kind == Kind::Instruction) {
      addLeaves(statement.argument, instructionExpression(line, scratch_));
    } else if (line.kind == Kind::Assign) {
      addLeaves(statement.rest, line.assignValue());
    } else if (lookUpOf(line.kind) != LookUp::Never) {
      addItems(statement.argument, line.operand());
    }
  }

  void addDirective(const Statement& statement) {
    const KindRow& row = rowOf(statement.parsed->kind);
    add(statement.word, TokenType::Directive);
    if (row.argument == Argument::Quoted) add(statement.argument, TokenType::String);
    if (row.argument == Argument::None) add(statement.argument, TokenType::Comment, Vanished);
  }

  void addLine(std::string_view line) {
    statement_ = nullptr;
    const std::string_view code = withoutComment(line);
    add(line.substr(code.size()), TokenType::Comment);
    const auto call = calls_.find(line.data());
    if (call != calls_.end()) return addCall(*call->second);
    if (!trim(code).empty() && analysis_.statementsIn(line).empty()) addWords(code);
  }

  void addCall(const SourceNotes::Call& call) {
    Fields fields(call.arguments, ',');
    std::string_view argument;
    while (fields.next(argument))
      addOperand(trim(argument));
  }

  // Code without statements.
  void addWords(std::string_view code) {
    StatementTexts texts(code);
    while (const std::optional<std::string_view> text = texts.next()) {
      const BodyLine words(*text);
      if (words.word.empty()) continue;
      const std::string_view argument =
          trim(text->substr(static_cast<size_t>(words.word.data() - text->data())).substr(words.word.size()));
      addWord(words.word, argument);
    }
  }

  void addWord(std::string_view word, std::string_view argument) {
    if (mnemonicOf(word) != Mnemonic::None) {
      add(word, TokenType::Mnemonic);
      return addOperand(argument);
    }
    const DirectiveWord* const directive = directiveOf(word);
    if (directive == nullptr) return;
    add(word, TokenType::Directive);
    if (directive->word == ".include") return add(includeName(argument), TokenType::String);
    if (directive->word == ".string") return add(argument, TokenType::String);
    if (directive->word != ".macro" && directive->word != ".bank") addItems(argument, argument);
  }

  void addOperand(std::string_view operand) {
    if (operand.empty()) return;
    const std::string_view closed = withoutCommaSpaces(operand, scratch_);
    addLeaves(operand, valueExpression(closed, classifyOperand(closed)));
  }

  void addItems(std::string_view written, std::string_view list) {
    DataItems items(list);
    while (const std::optional<std::string_view> item = items.next())
      written = addLeaves(written, *item);
  }

  // Adds the numbers of an expression. It is a view into the text as it is written, or a copy of a part of that;
  // returns what follows there.
  std::string_view addLeaves(std::string_view written, std::string_view expression) {
    for (std::string_view leaf : leaves_.find(expression)) {
      if (!isNumber(leaf)) continue;
      if (!isPartOf(leaf, part_)) {
        leaf = written.size() <= longestSearch ? findName(written, leaf) : std::string_view();
        if (leaf.data() == nullptr) continue;
        written.remove_prefix(static_cast<size_t>(leaf.data() + leaf.size() - written.data()));
      }
      add(leaf, TokenType::Number);
    }
    return written;
  }

  void keepOneOfEach() {
    std::stable_sort(tokens_.begin(), tokens_.end(), [](const Token& a, const Token& b) {
      if (a.text.data() != b.text.data()) return std::less<>()(a.text.data(), b.text.data());
      return rankOf(a) < rankOf(b);
    });
    const char* end = part_.data();
    std::erase_if(tokens_, [&end](const Token& token) {
      if (std::less<>()(token.text.data(), end)) return true;
      end = token.text.data() + token.text.size();
      return false;
    });
  }

  const Analysis& analysis_;
  const std::vector<SymbolFacts>& facts_;
  const std::string_view part_;
  std::unordered_map<const char*, const SourceNotes::Call*> calls_;  // by their lines
  std::vector<Token> tokens_;
  const Statement* statement_ = nullptr;  // that the next tokens belong to
  ExpressionLeaves leaves_;
  std::string scratch_;
};

}  // namespace

std::vector<Token> findTokens(const Analysis& analysis, const std::vector<SymbolFacts>& facts, std::string_view part) {
  return TokenFinder(analysis, facts, part).run();
}

}  // namespace kiln

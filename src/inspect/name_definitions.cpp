#include "inspect/name_definitions.h"

namespace kiln {
namespace {

// How many symbols were entered before the first line: the seeds, then those of other names.
size_t countPredefined(const Settings& settings, const std::vector<Symbol>& symbols) {
  size_t count = 0;
  while (count < symbols.size() && symbols[count].seed == 1)
    ++count;
  const auto countIfNext = [&](std::string_view name) {
    if (count < symbols.size() && symbols[count].name == name) ++count;
  };
  if (settings.banking.codeBankRegister != 0) countIfNext("__bank_code_reg");
  if (settings.banking.dataBankRegister != 0) countIfNext("__bank_data_reg");
  for (const NamedValue& define : settings.defines)
    countIfNext(define.name);
  return count;
}

}  // namespace

NameDefinitions::NameDefinitions(const Program& program)
    : symbols_(program.iteration().symbols),
      predefined_(countPredefined(program.assembler.settings, symbols_.symbols())),
      next_(predefined_) {
  definitions_.reserve(symbols_.symbols().size() - predefined_);
}

const Symbol* NameDefinitions::define(HashedName name, const Definition& definition) {
  const std::vector<Symbol>& symbols = symbols_.symbols();
  if (next_ < symbols.size() && symbols[next_].name.data() == name.text().data()) {
    ++next_;
    definitions_.push_back(definition);
    return nullptr;
  }
  const Symbol* const symbol = symbols_.find(name.text(), name.hash());
  if (symbol != nullptr && isPredefined(*symbol)) replacements_.try_emplace(symbol->index, definition);
  return symbol;
}

void NameDefinitions::defineBank(std::string_view bank, std::string_view written) {
  const std::vector<Symbol>& symbols = symbols_.symbols();
  if (next_ == symbols.size() || !symbols[next_].name.starts_with(bankPrefix)) return;
  if (symbols[next_].name.substr(bankPrefix.size()) != bank) return;
  ++next_;
  definitions_.push_back({written, true});
}

NameDefinitions::Definition NameDefinitions::first(const Symbol& symbol) const {
  if (isPredefined(symbol)) {
    const auto replacement = replacements_.find(symbol.index);
    return replacement == replacements_.end() ? Definition() : replacement->second;
  }
  return isDefined(symbol) ? definitions_[symbol.index - predefined_] : Definition();
}

}  // namespace kiln

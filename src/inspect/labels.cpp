#include "inspect/labels.h"

#include <nlohmann/json.hpp>

#include "base/format.h"
#include "base/text.h"

namespace kiln {
namespace {

// The name with "_" for each character that is neither in `others` nor part of an identifier.
void appendName(std::string& text, std::string_view name, std::string_view others) {
  for (char c : name)
    text.push_back(isIdentifierCharacter(c) || others.find(c) != std::string_view::npos ? c : '_');
}

void appendVice(std::string& text, const Label& label) {
  text += "al C:";
  appendHex(text, label.address, 4);
  text += " .";
  appendName(text, label.name, "");
  text.push_back('\n');
}

void appendMads(std::string& text, const Label& label) {
  appendHex(text, label.bank.value_or(0), 2);
  text.push_back('\t');
  appendHex(text, label.address, 4);
  text.push_back('\t');
  appendName(text, label.name, ".");
  text.push_back('\n');
}

std::string jsonText(std::string_view text) {
  return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void appendJson(std::string& text, const Label& label) {
  const bool hasPlace = label.place.line != 0;
  text += text.empty() ? "[\n" : ",\n";
  text += concat({"{\"name\":", jsonText(label.name), ",\"address\":", decimal(label.address),
                  ",\"bank\":", label.bank.has_value() ? decimal(*label.bank) : "null",
                  ",\"file\":", hasPlace ? jsonText(label.place.file->path) : std::string("null"),
                  ",\"line\":", decimal(label.place.line), "}"});
}

// By Symbol::index: where its last label is among the labels of the statements.
std::vector<size_t> findLastLabels(const Iteration& iteration) {
  std::vector<size_t> last(iteration.symbols.symbols().size());
  const std::vector<HashedName>& labels = iteration.statements.labels;
  for (size_t i = 0; i < labels.size(); ++i)
    last[iteration.symbols.find(labels[i].text(), labels[i].hash())->index] = i;
  return last;
}

}  // namespace

std::vector<Label> listLabels(const Program& program, const Placements& placements) {
  const Iteration& iteration = program.iteration();
  const std::vector<AsLine>& lines = iteration.statements.lines;
  const std::vector<size_t> last = findLastLabels(iteration);
  LabelReader names(iteration.statements.labels);
  LineReader texts(program.assembler.lines.pieces());
  std::vector<Label> labels;
  for (size_t i = 0, number = 0; i < lines.size(); ++i) {
    const HashedName name = names.of(lines[i]);
    if (!lines[i].hasLabel || last[iteration.symbols.find(name.text(), name.hash())->index] != number++) continue;
    const std::string_view line = program.map->originOf(texts.at(lines[i].lineNumber - 1));
    const BankValue* const bank = bankAt(placements, placements.statements[i]);
    labels.push_back({name.text(), lines[i].address, bank == nullptr ? std::nullopt : std::optional(bank->value),
                      program.map->placeOf(line)});
  }
  return labels;
}

std::string renderLabels(const std::vector<Label>& labels, std::string_view format) {
  std::string text;
  for (const Label& label : labels) {
    if (format == "vice") appendVice(text, label);
    if (format == "mads") appendMads(text, label);
    if (format == "json") appendJson(text, label);
  }
  if (format == "json") text += text.empty() ? "[]\n" : "\n]\n";
  return text;
}

}  // namespace kiln

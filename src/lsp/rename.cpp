#include "lsp/rename.h"

#include "base/format.h"
#include "base/text.h"
#include "inspect/name_text.h"
#include "isa/opcodes.h"
#include "lsp/renaming.h"

namespace kiln {
namespace {

Failure refused(const std::string& why) { return {ErrorCode::RequestFailed, why}; }

// What comes before the part in the real name of its symbol: the scope of a local label, or "__bank_".
std::string_view prefixOf(const Analysis& analysis, const NamePart& part) {
  const std::string_view name = analysis.program().iteration().symbols.symbols()[part.id].name;
  return name.substr(0, name.size() - std::min(name.size(), part.text.size()));
}

// Takes off what a user may write in front: the "." or ">" of a label, and the scope of a local one.
std::string bareName(const Target& target, const NamePart& part, std::string name) {
  if (part.thing != Thing::Symbol || part.text.data() == target.source.text.data()) return name;
  const std::string_view prefix = prefixOf(target.analysis, part);
  if (prefix.size() > 1 && name.size() > prefix.size() && name.starts_with(prefix)) return name.substr(prefix.size());
  const char before = target.source.text[static_cast<size_t>(part.text.data() - target.source.text.data()) - 1];
  const bool isMarked = (before == '.' || before == '>') && name.size() > 1 && name.front() == before;
  return isMarked ? name.substr(1) : name;
}

// Why nothing at all can have this name; empty when something can.
std::string whyNoName(const Analysis& analysis, const NamePart& part, const std::string& name) {
  const bool hasDot = name.find('.') != std::string::npos && part.text.find('.') == std::string_view::npos;
  if (!isPlainName(name) || hasDot || name.front() == '.') {
    return concat({"'", name, "' is no name: letters, digits and '_', no digit first"});
  }
  if (mnemonicOf(name) != Mnemonic::None) return concat({"'", name, "' is an instruction"});
  if (part.thing != Thing::Symbol) return "";
  const std::string full = concat({prefixOf(analysis, part), name});
  const bool exists = analysis.program().iteration().symbols.find(full) != nullptr;
  return exists ? concat({"there is a '", full, "' already"}) : "";
}

// The part at the cursor; null when there is none.
const NamePart* partAt(const Target& target, const NameParts& parts, const Json& params) {
  return parts.at(target.placeOf(positionFrom(memberOf(params, {"position"}))));
}

Json editsOf(const Session& session, const Renaming::FileEdit& edit, const std::string& name) {
  const TextIndex index(edit.text, session.encoding);
  PositionWalk positions(index);
  Json list = Json::array();
  for (const auto& [offset, length] : edit.lengths) {
    const Position start = positions.at(offset);
    list.push_back({{"range", toJson(Range{start, positions.at(offset + length)})}, {"newText", name}});
  }
  return list;
}

Json workspaceEdit(const Session& session, const Renaming& renaming, const std::string& name) {
  Json changes = Json::object();
  Json documentChanges = Json::array();
  for (const auto& [path, edit] : renaming.edits()) {
    const Document* const document = session.documents.find(path);
    const std::string uri = uriOf(session, path);
    Json edits = editsOf(session, edit, name);
    if (session.hasDocumentChanges) {
      const Json version = document != nullptr ? document->version : Json();
      documentChanges.push_back({{"textDocument", {{"uri", uri}, {"version", version}}}, {"edits", std::move(edits)}});
    } else {
      changes[uri] = std::move(edits);
    }
  }
  if (session.hasDocumentChanges) return {{"documentChanges", std::move(documentChanges)}};
  return {{"changes", std::move(changes)}};
}

}  // namespace

Answer prepareRename(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return Json();
  const NameParts parts(target->analysis);
  const NamePart* const part = partAt(*target, parts, params);
  if (part == nullptr) return Json();
  Renaming renaming(session);
  renaming.add(target->analysis, *part);
  const std::string refusal = renaming.refusal();
  if (!refusal.empty()) return refused(refusal);
  return Json{{"range", toJson(target->rangeOf(part->text))}, {"placeholder", part->text}};
}

Answer rename(Session& session, const Json& params) {
  const std::optional<Target> target = findTarget(session, params);
  if (!target.has_value()) return refused("the file is part of no program that can be read");
  const NameParts parts(target->analysis);
  const NamePart* const part = partAt(*target, parts, params);
  if (part == nullptr) return refused("there is no name here that the source defines");
  const std::string name = bareName(*target, *part, textOf(memberOf(params, {"newName"})));
  if (name == part->text) return workspaceEdit(session, Renaming(session), name);
  Renaming renaming(session);
  renaming.add(target->analysis, *part);
  std::string refusal = renaming.refusal();
  if (refusal.empty()) refusal = whyNoName(target->analysis, *part, name);
  if (refusal.empty()) refusal = renaming.tryName(std::string(part->text), name);
  if (!refusal.empty()) return refused(refusal);
  return workspaceEdit(session, renaming, name);
}

}  // namespace kiln
